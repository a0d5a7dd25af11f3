// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"
#include "tools/ula/SettingsStore.h"

#include <string>
#include <vector>

/// The verbs of `ula settings`, each with what its command line says. Each returns the exit code.
/// Fails: throws `CommandError`.
namespace tav::tool {

struct ListOptions {
    std::string group;
    bool hasGroup = false;
    bool asJson = false;
};
ExitCode runList(const SettingsFile& file, const ListOptions& options);

struct GetOptions {
    std::string group, key;
    std::string fallback;
    bool hasFallback = false;
    bool asJson = false;
};
ExitCode runGet(const SettingsFile& file, const GetOptions& options);

struct SetOptions {
    std::string group, key;
    std::vector<std::string> values;
    std::string type;
    bool asJson = false;
    bool keepBackup = false;
};
ExitCode runSet(const SettingsFile& file, const SetOptions& options);

struct UnsetOptions {
    std::string group, key;
    bool hasKey = false;
    bool keepBackup = false;
};
ExitCode runUnset(const SettingsFile& file, const UnsetOptions& options);

struct ImportOptions {
    std::string source;
    bool replaceGroups = false;
    bool keepBackup = false;
};
ExitCode runImport(const SettingsFile& file, const ImportOptions& options);

struct ExportOptions {
    std::string target = "-";
};
ExitCode runExport(const SettingsFile& file, const ExportOptions& options);

struct DiffOptions {
    std::string other;
    bool isQuiet = false;
};
ExitCode runDiff(const SettingsFile& file, const DiffOptions& options);

}  // namespace tav::tool
