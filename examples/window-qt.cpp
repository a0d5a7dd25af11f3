// SPDX-License-Identifier: MIT
// A Qt window that lists the drives, follows those that come and go, and is as large as it was last
// time.
//   example-window-qt             until it is closed
//   example-window-qt --close     closes itself once it has been seen
#include "RememberedWindow.h"

#include <QApplication>
#include <QListWidget>
#include <QResizeEvent>
#include <QTimer>
#include <QVBoxLayout>
#include <memory>
#include <ula/DriveWatcher.h>
#include <ula/MainThreadCaller.h>
#include <ula/integration/Qt.h>

namespace {

using namespace tav::ula;

class DriveWindow : public QWidget {
public:
    DriveWindow() {
        setWindowTitle("Drives");
        auto* const column = new QVBoxLayout(this);
        column->setContentsMargins(12, 12, 12, 12);
        column->addWidget(_list);
        _list->setSpacing(4);
        resize(_memory.width(), _memory.height());
        _watcher->driveMounted.connect([this](const Drive&) { showDrives(); });
        _watcher->driveUnmounted.connect([this](const Drive&) { showDrives(); });
        showDrives();
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        _memory.resize(event->size().width(), event->size().height());
    }

private:
    void showDrives() {
        _list->clear();
        for (const Drive& drive : Drive::drives())
            _list->addItem(QString::fromStdString(driveLine(drive)));
    }

    RememberedWindow _memory{"example-window-qt"};
    QListWidget* const _list = new QListWidget;
    const std::unique_ptr<DriveWatcher> _watcher{DriveWatcher::create()};
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    MainThreadCaller::instance();
    const QtRunLoop runLoop;
    DriveWindow window;
    window.show();
    if (application.arguments().contains("--close"))
        QTimer::singleShot(0, &window, &QWidget::close);
    return QApplication::exec();
}
