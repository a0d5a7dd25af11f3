// SPDX-License-Identifier: MIT
// A GTK window that lists the drives, follows those that come and go, and is as large as it was
// last time.
//   example-window-gtk             until it is closed
//   example-window-gtk --close     closes itself once it has been seen
#include "RememberedWindow.h"

#include <cstring>
#include <gtk/gtk.h>
#include <memory>
#include <ula/DriveWatcher.h>
#include <ula/MainThreadCaller.h>
#include <ula/integration/GLib.h>

namespace {

using namespace tav::ula;

class DriveWindow {
public:
    DriveWindow() {
        gtk_window_set_title(GTK_WINDOW(_window), "Drives");
        gtk_window_set_default_size(GTK_WINDOW(_window), _memory.width(), _memory.height());
        gtk_container_set_border_width(GTK_CONTAINER(_window), 12);
        GtkWidget* const scrolled = gtk_scrolled_window_new(nullptr, nullptr);
        gtk_container_add(GTK_CONTAINER(scrolled), _list);
        gtk_container_add(GTK_CONTAINER(_window), scrolled);
        g_signal_connect(_window, "size-allocate", G_CALLBACK(resized), this);
        g_signal_connect(_window, "delete-event", G_CALLBACK(closed), this);
        _watcher->driveMounted.connect([this](const Drive&) { showDrives(); });
        _watcher->driveUnmounted.connect([this](const Drive&) { showDrives(); });
        showDrives();
    }
    ~DriveWindow() { gtk_widget_destroy(_window); }

    void closeSoon() {
        g_idle_add(
            [](gpointer window) {
                gtk_window_close(GTK_WINDOW(window));
                return G_SOURCE_REMOVE;
            },
            _window);
    }

private:
    void showDrives() {
        gtk_container_foreach(
            GTK_CONTAINER(_list), [](GtkWidget* line, gpointer) { gtk_widget_destroy(line); },
            nullptr);
        for (const Drive& drive : Drive::drives()) {
            GtkWidget* const line = gtk_label_new(driveLine(drive).c_str());
            gtk_widget_set_halign(line, GTK_ALIGN_START);
            g_object_set(line, "margin", 8, nullptr);
            gtk_container_add(GTK_CONTAINER(_list), line);
        }
        gtk_widget_show_all(_window);
    }

    static void resized(GtkWidget* window, GdkRectangle*, gpointer self) {
        int width = 0, height = 0;
        gtk_window_get_size(GTK_WINDOW(window), &width, &height);
        static_cast<DriveWindow*>(self)->_memory.resize(width, height);
    }
    static gboolean closed(GtkWidget*, GdkEvent*, gpointer) {
        gtk_main_quit();
        return TRUE;
    }

    RememberedWindow _memory{"example-window-gtk"};
    GtkWidget* const _window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkWidget* const _list = gtk_list_box_new();
    const std::unique_ptr<DriveWatcher> _watcher{DriveWatcher::create()};
};

}  // namespace

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    MainThreadCaller::instance();
    const GLibRunLoop runLoop;
    DriveWindow window;
    if (argc > 1 && std::strcmp(argv[1], "--close") == 0)
        window.closeSoon();
    gtk_main();
}
