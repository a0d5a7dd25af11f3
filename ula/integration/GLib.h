// SPDX-License-Identifier: MIT
// Has a GLib main loop (GTK's, for instance) serve the calling thread's run loop, so that calls
// onto the main thread, timers and notifications arrive in a GLib application, in modal dialogs
// too. Only this header needs GLib; the library does not link it.
#pragma once

#include <CoreFoundation/RunLoopIntegration.h>
#include <glib.h>

namespace tav::ula {

/// Serves the run loop of the thread that makes it for as long as it lives.
///
/// Thread: make and destroy it on the thread that runs the context. Exceptions of call-backs end
/// the program, as GLib cannot pass them on.
class GLibRunLoop {
public:
    /// A null context is the default one.
    explicit GLibRunLoop(GMainContext* context = nullptr)
        : _source(g_source_new(&functions(), sizeof(Source))) {
        auto* source = reinterpret_cast<Source*>(_source);
        source->runLoop = CFRunLoopGetCurrent();
        // A dialog that a call-back opens runs the loop again and must find it served.
        g_source_set_can_recurse(_source, TRUE);
        g_source_add_unix_fd(_source, ULARunLoopGetDescriptor(source->runLoop), G_IO_IN);
        g_source_attach(_source, context);
    }
    ~GLibRunLoop() {
        g_source_destroy(_source);
        g_source_unref(_source);
    }
    GLibRunLoop(const GLibRunLoop&) = delete;
    GLibRunLoop& operator=(const GLibRunLoop&) = delete;

private:
    struct Source {
        GSource base;
        CFRunLoopRef runLoop;
    };

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer) noexcept {
        ULARunLoopServe(reinterpret_cast<Source*>(source)->runLoop);
        return G_SOURCE_CONTINUE;
    }

    // Without prepare and check functions GLib looks at the descriptor alone.
    static GSourceFuncs& functions() {
        static GSourceFuncs table = {nullptr, nullptr, dispatch, nullptr, nullptr, nullptr};
        return table;
    }

    GSource* _source;
};

}  // namespace tav::ula
