// SPDX-License-Identifier: MIT
// A worker thread with its progress in a Qt window. The window closes when the work is done or has
// been cancelled.
#include "Worker.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <ula/integration/Qt.h>

namespace {

class ProgressWindow : public QWidget {
public:
    ProgressWindow() {
        setWindowTitle("Import");
        auto* const column = new QVBoxLayout(this);
        column->setContentsMargins(18, 18, 18, 18);
        column->setSpacing(12);
        column->setSizeConstraint(QLayout::SetFixedSize);
        _bar->setMinimumWidth(360);
        auto* const cancel = new QPushButton("Cancel");
        column->addWidget(_label);
        column->addWidget(_bar);
        column->addWidget(cancel, 0, Qt::AlignRight);
        connect(cancel, &QPushButton::clicked, this, [this] { _worker.cancel(); });
    }

protected:
    void closeEvent(QCloseEvent* event) override {
        _worker.cancel();
        event->ignore();
    }

private:
    void showProgress(int percent) {
        _label->setText(QString("Imported %1 of 100 pictures").arg(percent));
        _bar->setValue(percent);
    }

    QLabel* const _label = new QLabel("Looking for pictures…");
    QProgressBar* const _bar = new QProgressBar;
    Worker _worker{[this](int percent) { showProgress(percent); },
                   [](bool isComplete) { QApplication::exit(isComplete ? 0 : 1); }};
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    tav::ula::MainThreadCaller::instance();
    const tav::ula::QtRunLoop runLoop;
    ProgressWindow window;
    window.show();
    return QApplication::exec();
}
