// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>

namespace tav::bench {

/// Qt wants one application object for the whole program.
inline void needQtApplication() {
    static char name[] = "bench";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    static QCoreApplication application(count, arguments);
}

}  // namespace tav::bench
