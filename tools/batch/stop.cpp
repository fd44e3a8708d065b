// SPDX-License-Identifier: Apache-2.0
#include "batch/stop.h"

#include <ctime>

namespace tool {
namespace {

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr double same_request_seconds = 0.25;

volatile sig_atomic_t first_signal = 0;
volatile sig_atomic_t asked_again = 0;
timespec first_time;  // of the handler alone

void note_stop(int number) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    if (first_signal == 0) {
        first_time = now;
        first_signal = number;
        return;
    }
    const double later = static_cast<double>(now.tv_sec - first_time.tv_sec) +
                         static_cast<double>(now.tv_nsec - first_time.tv_nsec) * 1e-9;
    if (later > same_request_seconds) asked_again = 1;
}

}  // namespace

sigset_t hold_stop_signals() {
    sigset_t held;
    sigset_t outside;
    sigemptyset(&held);
    for (const int number : signals)
        sigaddset(&held, number);
    sigprocmask(SIG_BLOCK, &held, &outside);
    for (const int number : signals) {
        struct sigaction before {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler == SIG_IGN) continue;
        struct sigaction action {};
        action.sa_handler = note_stop;
        action.sa_mask = held;
        sigaction(number, &action, nullptr);
    }
    return outside;
}

void ignore_stop_signals() {
    for (const int number : signals)
        std::signal(number, SIG_IGN);
}

void notice_stop(const sigset_t& outside) {
    sigset_t held;
    sigprocmask(SIG_SETMASK, &outside, &held);
    sigprocmask(SIG_SETMASK, &held, nullptr);
}

int stop_signal() {
    return first_signal;
}

bool stop_asked_again() {
    return asked_again != 0;
}

}  // namespace tool
