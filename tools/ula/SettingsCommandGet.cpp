// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsCommands.h"
#include "tools/ula/SettingsJsonWriter.h"
#include "tools/ula/SettingsStore.h"
#include "tools/ula/SettingsValue.h"
#include "tools/ula/StandardOutput.h"

namespace tav::tool {

namespace {

void printBare(const Setting& setting) {
    if (setting.type() != ula::SETTINGSTYPE_STRING_ARRAY) {
        print(bareText(setting) + "\n");
        return;
    }
    for (const FastString& text : setting.asStringArray())
        print(text.toStdString() + "\n");
}

}  // namespace

ExitCode runGet(const SettingsFile& file, const GetOptions& options) {
    const auto store = readStore(file);
    const Setting* setting = store->find(options.group, options.key);
    if (!setting && !options.hasFallback)
        throw CommandError{ExitDiffers,
                           file.path + ": there is no key \"" + options.key + "\" in group \"" +
                               options.group + "\"",
                           "'ula settings FILE list' shows what there is; --default VALUE gives "
                           "a value instead"};
    const Setting fallback = setting ? Setting() : guessValue({options.fallback});
    if (options.asJson)
        print(jsonOf(setting ? *setting : fallback) + "\n");
    else if (setting)
        printBare(*setting);
    else
        print(options.fallback + "\n");
    return ExitOk;
}

}  // namespace tav::tool
