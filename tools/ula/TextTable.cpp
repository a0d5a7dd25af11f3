// SPDX-License-Identifier: MIT
#include "tools/ula/TextTable.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Terminal.h"

#include <algorithm>

namespace tav::tool {

namespace {

constexpr std::size_t kGap = 2;

std::vector<std::size_t> widthsOf(const std::vector<TableRow>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const TableRow& row : rows)
        for (std::size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(row[i]));
    return widths;
}

std::string onTheRight(const std::string& text, std::size_t width) {
    return std::string(width - displayWidth(text), ' ') + text + std::string(kGap, ' ');
}

}  // namespace

void printTable(const std::vector<TableRow>& rows, const std::set<std::size_t>& numbers) {
    const std::vector<std::size_t> widths = widthsOf(rows);
    const Colours colours = outputColours();
    for (const TableRow& row : rows) {
        std::string line;
        for (std::size_t i = 0; i + 1 < row.size(); ++i)
            line += numbers.contains(i) ? onTheRight(row[i], widths[i])
                                        : padded(row[i], widths[i] + kGap);
        const bool isHead = &row == &rows.front();
        print((isHead ? colours.bold : "") + line + row.back() + (isHead ? colours.plain : "") +
              "\n");
    }
}

}  // namespace tav::tool
