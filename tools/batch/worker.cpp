// SPDX-License-Identifier: Apache-2.0
#include "batch/worker.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <thread>
#include <vips/vips8>

#include "batch/job.h"
#include "batch/stop.h"
#include "commands/guard.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

[[noreturn]] void fail(const char* what) {
    throw Error(Exit::internal, std::string(what) + ": " + std::strerror(errno));
}

bool send_all(int socket, const std::string& text) {
    for (size_t sent = 0; sent < text.size();) {
        const ssize_t part = send(socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (part < 0 && errno == EINTR) continue;
        if (part <= 0) return false;
        sent += static_cast<size_t>(part);
    }
    return true;
}

// Runs a job and tells what came of it.
ordered_json run_job(const std::string& text) {
    BlendResult result;
    const Exit status = run_guarded([&] { return run_blend(parse_job(text), &result); });
    ordered_json answer = {{"success", status == Exit::success},
                           {"warnings", warnings_given()},
                           {"placement", nullptr}};
    if (status == Exit::success) {
        answer["placement"] = {{"at", {result.at.x, result.at.y}}, {"verdict", result.verdict}};
    }
    return answer;
}

// Body of the process; ends with the last job.
[[noreturn]] void serve(int socket, size_t processes) {
    if (!start_vips()) _exit(1);
    if (processes > 1) {
        const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
        vips_concurrency_set(static_cast<int>(std::max<size_t>(1, cores / processes)));
    }
    FILE* const jobs = fdopen(socket, "r");
    char* line = nullptr;
    size_t capacity = 0;
    ssize_t length = 0;
    while (jobs && (length = getline(&line, &capacity, jobs)) > 0) {
        const std::string job(line, static_cast<size_t>(length));
        if (!send_all(socket, run_job(job).dump() + '\n')) break;
    }
    _exit(0);
}

void start(std::vector<Worker>& workers, size_t index, const sigset_t& signals) {
    Worker& worker = workers[index];
    int ends[2];
    if (worker.messages < 0) worker.messages = memfd_create("imageblend-messages", MFD_CLOEXEC);
    if (worker.messages < 0) fail("there is no file in memory for messages");
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) fail("there is no socket");
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid < 0) {
        const int reason = errno;
        close(ends[0]);
        close(ends[1]);
        errno = reason;
        fail("there is no process");
    }
    if (pid == 0) {
        // A socket that another worker held open would keep this one from noticing its end.
        for (const Worker& other : workers) {
            if (other.socket >= 0) close(other.socket);
            if (other.messages >= 0 && &other != &worker) close(other.messages);
        }
        close(ends[0]);
        dup2(worker.messages, STDOUT_FILENO);
        dup2(worker.messages, STDERR_FILENO);
        ignore_stop_signals();
        signal(break_off_signal, SIG_DFL);
        pthread_sigmask(SIG_SETMASK, &signals, nullptr);
        serve(ends[1], workers.size());
    }
    close(ends[1]);
    worker.pid = pid;
    worker.socket = ends[0];
}

// The lines of the file, without the command's name in front of them.
std::vector<std::string> read_messages(int file) {
    std::string text;
    char block[4096];
    ssize_t bytes = 0;
    while ((bytes = pread(file, block, sizeof block, static_cast<off_t>(text.size()))) > 0)
        text.append(block, static_cast<size_t>(bytes));
    const std::string own_name = "imageblend: ";
    std::vector<std::string> lines;
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);) {
        const bool named = line.compare(0, own_name.size(), own_name) == 0;
        lines.push_back(named ? line.substr(own_name.size()) : line);
    }
    return lines;
}

// Null when the process ends before it has answered.
ordered_json receive_answer(int socket) {
    std::string line;
    for (;;) {
        char block[4096];
        const ssize_t bytes = recv(socket, block, sizeof block, 0);
        if (bytes < 0 && errno == EINTR) continue;
        if (bytes <= 0) return nullptr;
        line.append(block, static_cast<size_t>(bytes));
        if (line.back() == '\n') return ordered_json::parse(line);
    }
}

// Waits for the end of the process and says what it died of.
std::string forget(Worker& worker) {
    int status = 0;
    close(worker.socket);
    while (waitpid(worker.pid, &status, 0) < 0 && errno == EINTR) {
    }
    worker.pid = worker.socket = -1;
    if (!WIFSIGNALED(status)) {
        return "its process ended with status " + std::to_string(WEXITSTATUS(status));
    }
    if (WTERMSIG(status) == break_off_signal) return "it was broken off";
    return std::string("its process was ended by a signal: ") + strsignal(WTERMSIG(status));
}

}  // namespace

void hand_out(std::vector<Worker>& workers, size_t index, const Job& job, const sigset_t& signals) {
    Worker& worker = workers[index];
    worker.job = job;
    worker.handed_out = std::chrono::steady_clock::now();
    for (int attempt = 0; attempt < 2; attempt++) {
        if (worker.pid < 0) start(workers, index, signals);
        if (ftruncate(worker.messages, 0) != 0 || lseek(worker.messages, 0, SEEK_SET) != 0) {
            fail("the messages cannot be cleared");
        }
        worker.busy = send_all(worker.socket, job.text + '\n');
        if (worker.busy) return;
        // It died while it was idle.
        forget(worker);
    }
    throw Error(Exit::internal, "a process ends before it takes a job");
}

WorkerReport take_report(Worker& worker) {
    const ordered_json answer = receive_answer(worker.socket);
    worker.busy = false;
    WorkerReport report;
    report.messages = read_messages(worker.messages);
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - worker.handed_out;
    report.milliseconds = std::round(taken.count() * 10) / 10;
    if (answer.is_null()) {
        report.messages.push_back(forget(worker));
        return report;
    }
    answer["success"].get_to(report.success);
    answer["warnings"].get_to(report.warnings);
    report.placement = answer["placement"];
    return report;
}

void end_worker(Worker& worker) {
    if (worker.pid >= 0) forget(worker);
    if (worker.messages >= 0) close(worker.messages);
    worker.messages = -1;
}

}  // namespace tool
