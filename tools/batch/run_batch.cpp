// SPDX-License-Identifier: Apache-2.0
// Runs the jobs of a file in worker processes.
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>

#include "batch/job.h"
#include "batch/line_reader.h"
#include "batch/outputs.h"
#include "batch/progress.h"
#include "batch/report_file.h"
#include "batch/stop.h"
#include "batch/worker.h"

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;

struct Batch {
    const BatchArguments& arguments;
    sigset_t signals;  // as they were outside of the batch
    LineReader lines;
    Progress progress;
    ReportFile report;
    std::vector<Worker> workers;
    Outputs outputs;
    std::optional<Job> returned;  // by a worker that could not be started

    explicit Batch(const BatchArguments& given)
        : arguments(given),
          signals(hold_stop_signals()),
          lines(given.jobs_file, given.first_line),
          progress(lines.name(), lines.count_lines()),
          report(given.report_file),
          workers(static_cast<size_t>(given.processes)) {}
};

enum class Fate { blended, skipped, failed };

void count(Progress& progress, Fate fate) {
    if (fate == Fate::blended) progress.blended++;
    if (fate == Fate::skipped) progress.skipped++;
    if (fate == Fate::failed) progress.failed++;
}

// A job that failed has a reason.
void finish_job(Batch& batch, const Job& job, Fate fate, const WorkerReport& report,
                const std::string& reason) {
    constexpr const char* names[] = {"blended", "skipped", "failed"};
    count(batch.progress, fate);
    batch.progress.warnings += static_cast<uint64_t>(report.warnings);
    for (const std::string& message : report.messages)
        batch.progress.report(job.line_number, message);
    batch.report.add({{"line", job.line_number},
                      {"output", job.output},
                      {"status", names[static_cast<int>(fate)]},
                      {"reason", reason},
                      {"placement", report.placement},
                      {"warnings", report.warnings},
                      {"milliseconds", report.milliseconds}});
    batch.progress.draw();
}

// Whether the line is a job that is to run; anything else is finished at once.
bool wants_run(Batch& batch, const Line& line, Job& job) {
    job = {line.number, line.text, ""};
    try {
        if (line.too_long) throw Error(Exit::usage, "job: must not be longer than 1 MB");
        job.output = parse_job(line.text).output;
        const uint64_t first = batch.outputs.claim(job.output, line.number);
        if (first != 0) {
            throw Error(Exit::usage, "output: " + job.output + " is the output of line " +
                                         std::to_string(first) + " already");
        }
        if (batch.arguments.overwrite || !output_exists(job.output)) return true;
        finish_job(batch, job, Fate::skipped, {}, "");
    } catch (const Error& error) {
        WorkerReport refusal;
        refusal.messages.emplace_back(error.what());
        finish_job(batch, job, Fate::failed, refusal, error.what());
    }
    return false;
}

// The next job that is to run; none when lines must be read first, at the end, and after a signal.
std::optional<Job> next_job(Batch& batch) {
    if (batch.returned) return std::exchange(batch.returned, std::nullopt);
    Job job;
    for (;;) {
        notice_stop(batch.signals);
        if (stop_signal() != 0) return std::nullopt;
        const std::optional<Line> line = batch.lines.next();
        if (!line) return std::nullopt;
        if (wants_run(batch, *line, job)) return job;
    }
}

size_t count_processes(const Batch& batch) {
    return static_cast<size_t>(std::count_if(batch.workers.begin(), batch.workers.end(),
                                             [](const Worker& worker) { return worker.pid >= 0; }));
}

// The batch goes on with the processes that there are.
void give_up_starting(Batch& batch, const std::string& reason) {
    for (Worker& worker : batch.workers)
        worker.given_up = worker.pid < 0;
    batch.progress.tell("only " + std::to_string(count_processes(batch)) + " of " +
                        std::to_string(batch.workers.size()) +
                        " processes can be started: " + reason);
}

// Gives every idle worker a job. Returns whether there are more jobs than workers.
bool hand_out_jobs(Batch& batch) {
    for (size_t i = 0; i < batch.workers.size(); i++) {
        if (batch.workers[i].busy || batch.workers[i].given_up) continue;
        std::optional<Job> job = next_job(batch);
        if (!job) return false;
        try {
            hand_out(batch.workers, i, *job, batch.signals);
        } catch (const Error& error) {
            batch.returned = std::move(job);
            give_up_starting(batch, error.what());
        }
    }
    return true;
}

void finish_worker(Batch& batch, Worker& worker) {
    WorkerReport report = take_report(worker);
    if (report.success) return finish_job(batch, worker.job, Fate::blended, report, "");
    if (report.messages.empty()) report.messages.emplace_back("unknown reason");
    const std::string reason = report.messages.back();
    report.messages.back().insert(0, worker.job.output + " failed: ");
    finish_job(batch, worker.job, Fate::failed, report, reason);
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
        if (files[i].revents != 0) finish_worker(batch, *owners[i]);
    }
    if (wants_lines && files.back().revents != 0) batch.lines.fill();
}

bool is_busy(const Worker& worker) {
    return worker.busy;
}

void run_jobs(Batch& batch) {
    bool broken_off = false;
    for (;;) {
        const bool enough = stop_signal() != 0 || hand_out_jobs(batch);
        const bool wants_lines = !enough && stop_signal() == 0 && !batch.lines.at_end();
        if (std::none_of(batch.workers.begin(), batch.workers.end(), is_busy) && !wants_lines)
            return;
        if (stop_asked_again() && !broken_off) {
            broken_off = true;
            for (const Worker& worker : batch.workers) {
                if (worker.busy) kill(worker.pid, break_off_signal);
            }
        }
        wait_for_news(batch, wants_lines);
    }
}

}  // namespace

Exit run_batch(const BatchArguments& arguments) {
    Batch batch(arguments);
    run_jobs(batch);
    for (Worker& worker : batch.workers)
        end_worker(worker);
    const bool interrupted = stop_signal() != 0;
    const bool jobs_are_left = batch.returned || !batch.lines.at_end();
    batch.progress.summarise(!jobs_are_left ? "" : interrupted ? "interrupted" : "broken off");
    if (interrupted) return static_cast<Exit>(128 + stop_signal());
    if (jobs_are_left) return Exit::internal;
    if (batch.report.failed()) return Exit::no_output;
    return batch.progress.failed > 0 ? Exit::jobs_failed : Exit::success;
}

}  // namespace tool
