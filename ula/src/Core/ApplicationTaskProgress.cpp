// SPDX-License-Identifier: MIT
#include "ula/ApplicationTaskProgress.h"

#include "ula/src/Core/PlatformApplicationTaskProgress.h"

namespace tav::ula {

namespace {

ApplicationTaskProgress* theInstance = nullptr;

}  // namespace

ApplicationTaskProgress::ApplicationTaskProgress() = default;

ApplicationTaskProgress::~ApplicationTaskProgress() = default;

ApplicationTaskProgress* ApplicationTaskProgress::instance() {
    if (theInstance == nullptr)
        theInstance = createPlatformApplicationTaskProgress();
    return theInstance;
}

void ApplicationTaskProgress::destroyInstance() {
    delete theInstance;
    theInstance = nullptr;
}

}  // namespace tav::ula
