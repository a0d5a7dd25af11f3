// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsCommands.h"
#include "tools/ula/SettingsJsonWriter.h"
#include "tools/ula/SettingsStore.h"
#include "tools/ula/SettingsTable.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Translation.h"

namespace tav::tool {

namespace {

void keepOnly(GroupMap& groups, const std::string& name, const std::string& file) {
    const auto group = groups.find(FastString(name));
    if (group == groups.end())
        throw CommandError{ExitDiffers, translated("%1: there is no group \"%2\"", file, name),
                           translated("'ula settings FILE list' shows the groups that there are")};
    GroupMap only;
    only.insert_or_assign(group->first, std::move(group->second));
    groups.swap(only);
}

}  // namespace

ExitCode runList(const SettingsFile& file, const ListOptions& options) {
    const auto store = readStore(file);
    if (options.hasGroup)
        keepOnly(store->groups(), options.group, file.path);
    if (options.asJson) {
        writeJson(store->groups(), print);
        return ExitOk;
    }
    SettingsTable table;
    for (const auto& [group, keys] : store->groups()) {
        table.addGroup(group);
        for (const auto& [key, setting] : keys)
            table.addKey(key, setting);
        if (keys.empty())
            table.addNote(translated("(no keys)"));
    }
    table.print();
    return ExitOk;
}

}  // namespace tav::tool
