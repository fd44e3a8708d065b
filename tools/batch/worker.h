// SPDX-License-Identifier: Apache-2.0
// A process that blends one job at a time: one that dies of a damaged picture takes only its own job
// along.
#ifndef IMAGEBLEND_TOOLS_BATCH_WORKER_H
#define IMAGEBLEND_TOOLS_BATCH_WORKER_H

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tool {

struct Job {
    uint64_t line_number = 0;
    std::string text;
    std::string output;
};

struct Worker {
    pid_t pid = -1;     // -1: not started
    int socket = -1;    // jobs go in and answers come back, one line each
    int messages = -1;  // file in memory that holds what the worker printed about its job
    bool busy = false;
    bool given_up = false;  // its process could not be started
    // The job at hand.
    Job job;
    std::chrono::steady_clock::time_point handed_out;
};

struct WorkerReport {
    bool success = false;
    int warnings = 0;
    double milliseconds = 0;            // since the job was handed out
    nlohmann::ordered_json placement;   // null if the job came to none
    std::vector<std::string> messages;  // of a failed job, the last one is the reason
};

// Hands a job to an idle worker and starts its process when it has none. The process ignores the
// signals that ask a batch to stop. Fails when no process can be started.
void hand_out(std::vector<Worker>& workers, size_t index, const Job& job, const sigset_t& signals);

// Takes the report of a busy worker whose socket is readable, which is idle afterwards.
WorkerReport take_report(Worker& worker);

// Ends an idle worker.
void end_worker(Worker& worker);

}  // namespace tool

#endif
