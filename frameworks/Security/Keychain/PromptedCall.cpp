// SPDX-License-Identifier: MIT
#include "Security/Keychain/PromptedCall.h"

namespace security {

PromptedCall::PromptedCall(SecretService* service)
    : _context(g_main_context_new()), _cancellable(g_cancellable_new()) {
    g_main_context_push_thread_default(_context.get());
    GIOStream* const stream =
        g_dbus_connection_get_stream(g_dbus_proxy_get_connection(G_DBUS_PROXY(service)));
    if (!G_IS_SOCKET_CONNECTION(stream))
        return;
    // Nothing is read there: GLib's own thread does that.
    _busEnd = g_socket_create_source(g_socket_connection_get_socket(G_SOCKET_CONNECTION(stream)),
                                     static_cast<GIOCondition>(G_IO_HUP | G_IO_ERR), nullptr);
    g_source_set_callback(_busEnd, G_SOURCE_FUNC(&PromptedCall::busEnds), this, nullptr);
    g_source_attach(_busEnd, _context.get());
}

PromptedCall::~PromptedCall() {
    if (_busEnd != nullptr) {
        g_source_destroy(_busEnd);
        g_source_unref(_busEnd);
    }
    g_main_context_pop_thread_default(_context.get());
}

gboolean PromptedCall::busEnds(GSocket*, GIOCondition, gpointer call) {
    g_cancellable_cancel(static_cast<PromptedCall*>(call)->cancellable());
    return G_SOURCE_REMOVE;
}

void PromptedCall::receive(GObject*, GAsyncResult* result, gpointer call) {
    static_cast<PromptedCall*>(call)->_result.reset(
        static_cast<GAsyncResult*>(g_object_ref(result)));
}

GAsyncResult* PromptedCall::wait() {
    while (_result == nullptr)
        g_main_context_iteration(_context.get(), TRUE);
    return _result.get();
}

}  // namespace security
