// SPDX-License-Identifier: MIT
#pragma once

#include "Security/Keychain/SecretServiceConnection.h"

namespace security {

// Waits for a call that may ask the user something, for as long as that takes, and no longer than
// the bus is there: the calls that wait by themselves do not notice its end.
//
//     PromptedCall call(service);
//     secret_…(service, …, call.cancellable(), &PromptedCall::receive, &call);
//     secret_…_finish(service, call.wait(), …);
//
// Thread: the one that has made it.
class PromptedCall {
public:
    explicit PromptedCall(SecretService* service);
    ~PromptedCall();
    PromptedCall(const PromptedCall&) = delete;
    PromptedCall& operator=(const PromptedCall&) = delete;

    GCancellable* cancellable() { return _cancellable.get(); }
    static void receive(GObject* source, GAsyncResult* result, gpointer call);
    // Borrowed.
    GAsyncResult* wait();
    // Whether the bus has gone meanwhile.
    bool isAbandoned() const { return g_cancellable_is_cancelled(_cancellable.get()) != FALSE; }

private:
    static gboolean busEnds(GSocket* socket, GIOCondition condition, gpointer call);

    Owned<GMainContext> _context;
    Owned<GCancellable> _cancellable;
    GSource* _busEnd = nullptr;
    Owned<GAsyncResult> _result;
};

}  // namespace security
