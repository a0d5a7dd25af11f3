// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsCommands.h"
#include "tools/ula/SettingsStore.h"
#include "tools/ula/Translation.h"

namespace tav::tool {

namespace {

bool removeKey(GroupMap& groups, const FastString& group, const FastString& key) {
    const auto keys = groups.find(group);
    if (keys == groups.end() || keys->second.erase(key) == 0)
        return false;
    // A group comes with its first key, so it goes with its last.
    if (keys->second.empty())
        groups.erase(keys);
    return true;
}

}  // namespace

ExitCode runUnset(const SettingsFile& file, const UnsetOptions& options) {
    const auto store = openStore(file, IfMissing::Fail);
    const FastString group(options.group);
    const bool isRemoved = options.hasKey
                               ? removeKey(store->groups(), group, FastString(options.key))
                               : store->groups().erase(group) != 0;
    if (!isRemoved) {
        throw CommandError{
            ExitDiffers,
            options.hasKey ? translated("%1: there is no key \"%2\" in group \"%3\"", file.path,
                                        options.key, options.group)
                           : translated("%1: there is no group \"%2\"", file.path, options.group),
            translated("'ula settings FILE list' shows what there is")};
    }
    writeStore(*store, file, options.keepBackup);
    return ExitOk;
}

}  // namespace tav::tool
