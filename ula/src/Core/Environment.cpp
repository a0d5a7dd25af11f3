// SPDX-License-Identifier: MIT
#include "ula/Environment.h"

namespace tav::ula {

Environment* Environment::create() {
    return new Environment;
}

unsigned int Environment::getOSVersionNumber() {
    return 0;
}

bool Environment::getOSis64bit() {
    return true;
}

}  // namespace tav::ula
