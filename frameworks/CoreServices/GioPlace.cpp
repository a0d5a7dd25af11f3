// SPDX-License-Identifier: MIT
#include "CoreServices/GioPlace.h"

#include <gio/gio.h>
#include <memory>

namespace coreservices {

namespace {

template <class Type>
struct Unref {
    void operator()(Type* object) const { g_object_unref(object); }
};
template <class Type>
using Owned = std::unique_ptr<Type, Unref<Type>>;

// A main context of its own for the calling thread, in which GIO answers it.
class OwnContext {
public:
    OwnContext() : _context(g_main_context_new()) { g_main_context_push_thread_default(_context); }
    ~OwnContext() {
        g_main_context_pop_thread_default(_context);
        g_main_context_unref(_context);
    }
    OwnContext(const OwnContext&) = delete;
    OwnContext& operator=(const OwnContext&) = delete;

    GMainContext* get() const { return _context; }

private:
    GMainContext* _context;
};

struct MountState {
    bool isDone = false;
    bool isMounted = false;
};

void mountEnded(GObject* file, GAsyncResult* result, gpointer data) {
    auto* state = static_cast<MountState*>(data);
    GError* error = nullptr;
    state->isMounted = g_file_mount_enclosing_volume_finish(G_FILE(file), result, &error) != FALSE;
    if (error != nullptr && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_ALREADY_MOUNTED))
        state->isMounted = true;
    g_clear_error(&error);
    state->isDone = true;
}

gboolean cancelNow(gpointer cancellable) {
    g_cancellable_cancel(G_CANCELLABLE(cancellable));
    return G_SOURCE_REMOVE;
}

}  // namespace

std::string gioPathOf(const std::string& url) {
    Owned<GFile> file(g_file_new_for_uri(url.c_str()));
    std::unique_ptr<char, decltype(&g_free)> path(g_file_get_path(file.get()), &g_free);
    return path ? path.get() : std::string();
}

bool gioMount(const std::string& url, std::chrono::milliseconds patience) {
    OwnContext context;
    Owned<GFile> file(g_file_new_for_uri(url.c_str()));
    Owned<GCancellable> cancellable(g_cancellable_new());
    // Nobody answers its questions, so whatever needs a password fails at once.
    Owned<GMountOperation> operation(g_mount_operation_new());
    MountState state;
    g_file_mount_enclosing_volume(file.get(), G_MOUNT_MOUNT_NONE, operation.get(),
                                  cancellable.get(), mountEnded, &state);
    GSource* deadline = g_timeout_source_new(static_cast<guint>(patience.count()));
    g_source_set_callback(deadline, cancelNow, cancellable.get(), nullptr);
    g_source_attach(deadline, context.get());
    while (!state.isDone)
        g_main_context_iteration(context.get(), TRUE);
    g_source_destroy(deadline);
    g_source_unref(deadline);
    return state.isMounted;
}

}  // namespace coreservices
