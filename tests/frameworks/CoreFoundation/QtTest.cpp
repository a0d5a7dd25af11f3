// SPDX-License-Identifier: MIT
// Run-loop items in a Qt Widgets application with a modal dialog open. Needs an X server.
#include "Workers.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>
#include <ula/integration/Qt.h>

namespace {

constexpr int ended = 4711;

class Qt5 : public testing::Test {
protected:
    // The answer of a modal dialog over a window, which something else has to end.
    int runDialog() {
        QWidget window;
        window.show();
        QMessageBox box(QMessageBox::Information, "Test", "Work goes on", QMessageBox::Ok, &window);
        _dialog = &box;
        return box.exec();
    }
    void endDialog() { _dialog->done(ended); }

    QDialog* _dialog = nullptr;
};

}  // namespace

TEST_F(Qt5, WorkOfManyThreadsIsServedInAModalDialog) {
    tav::ula::QtRunLoop integration;
    Workers workers([this] { endDialog(); });
    EXPECT_EQ(runDialog(), ended);
    EXPECT_TRUE(workers.allServed());
}

TEST_F(Qt5, ATimerFiresInAModalDialog) {
    tav::ula::QtRunLoop integration;
    TestTimer timer(0.01, 0.01, [&] {
        if (timer.calls() == 5)
            endDialog();
    });
    timer.add();
    EXPECT_EQ(runDialog(), ended);
    EXPECT_EQ(timer.calls(), 5);
}

TEST_F(Qt5, WorkIsServedInADialogThatACallbackOpens) {
    tav::ula::QtRunLoop integration;
    int answer = 0;
    bool served = false;
    TestSource opener([&] {
        Workers workers([this] { endDialog(); });
        answer = runDialog();
        served = workers.allServed();
        QApplication::quit();
    });
    opener.add();
    QTimer::singleShot(0, [&] { opener.signalAndWake(); });
    QApplication::exec();
    EXPECT_EQ(answer, ended);
    EXPECT_TRUE(served);
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
