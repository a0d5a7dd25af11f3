// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tav::ula {
class SettingsXML;
}

namespace tav::test {

/// A folder's state that a save either leaves alone or changes as it should.
struct Before {
    std::string folder;
    std::string path;
    /// Empty: there is no old file.
    std::optional<std::string> bytes;
};

/// What a save that has to fail did wrong, in words; empty when it gave false, logged its one
/// line, gave the reason, and left the folder as it was.
/// `save` stands for calling `write` where the caller has to prepare that very call.
std::string problemsOfFailingSave(const Before& before, ula::SettingsXML& settings,
                                  const std::function<bool()>& save);
std::string problemsOfFailingSave(const Before& before, ula::SettingsXML& settings);

/// What a save that has to succeed did wrong: `write` gave true, nothing is logged, and the
/// file carries `mark`. Other names in the folder are the caller's to judge.
std::string problemsOfSave(const Before& before, ula::SettingsXML& settings, int mark,
                           const std::function<bool()>& save);

/// The names in the folder but the file's own; empty when there are none.
std::string othersIn(const Before& before);

}  // namespace tav::test
