// Runs the jobs of a file in worker processes.
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <unordered_map>
#include <vips/vips8>

#include "batch/job.h"
#include "batch/line_reader.h"
#include "batch/progress.h"
#include "batch/worker.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr int stop_signals[] = {SIGINT, SIGTERM, SIGHUP};
volatile sig_atomic_t stop_signal = 0;
volatile sig_atomic_t stop_count = 0;

void note_stop(int number) {
    if (stop_signal == 0) stop_signal = number;
    stop_count = stop_count + 1;
}

sigset_t catch_stop_signals() {
    for (const int number : stop_signals) {
        struct sigaction action {};
        action.sa_handler = note_stop;
        struct sigaction before {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);  // nohup
    }
    // Held but for the polls, so that none gets lost between a look at stop_signal and a poll.
    sigset_t held;
    sigset_t before;
    sigemptyset(&held);
    for (const int number : stop_signals)
        sigaddset(&held, number);
    sigprocmask(SIG_BLOCK, &held, &before);
    return before;
}

struct Batch {
    const BatchArguments& arguments;
    sigset_t signals;  // as they were outside of the batch
    LineReader lines;
    Progress progress;
    std::vector<Worker> workers;
    std::unordered_map<std::string, uint64_t> line_of_output;

    explicit Batch(const BatchArguments& given)
        : arguments(given),
          signals(catch_stop_signals()),
          lines(given.jobs_file),
          progress(lines.name(), lines.count_lines()),
          workers(static_cast<size_t>(given.processes)) {}
};

// The file that is written, without libvips options in brackets.
fs::path output_file(const std::string& output) {
    char* const plain = vips_filename_get_filename(output.c_str());
    fs::path path = fs::path(plain).lexically_normal();
    g_free(plain);
    return path;
}

// Whether the line is a job that is to run; anything else is counted at once.
bool wants_run(Batch& batch, const std::string& line, std::string& output) {
    const uint64_t number = batch.lines.line_number();
    try {
        output = parse_job(line).output;
        const fs::path file = output_file(output);
        const auto [first, is_first] = batch.line_of_output.emplace(file.string(), number);
        if (!is_first) {
            throw Error(Exit::usage, "output: " + output + " is the output of line " +
                                         std::to_string(first->second) + " already");
        }
        std::error_code unreadable;
        if (batch.arguments.overwrite || !fs::exists(file, unreadable)) return true;
        batch.progress.skipped++;
    } catch (const Error& error) {
        batch.progress.failed++;
        batch.progress.report(number, error.what());
    }
    batch.progress.draw();
    return false;
}

// Gives every idle worker a job. False when lines must be read first.
bool hand_out_jobs(Batch& batch) {
    for (size_t i = 0; i < batch.workers.size(); i++) {
        Worker& worker = batch.workers[i];
        while (!worker.busy) {
            const std::optional<std::string> line = batch.lines.next();
            if (!line) return batch.lines.at_end();
            if (!wants_run(batch, *line, worker.output)) continue;
            worker.line_number = batch.lines.line_number();
            hand_out(batch.workers, i, *line, batch.signals);
        }
    }
    return true;
}

void finish_job(Batch& batch, Worker& worker) {
    WorkerReport report = take_report(worker);
    (report.success ? batch.progress.blended : batch.progress.failed)++;
    if (report.messages.empty() && !report.success) report.messages.emplace_back("unknown reason");
    if (!report.success) report.messages.back().insert(0, worker.output + " failed: ");
    for (const std::string& message : report.messages)
        batch.progress.report(worker.line_number, message);
    batch.progress.draw();
}

// Sleeps until a job is done, a line can be read or a signal comes.
void wait_for_news(Batch& batch, bool wants_lines) {
    std::vector<pollfd> files;
    std::vector<Worker*> owners;
    for (Worker& worker : batch.workers) {
        if (!worker.busy) continue;
        files.push_back({worker.socket, POLLIN, 0});
        owners.push_back(&worker);
    }
    if (wants_lines) files.push_back({batch.lines.descriptor(), POLLIN, 0});
    const timespec redraw = {0, 500'000'000};
    const timespec* const limit = batch.progress.on_terminal() ? &redraw : nullptr;
    const int ready = ppoll(files.data(), files.size(), limit, &batch.signals);
    if (ready < 0 && errno != EINTR) {
        throw Error(Exit::internal, std::string("batch: cannot wait: ") + std::strerror(errno));
    }
    batch.progress.draw();
    if (ready <= 0) return;
    for (size_t i = 0; i < owners.size(); i++) {
        if (files[i].revents != 0) finish_job(batch, *owners[i]);
    }
    if (wants_lines && files.back().revents != 0) batch.lines.fill();
}

bool any_busy(const Batch& batch) {
    for (const Worker& worker : batch.workers) {
        if (worker.busy) return true;
    }
    return false;
}

}  // namespace

Exit run_batch(const BatchArguments& arguments) {
    Batch batch(arguments);
    bool broken_off = false;
    for (;;) {
        const bool stopping = stop_signal != 0;
        const bool wants_lines = !stopping && !hand_out_jobs(batch);
        if (!any_busy(batch) && !wants_lines) break;
        if (stop_count > 1 && !broken_off) {
            broken_off = true;
            for (const Worker& worker : batch.workers) {
                if (worker.busy) kill(worker.pid, SIGTERM);
            }
        }
        wait_for_news(batch, wants_lines);
    }
    for (Worker& worker : batch.workers)
        end_worker(worker);
    const bool interrupted = stop_signal != 0;
    batch.progress.summarise(interrupted && !batch.lines.at_end());
    if (interrupted) return static_cast<Exit>(128 + stop_signal);
    return batch.progress.failed > 0 ? Exit::jobs_failed : Exit::success;
}

}  // namespace tool
