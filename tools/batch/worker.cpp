#include "batch/worker.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <thread>
#include <vips/vips8>

#include "batch/job.h"
#include "commands/guard.h"

namespace tool {
namespace {

[[noreturn]] void fail(const char* what) {
    throw Error(Exit::internal, std::string("batch: ") + what + ": " + std::strerror(errno));
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
        const Exit status = run_guarded([&] { return run_blend(parse_job(job)); });
        const uint8_t reply = static_cast<uint8_t>(status);
        if (send(socket, &reply, 1, MSG_NOSIGNAL) != 1) break;
    }
    _exit(0);
}

void start(std::vector<Worker>& workers, size_t index, const sigset_t& signals) {
    Worker& worker = workers[index];
    int ends[2];
    if (worker.messages < 0) worker.messages = memfd_create("imageblend-messages", MFD_CLOEXEC);
    if (worker.messages < 0) fail("no file in memory for messages");
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) fail("no socket");
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid < 0) {
        close(ends[0]);
        close(ends[1]);
        fail("no process");
    }
    if (pid == 0) {
        // A socket that another worker held open would keep this one from noticing its end.
        for (const Worker& other : workers) {
            if (other.socket >= 0) close(other.socket);
        }
        close(ends[0]);
        dup2(worker.messages, STDOUT_FILENO);
        dup2(worker.messages, STDERR_FILENO);
        signal(SIGINT, SIG_IGN);
        signal(SIGHUP, SIG_IGN);
        signal(SIGTERM, SIG_DFL);
        pthread_sigmask(SIG_SETMASK, &signals, nullptr);
        serve(ends[1], workers.size());
    }
    close(ends[1]);
    worker.pid = pid;
    worker.socket = ends[0];
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

// Waits for the end of the process and says what it died of.
std::string forget(Worker& worker) {
    int status = 0;
    close(worker.socket);
    while (waitpid(worker.pid, &status, 0) < 0 && errno == EINTR) {
    }
    worker.pid = worker.socket = -1;
    if (!WIFSIGNALED(status))
        return "its process ended with status " + std::to_string(WEXITSTATUS(status));
    return std::string("its process was ended by a signal: ") + strsignal(WTERMSIG(status));
}

}  // namespace

void hand_out(std::vector<Worker>& workers, size_t index, const std::string& job,
              const sigset_t& signals) {
    Worker& worker = workers[index];
    const std::string line = job + '\n';
    for (int attempt = 0; attempt < 2; attempt++) {
        if (worker.pid < 0) start(workers, index, signals);
        if (ftruncate(worker.messages, 0) != 0 || lseek(worker.messages, 0, SEEK_SET) != 0) {
            fail("the messages cannot be cleared");
        }
        worker.busy = true;
        if (send_all(worker.socket, line)) return;
        // It died while it was idle.
        forget(worker);
    }
    worker.busy = false;
    throw Error(Exit::internal, "batch: a process ends before it takes a job");
}

WorkerReport take_report(Worker& worker) {
    uint8_t status = 0;
    ssize_t bytes = 0;
    while ((bytes = recv(worker.socket, &status, 1, 0)) < 0 && errno == EINTR) {
    }
    worker.busy = false;
    WorkerReport report{bytes == 1 && status == 0, read_messages(worker.messages)};
    if (bytes != 1) report.messages.push_back(forget(worker));
    return report;
}

void end_worker(Worker& worker) {
    if (worker.pid >= 0) forget(worker);
    if (worker.messages >= 0) close(worker.messages);
    worker.messages = -1;
}

}  // namespace tool
