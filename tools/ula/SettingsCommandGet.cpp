// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsCommands.h"
#include "tools/ula/SettingsJsonWriter.h"
#include "tools/ula/SettingsStore.h"
#include "tools/ula/SettingsValue.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Translation.h"

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
                           translated("%1: there is no key \"%2\" in group \"%3\"", file.path,
                                      options.key, options.group),
                           translated("'ula settings FILE list' shows what there is; --default "
                                      "VALUE gives a value instead")};
    const Setting fallback = setting ? Setting() : guessValue({options.fallback});
    if (options.asJson)
        writeJson(setting ? *setting : fallback, print);
    else if (setting)
        printBare(*setting);
    else
        print(options.fallback + "\n");
    return ExitOk;
}

}  // namespace tav::tool
