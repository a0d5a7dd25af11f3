// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::tool {

/// A text that is overwritten when it goes.
class Secret {
public:
    explicit Secret(std::string text) : _text(std::move(text)) {}
    ~Secret();
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;

    const std::string& text() const { return _text; }

private:
    std::string _text;
};

/// A program that dies with a secret leaves none behind.
void leaveNoCoreFile();

/// From a terminal one line, which is not shown as it is typed; else all of standard input, without
/// the end of its last line. Fails: throws `CommandError` when there is none.
std::string readSecret();

}  // namespace tav::tool
