// A process that blends one job at a time. Blends must not overlap in one process, and one that
// dies of a damaged picture takes only its own job along.
#ifndef IMAGEBLEND_TOOLS_BATCH_WORKER_H
#define IMAGEBLEND_TOOLS_BATCH_WORKER_H

#include <sys/types.h>

#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

namespace tool {

struct Worker {
    pid_t pid = -1;     // -1: not started
    int socket = -1;    // jobs go in, one line each; one byte of status comes back for each
    int messages = -1;  // file in memory that holds what the worker printed about its job
    bool busy = false;
    // The job at hand.
    uint64_t line_number = 0;
    std::string output;
};

struct WorkerReport {
    bool success;
    std::vector<std::string> messages;  // of a failed job, the last one is the reason
};

// Hands a job to an idle worker and starts its process when it has none. The process ignores an
// interrupt from the terminal. Fails when no process can be started.
void hand_out(std::vector<Worker>& workers, size_t index, const std::string& job,
              const sigset_t& signals);

// Takes the report of a busy worker whose socket is readable, which is idle afterwards.
WorkerReport take_report(Worker& worker);

// Ends an idle worker.
void end_worker(Worker& worker);

}  // namespace tool

#endif
