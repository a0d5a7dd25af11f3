// SPDX-License-Identifier: MIT
#pragma once

// Addresses of items rather than objects: an object asks the service for all its properties.
#define SECRET_API_SUBJECT_TO_CHANGE
#include <CoreServices/MacTypes.h>
#include <atomic>
#include <libsecret/secret.h>
#include <memory>

namespace security {

struct ReleaseGObject {
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
    void operator()(SecretValue* value) const { secret_value_unref(value); }
    void operator()(gchar** texts) const { g_strfreev(texts); }
    void operator()(gchar* text) const { g_free(text); }
};
template <class Object>
using Owned = std::unique_ptr<Object, ReleaseGObject>;

// The process's one connection to the Secret Service, made when it is first needed and anew after
// the bus or the service has gone. It goes over the connection to the bus that GLib shares,
// libsecret knows no other, which from then on no longer ends the program with the bus. No bus is
// ever started; a bus may start the service.
//
// A process that was forked without exec has none: the thread behind it is the parent's.
// Thread: one at a time.
class SecretServiceConnection {
public:
    // Borrowed until the next call. Fails: errSecNotAvailable.
    OSStatus connect(SecretService*& service);
    // Gives up what no longer answers: the service, and the bus if that has gone.
    void disconnect();
    // Whether this process was forked from the one that has connected. Thread: any.
    bool isOfParent() const;

private:
    bool openBus();
    void openService();
    void giveUpClosedBus();

    // Where what comes for the connection waits, rather than in the program's loop.
    Owned<GMainContext> _context;
    Owned<GDBusConnection> _bus;
    Owned<SecretService> _service;
    std::atomic<int> _process = 0;
};

}  // namespace security
