// SPDX-License-Identifier: MIT
// A worker thread with its progress in a GTK window. The window closes when the work is done or
// has been cancelled.
#include "Worker.h"

#include <gtk/gtk.h>
#include <memory>
#include <string>
#include <ula/integration/GLib.h>

namespace {

class ProgressWindow {
public:
    ProgressWindow() {
        gtk_window_set_title(GTK_WINDOW(_window), "Import");
        gtk_window_set_resizable(GTK_WINDOW(_window), FALSE);
        gtk_container_set_border_width(GTK_CONTAINER(_window), 18);
        gtk_container_add(GTK_CONTAINER(_window), makeContent());
        g_signal_connect(_cancel, "clicked", G_CALLBACK(cancel), this);
        g_signal_connect(_window, "delete-event", G_CALLBACK(close), this);
        gtk_widget_show_all(_window);
        _worker = std::make_unique<Worker>([this](int percent) { show(percent); },
                                           [this](bool isComplete) { finish(isComplete); });
    }
    ~ProgressWindow() {
        _worker.reset();
        gtk_widget_destroy(_window);
    }

    bool isComplete() const { return _isComplete; }

private:
    GtkWidget* makeContent() {
        GtkWidget* const column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
        gtk_widget_set_halign(_label, GTK_ALIGN_START);
        gtk_widget_set_size_request(_bar, 360, -1);
        gtk_widget_set_halign(_cancel, GTK_ALIGN_END);
        for (GtkWidget* widget : {_label, _bar, _cancel})
            gtk_container_add(GTK_CONTAINER(column), widget);
        return column;
    }
    void show(int percent) {
        const std::string text = "Imported " + std::to_string(percent) + " of 100 pictures";
        gtk_label_set_text(GTK_LABEL(_label), text.c_str());
        gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(_bar), percent / 100.0);
    }
    void finish(bool isComplete) {
        _isComplete = isComplete;
        gtk_main_quit();
    }

    static void cancel(GtkButton*, gpointer self) {
        static_cast<ProgressWindow*>(self)->_worker->cancel();
    }
    static gboolean close(GtkWidget*, GdkEvent*, gpointer self) {
        static_cast<ProgressWindow*>(self)->_worker->cancel();
        return TRUE;
    }

    GtkWidget* const _window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkWidget* const _label = gtk_label_new("Looking for pictures…");
    GtkWidget* const _bar = gtk_progress_bar_new();
    GtkWidget* const _cancel = gtk_button_new_with_label("Cancel");
    std::unique_ptr<Worker> _worker;
    bool _isComplete = false;
};

}  // namespace

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    tav::ula::MainThreadCaller::instance();
    const tav::ula::GLibRunLoop runLoop;
    const ProgressWindow window;
    gtk_main();
    return window.isComplete() ? 0 : 1;
}
