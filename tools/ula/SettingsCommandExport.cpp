// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsCommands.h"
#include "tools/ula/SettingsJsonWriter.h"
#include "tools/ula/SettingsStore.h"
#include "tools/ula/StandardOutput.h"
#include "ula/foundation/filesystem/DurableFile.h"

namespace tav::tool {

ExitCode runExport(const SettingsFile& file, const ExportOptions& options) {
    const auto store = readStore(file);
    if (options.target == "-") {
        writeJson(store->groups(), print);
        return ExitOk;
    }
    filesystem::DurableFile target{FastString(options.target)};
    writeJson(store->groups(), [&](std::string_view text) { target.write(text); });
    if (!target.commit())
        throw CommandError{ExitCannotWrite, target.error()};
    return ExitOk;
}

}  // namespace tav::tool
