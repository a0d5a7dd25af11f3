// SPDX-License-Identifier: MIT
#include "tools/ula/DisplayText.h"
#include "tools/ula/SettingsCommands.h"
#include "tools/ula/SettingsStore.h"
#include "tools/ula/SettingsTable.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Terminal.h"
#include "tools/ula/Translation.h"

namespace tav::tool {

namespace {

/// Walks two maps in their common order; calls `visit(name, left, right)` with null for what is
/// not there.
template <class Map, class Visit>
void walkBoth(const Map& left, const Map& right, const Visit& visit) {
    auto a = left.begin();
    auto b = right.begin();
    while (a != left.end() || b != right.end()) {
        const bool hasLeft = a != left.end() && (b == right.end() || !(b->first < a->first));
        const bool hasRight = b != right.end() && (a == left.end() || !(a->first < b->first));
        visit(hasLeft ? a->first : b->first, hasLeft ? &a->second : nullptr,
              hasRight ? &b->second : nullptr);
        if (hasLeft)
            ++a;
        if (hasRight)
            ++b;
    }
}

void addGroup(SettingsTable& table, const FastString& name, const KeyMap* left,
              const KeyMap* right) {
    if (left && right && *left == *right)
        return;
    table.addGroup(name);
    if (left && left->empty() && !right)
        table.addNote(translated("(a group without keys)"), '-');
    if (right && right->empty() && !left)
        table.addNote(translated("(a group without keys)"), '+');
    static const KeyMap none;
    walkBoth(left ? *left : none, right ? *right : none,
             [&](const FastString& key, const Setting* before, const Setting* after) {
                 if (before && after && *before == *after)
                     return;
                 if (before)
                     table.addKey(key, *before, '-');
                 if (after)
                     table.addKey(key, *after, '+');
             });
}

}  // namespace

ExitCode runDiff(const SettingsFile& file, const DiffOptions& options) {
    const auto left = readStore(file);
    const auto right = readStore({options.other, file.isPropertyList});
    if (left->groups() == right->groups())
        return ExitOk;
    if (options.isQuiet)
        return ExitDiffers;
    SettingsTable table;
    walkBoth(left->groups(), right->groups(),
             [&](const FastString& name, const KeyMap* before, const KeyMap* after) {
                 addGroup(table, name, before, after);
             });
    const Colours colours = outputColours();
    print(colours.red + ("--- " + displayText(file.path)) + colours.plain + "\n");
    print(colours.green + ("+++ " + displayText(options.other)) + colours.plain + "\n");
    table.print();
    return ExitDiffers;
}

}  // namespace tav::tool
