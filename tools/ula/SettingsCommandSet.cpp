// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsCommands.h"
#include "tools/ula/SettingsJsonValue.h"
#include "tools/ula/SettingsStore.h"
#include "tools/ula/SettingsValue.h"
#include "tools/ula/Translation.h"

namespace tav::tool {

namespace {

using ula::SettingsType;

Setting jsonValue(const SetOptions& options, SettingsType type) {
    if (options.values.size() != 1)
        throw CommandError{ExitUsage, translated("with --json there must be one VALUE, in JSON"),
                           translated("for instance: %1",
                                      R"(ula settings FILE set GROUP KEY --json '["a", "b"]')")};
    return readJsonValue(options.values[0], type);
}

Setting newValue(const SetOptions& options, const Setting* old) {
    const bool isTypeGiven = !options.type.empty();
    if (options.values.empty() && options.type != "string_array")
        throw CommandError{ExitUsage, translated("the VALUE is missing"),
                           translated("name one (\"\" is the empty string), or store an empty "
                                      "array with --type string_array")};
    SettingsType type = ula::SETTINGSTYPE_INVALID;
    if (isTypeGiven)
        type = typeOf(options.type);
    else if (old)
        type = old->type();
    if (options.asJson)
        return jsonValue(options, type);
    return type == ula::SETTINGSTYPE_INVALID ? guessValue(options.values)
                                             : parseValue(type, options.values);
}

}  // namespace

ExitCode runSet(const SettingsFile& file, const SetOptions& options) {
    if (options.group.empty() || options.key.empty())
        throw CommandError{ExitUsage, translated("GROUP and KEY must not be empty")};
    const auto store = openStore(file, IfMissing::Start);
    const Setting value = newValue(options, store->find(options.group, options.key));
    store->groups()[FastString(options.group)].insert_or_assign(FastString(options.key), value);
    writeStore(*store, file, options.keepBackup);
    return ExitOk;
}

}  // namespace tav::tool
