// SPDX-License-Identifier: MIT
// Run-loop items in a GTK application with a modal dialog open. Needs an X server.
#include "Workers.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <ula/integration/GLib.h>

namespace {

constexpr gint ended = 4711;

class Gtk : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(gtk_init_check(nullptr, nullptr)); }

    // The answer of a modal dialog over a window, which something else has to end.
    gint runDialog() {
        GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        gtk_widget_show_all(window);
        _dialog = gtk_message_dialog_new(GTK_WINDOW(window), GTK_DIALOG_MODAL, GTK_MESSAGE_INFO,
                                         GTK_BUTTONS_OK, "Work goes on");
        gint answer = gtk_dialog_run(GTK_DIALOG(_dialog));
        gtk_widget_destroy(_dialog);
        gtk_widget_destroy(window);
        return answer;
    }
    void endDialog() { gtk_dialog_response(GTK_DIALOG(_dialog), ended); }

    GtkWidget* _dialog = nullptr;
};

}  // namespace

TEST_F(Gtk, WorkOfManyThreadsIsServedInAModalDialog) {
    tav::ula::GLibRunLoop integration;
    Workers workers([this] { endDialog(); });
    EXPECT_EQ(runDialog(), ended);
    EXPECT_TRUE(workers.allServed());
}

TEST_F(Gtk, ATimerFiresInAModalDialog) {
    tav::ula::GLibRunLoop integration;
    TestTimer timer(0.01, 0.01, [&] {
        if (timer.calls() == 5)
            endDialog();
    });
    timer.add();
    EXPECT_EQ(runDialog(), ended);
    EXPECT_EQ(timer.calls(), 5);
}

TEST_F(Gtk, WorkIsServedInADialogThatACallbackOpens) {
    tav::ula::GLibRunLoop integration;
    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    gint answer = 0;
    bool served = false;
    TestSource opener([&] {
        Workers workers([this] { endDialog(); });
        answer = runDialog();
        served = workers.allServed();
        g_main_loop_quit(loop);
    });
    opener.add().signalAndWake();
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
    EXPECT_EQ(answer, ended);
    EXPECT_TRUE(served);
}

TEST_F(Gtk, AnIdleApplicationIsNotWokenByTheRunLoop) {
    tav::ula::GLibRunLoop integration;
    TestSource source;
    TestTimer timer(3600, 3600);
    source.add();
    timer.add();
    // The first turns take what the set-up left, all of which the server has sent then.
    gdk_display_sync(gdk_display_get_default());
    while (g_main_context_iteration(nullptr, FALSE))
        continue;
    EXPECT_FALSE(g_main_context_pending(nullptr));
}

TEST_F(Gtk, NothingIsServedAfterTheIntegrationHasGone) {
    TestSource source;
    source.add();
    { tav::ula::GLibRunLoop integration; }
    source.signalAndWake();
    while (g_main_context_iteration(nullptr, FALSE))
        continue;
    EXPECT_EQ(source.calls(), 0);
}
