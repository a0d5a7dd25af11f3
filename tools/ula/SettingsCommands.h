// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

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
ExitCode runList(const std::string& file, const ListOptions& options);

struct GetOptions {
    std::string group, key;
    std::string fallback;
    bool hasFallback = false;
    bool asJson = false;
};
ExitCode runGet(const std::string& file, const GetOptions& options);

struct SetOptions {
    std::string group, key;
    std::vector<std::string> values;
    std::string type;
    bool asJson = false;
    bool keepBackup = false;
};
ExitCode runSet(const std::string& file, const SetOptions& options);

struct UnsetOptions {
    std::string group, key;
    bool hasKey = false;
    bool keepBackup = false;
};
ExitCode runUnset(const std::string& file, const UnsetOptions& options);

struct ImportOptions {
    std::string source;
    bool replaceGroups = false;
    bool keepBackup = false;
};
ExitCode runImport(const std::string& file, const ImportOptions& options);

struct ExportOptions {
    std::string target = "-";
};
ExitCode runExport(const std::string& file, const ExportOptions& options);

struct DiffOptions {
    std::string other;
    bool isQuiet = false;
};
ExitCode runDiff(const std::string& file, const DiffOptions& options);

}  // namespace tav::tool
