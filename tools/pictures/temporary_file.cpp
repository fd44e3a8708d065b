// SPDX-License-Identifier: Apache-2.0
#include "pictures/temporary_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace tool {
namespace {

// Read by signal handlers: the file that is to be removed.
char pending_path[PATH_MAX];
volatile sig_atomic_t pending = 0;

// Held while a name and `pending` change together.
class SignalsHeld {
  public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

  private:
    sigset_t before_;
};

void remove_and_end(int number) {
    remove_temporary_file();
    signal(number, SIG_DFL);
    raise(number);
}

void catch_ending_signals() {
    static bool done = false;
    if (done) return;
    done = true;
    constexpr int others[] = {SIGKILL, SIGSTOP, SIGCHLD, SIGCONT, SIGTSTP,
                              SIGTTIN, SIGTTOU, SIGURG,  SIGWINCH};
    for (int number = 1; number <= SIGRTMAX; number++) {
        if (std::find(std::begin(others), std::end(others), number) != std::end(others)) continue;
        struct sigaction before {};
        // One that is ignored stays ignored (nohup); numbers that the C library keeps are refused.
        if (sigaction(number, nullptr, &before) != 0 || before.sa_handler != SIG_DFL) continue;
        signal(number, remove_and_end);
    }
}

std::string folder_of(const std::string& target) {
    const std::string folder = std::filesystem::path(target).parent_path();
    return folder.empty() ? "." : folder;
}

std::string unused_name(const std::string& folder) {
    std::random_device random;
    char name[32];
    std::snprintf(name, sizeof name, ".imageblend-%08x%08x", random(), random());
    return folder + "/" + name;
}

}  // namespace

void remove_temporary_file() {
    if (pending) unlink(pending_path);
    pending = 0;
}

TemporaryFile::~TemporaryFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (named_) remove_temporary_file();
}

bool TemporaryFile::create_beside(const std::string& target, const std::string& suffix) {
    const std::string folder = folder_of(target);
    return (suffix.empty() && create_unnamed(folder)) || create_named(folder, suffix);
}

bool TemporaryFile::create_in_memory() {
    descriptor_ = memfd_create("imageblend-output", MFD_CLOEXEC);
    return descriptor_ >= 0;
}

bool TemporaryFile::create_unnamed(const std::string& folder) {
    descriptor_ = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor_ < 0) return false;
    if (access(path().c_str(), W_OK) == 0) return true;
    close(descriptor_);  // no /proc, and so no way to link it
    descriptor_ = -1;
    return false;
}

bool TemporaryFile::create_named(const std::string& folder, const std::string& suffix) {
    const std::string name = folder + "/.imageblend-XXXXXX" + suffix;
    if (name.size() >= sizeof pending_path) {
        errno = ENAMETOOLONG;
        return false;
    }
    catch_ending_signals();
    const SignalsHeld held;
    std::copy_n(name.c_str(), name.size() + 1, pending_path);
    descriptor_ = mkostemps(pending_path, static_cast<int>(suffix.size()), O_CLOEXEC);
    named_ = descriptor_ >= 0;
    pending = named_ ? 1 : 0;
    return named_;
}

std::string TemporaryFile::path() const {
    return named_ ? pending_path : "/proc/self/fd/" + std::to_string(descriptor_);
}

bool TemporaryFile::link_to(const std::string& name) const {
    return linkat(AT_FDCWD, path().c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

bool TemporaryFile::take_place_of(const std::string& target) {
    const SignalsHeld held;
    if (named_) {
        if (std::rename(pending_path, target.c_str()) != 0) return false;
        pending = 0;
        named_ = false;
        return true;
    }
    if (link_to(target)) return true;
    if (errno != EEXIST) return false;
    // A link replaces no file, but a renamed one does.
    const std::string name = unused_name(folder_of(target));
    if (!link_to(name)) return false;
    if (std::rename(name.c_str(), target.c_str()) == 0) return true;
    const int reason = errno;
    unlink(name.c_str());
    errno = reason;
    return false;
}

}  // namespace tool
