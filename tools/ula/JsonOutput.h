// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

/// All that `--json` prints, as docs/ula-json.schema.json describes it. Texts are exact, but for
/// bytes that are no UTF-8: each of those is the text "\xff".
/// Fails: throws `CommandError` where standard output cannot be written.
namespace tav::tool {

using Json = nlohmann::ordered_json;

/// Of the shape of everything printed; docs/guide/json.md says what stays as it is within one.
constexpr int kJsonVersion = 1;

/// A document: the version, and the content under its name.
void printJson(const char* name, Json content);
/// A line for something that happens, or is found: the version and the members of an object.
void printJsonLine(const Json& object);

/// A document whose content is a list, each entry printed when it is there.
class JsonList {
public:
    explicit JsonList(const char* name);
    void add(Json entry);
    /// To be called once after the last entry.
    void end();

private:
    bool _isEmpty = true;
};

/// A text between quotes, for documents that are written by hand.
std::string jsonText(std::string_view text);

}  // namespace tav::tool
