// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <pthread.h>

namespace coreservices {

// Signals are for the threads of the application: a thread that is started as long as this lives
// never takes one.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t _before;
};

}  // namespace coreservices
