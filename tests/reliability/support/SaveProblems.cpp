// SPDX-License-Identifier: MIT
#include "tests/reliability/support/SaveProblems.h"

#include "tests/reliability/support/MarkedSettings.h"
#include "tests/support/LogCapture.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace tav::test {

namespace {

namespace fs = std::filesystem;

std::optional<std::string> bytesOf(const std::string& path) {
    std::error_code none;
    if (!fs::is_regular_file(path, none))
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string problemsOfLog(const LogCapture& log) {
    const std::vector<debug::LogRecord> records = log.records();
    if (records.size() != 1)
        return "it logged " + std::to_string(records.size()) + " lines; ";
    const debug::LogRecord& record = records.front();
    if (record.source != "src/Core/SettingsXML" || record.line != 165 ||
        record.level != debug::LogLevelError || record.text.empty())
        return "it logged \"" + log.lines().front() + "\"; ";
    return {};
}

}  // namespace

std::string othersIn(const Before& before) {
    std::string names;
    std::error_code none;
    const std::string own = fs::path(before.path).filename().string();
    for (const auto& entry : fs::directory_iterator(before.folder, none))
        if (entry.path().filename() != own)
            names += entry.path().filename().string() + " is left in the folder; ";
    return names;
}

std::string problemsOfFailingSave(const Before& before, ula::SettingsXML& settings,
                                  const std::function<bool()>& save) {
    const LogCapture log;
    std::string problems;
    if (save())
        problems += "write() gave true; ";
    problems += problemsOfLog(log);
    if (settings.lastError().empty())
        problems += "there is no lastError(); ";
    if (bytesOf(before.path) != before.bytes)
        problems += "the file has changed; ";
    return problems + othersIn(before);
}

std::string problemsOfFailingSave(const Before& before, ula::SettingsXML& settings) {
    return problemsOfFailingSave(before, settings, [&] { return settings.write(); });
}

std::string problemsOfSave(const Before& before, ula::SettingsXML& settings, int mark,
                           const std::function<bool()>& save) {
    const LogCapture log;
    std::string problems;
    if (!save())
        problems += "write() gave false: " + settings.lastError() + "; ";
    if (!log.records().empty())
        problems += "it logged \"" + log.lines().front() + "\"; ";
    if (markOfFile(before.path) != mark)
        problems += "the file is not the new one; ";
    return problems;
}

}  // namespace tav::test
