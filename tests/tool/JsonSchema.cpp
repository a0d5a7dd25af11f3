// SPDX-License-Identifier: MIT
#include "tests/tool/JsonSchema.h"

#include "tests/tool/ToolProcess.h"

#include <gmock/gmock.h>

namespace tav::test {

namespace {

using Json = nlohmann::json;
using Pointer = Json::json_pointer;

std::vector<Json> valuesOf(const std::string& text) {
    std::vector<Json> values;
    std::istringstream stream(text);
    while (stream >> std::ws && !stream.eof())
        stream >> values.emplace_back();
    return values;
}

std::vector<Pointer> placesIn(const Json& json, const Pointer& place = Pointer()) {
    std::vector<Pointer> places = {place};
    if (json.is_structured())
        for (const auto& [name, value] : json.items())
            for (const Pointer& below : placesIn(
                     value, json.is_array() ? place / std::stoul(name) : place / std::string(name)))
                places.push_back(below);
    return places;
}

bool isMember(const Json& json, const Pointer& place) {
    return !place.empty() && json[place.parent_pointer()].is_object();
}

/// Each with one mistake.
std::vector<Json> mistakesIn(const Json& json, const std::set<std::string>& optional) {
    std::vector<Json> mistakes;
    for (const Pointer& place : placesIn(json)) {
        if (json[place].is_object())
            (mistakes.emplace_back(json))[place]["unknown"] = 0;
        if (place.empty())
            continue;
        (mistakes.emplace_back(json))[place] = Json::array({Json::array({0})});
        if (isMember(json, place) && !optional.contains(place.back()))
            (mistakes.emplace_back(json))[place.parent_pointer()].erase(place.back());
    }
    return mistakes;
}

}  // namespace

std::set<std::string> JsonSchema::commands() {
    std::set<std::string> names;
    const Json schema = Json::parse(readFile(ULA_JSON_SCHEMA));
    for (const auto& entry : schema["$defs"].items())
        if (std::islower(static_cast<unsigned char>(entry.key()[0])))
            names.insert(entry.key());
    return names;
}

std::vector<std::string> JsonSchema::verdicts(const std::string& entry,
                                              const std::string& text) const {
    writeFile(_folder / "values", text);
    return lines(outputOf(ULA_JSON_SCHEMA_CHECK " " ULA_JSON_SCHEMA " '" + entry + "' < " +
                          (_folder / "values")));
}

void JsonSchema::expectExactly(const std::string& entry, const std::string& text,
                               const std::set<std::string>& optional) const {
    const std::vector<std::string> found = verdicts(entry, text);
    EXPECT_THAT(found, testing::Not(testing::IsEmpty())) << entry;
    EXPECT_THAT(found, testing::Each("valid")) << entry << ": " << text;
    std::string wrong;
    std::vector<Json> mistakes;
    for (const Json& value : valuesOf(text))
        for (const Json& mistake : mistakesIn(value, optional)) {
            mistakes.push_back(mistake);
            wrong += mistake.dump() + "\n";
        }
    const std::vector<std::string> refused = verdicts(entry, wrong);
    ASSERT_EQ(refused.size(), mistakes.size());
    for (std::size_t i = 0; i < refused.size(); ++i)
        EXPECT_NE(refused[i], "valid") << entry << " allows " << mistakes[i];
}

}  // namespace tav::test
