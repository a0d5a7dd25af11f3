// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/SettingsStore.h"

#include <string>
#include <vector>

namespace tav::tool {

/// Lines of key, type and value under group headers, in aligned columns; cut at the edge of a
/// terminal, complete everywhere else.
class SettingsTable {
public:
    void addGroup(const FastString& name);
    /// `mark`: '+' or '-' for a line of a comparison, else ' '.
    void addKey(const FastString& name, const Setting& setting, char mark = ' ');
    void addNote(const std::string& text, char mark = ' ');
    /// Fails: as `print`.
    void print() const;

private:
    struct Line {
        bool isGroup = false;
        char mark = ' ';
        std::string name;
        std::string type = {};
        std::vector<std::string> values = {};
    };

    void printKey(const Line& line, std::size_t nameWidth, std::size_t typeWidth) const;

    std::vector<Line> _lines;
};

}  // namespace tav::tool
