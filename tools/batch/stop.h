// SPDX-License-Identifier: Apache-2.0
// Signals that ask a batch to stop: an interrupt, a termination signal or a hang-up.
#ifndef IMAGEBLEND_TOOLS_BATCH_STOP_H
#define IMAGEBLEND_TOOLS_BATCH_STOP_H

#include <csignal>

namespace tool {

// Catches them, but for those that are ignored (nohup), and holds them back until a poll with the
// mask that is returned, or notice_stop. None gets lost between a look at stop_signal and a poll.
sigset_t hold_stop_signals();

// Takes those that came while they were held back; `outside` is the mask of hold_stop_signals.
void notice_stop(const sigset_t& outside);

// The first that came; 0 for none.
int stop_signal();

// Whether another one came later. Senders that reach a process as well as its group, such as
// timeout(1), send one request twice at once: that is not another one.
bool stop_asked_again();

// The workers ignore these signals, which reach the whole group; another one breaks them off.
void ignore_stop_signals();
constexpr int break_off_signal = SIGUSR1;

}  // namespace tool

#endif
