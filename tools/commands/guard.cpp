// SPDX-License-Identifier: Apache-2.0
#include "commands/guard.h"

#include <cstdio>
#include <new>
#include <vips/vips8>

#include "commands/lack_of_memory.h"
#include "pictures/picture_file.h"

namespace tool {
namespace {

constexpr const char* no_memory = "not enough memory";

void ignore_message(const char*, GLogLevelFlags, const char*, void*) {}

// GLib ends the process when it gets no memory or no thread. This comes before it does.
void end_after_message(const char*, GLogLevelFlags, const char*, void*) {
    end_without_memory();
}

void handle_messages() {
    const int all = G_LOG_LEVEL_MASK;
    const int fatal = G_LOG_LEVEL_ERROR | G_LOG_FLAG_FATAL | G_LOG_FLAG_RECURSION;
    g_log_set_handler("VIPS", static_cast<GLogLevelFlags>(all & ~G_LOG_LEVEL_CRITICAL),
                      ignore_message, nullptr);
    g_log_set_handler("GModule", static_cast<GLogLevelFlags>(all), ignore_message, nullptr);
    g_log_set_handler("GLib", static_cast<GLogLevelFlags>(fatal), end_after_message, nullptr);
}

struct Outcome {
    Exit status;
    std::string message;
};

Outcome run_caught(const std::function<Exit()>& command) {
    try {
        const Exit status = command();
        if (std::fflush(stdout) != 0) {
            return {Exit::no_output, "standard output: cannot be written"};
        }
        if (status == Exit::success) refuse_warnings("failed");
        return {status, ""};
    } catch (const Error& error) {
        return {error.status(), error.what()};
    } catch (const vips::VError& error) {
        const std::string message = vips_message(error);
        return {Exit::internal, is_lack_of_memory(message) ? no_memory : message};
    } catch (const std::bad_alloc&) {
        return {Exit::internal, no_memory};
    } catch (const std::exception& error) {
        return {Exit::internal, error.what()};
    }
}

}  // namespace

Exit complain(Exit status, const std::string& message) {
    std::fprintf(stderr, "imageblend: %s\n", message.c_str());
    return status;
}

Exit run_guarded(const std::function<Exit()>& command) {
    forget_warnings();
    const Outcome outcome = run_caught(command);
    print_warnings();
    return outcome.message.empty() ? outcome.status : complain(outcome.status, outcome.message);
}

bool start_vips() {
    handle_messages();
    if (VIPS_INIT("imageblend") != 0) {
        complain(Exit::internal, "libvips cannot be started");
        return false;
    }
    vips_cache_set_max(0);  // a file that changes is read anew, and pictures are freed early
    apply_reading_rules();
    return true;
}

}  // namespace tool
