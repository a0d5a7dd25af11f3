// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

namespace tav::test {

/// docs/ula-json.schema.json, with another program's validator.
class JsonSchema {
public:
    /// The commands that have an entry: "secret-list".
    static std::set<std::string> commands();

    /// Of each value that stands in the text: "valid", or where it is wrong and why.
    std::vector<std::string> verdicts(const std::string& entry, const std::string& text) const;

    /// Fails the test unless there are values and all are valid, and none is any more when a member
    /// is added, is missing (but those named here), or is of another type.
    void expectExactly(const std::string& entry, const std::string& text,
                       const std::set<std::string>& optional = {}) const;

private:
    TemporaryFolder _folder;
};

}  // namespace tav::test
