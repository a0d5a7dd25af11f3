// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace appkit {

// What an application is known by. Texts may be empty.
struct ApplicationIdentity {
    std::string name;
    std::string identifier;
    std::string path;            // of its bundle, or of its program where that lies in none
    bool isActivatable = false;  // over D-Bus, by its identifier
};

// Of a program in NAME.app or its Contents/MacOS, by the bundle's list of properties. Nothing for
// any other program, and for one that the bundle does not name as its own. Lists are read again
// when their files have changed. Thread: any.
std::optional<ApplicationIdentity> bundleIdentity(const std::string& program);

// The program that a bundle names as its own. Empty where there is no such bundle or program.
std::string programOfBundle(const std::string& bundle);

}  // namespace appkit
