// SPDX-License-Identifier: MIT
#include "CoreServices/UDisksObject.h"

#include <glib.h>

namespace coreservices {

// What is neither letter nor digit is written as "_2d".
std::string uDisksObject(const std::string& name) {
    std::string object = "/org/freedesktop/UDisks2/block_devices/";
    for (char c : name) {
        char escape[4];
        g_snprintf(escape, sizeof escape, "_%02x", static_cast<unsigned char>(c));
        object += g_ascii_isalnum(c) ? std::string(1, c) : std::string(escape);
    }
    return object;
}

}  // namespace coreservices
