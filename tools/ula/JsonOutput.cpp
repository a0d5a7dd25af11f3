// SPDX-License-Identifier: MIT
#include "tools/ula/JsonOutput.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"

#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

void makeTextsValid(Json& json) {
    if (json.is_string())
        json = validText(json.get_ref<const std::string&>());
    else if (json.is_structured())
        for (Json& each : json)
            makeTextsValid(each);
}

/// What could steer a terminal stands between quotes only, where its escape means the same.
std::string oneLine(const Json& json) {
    return displayText(json.dump());
}

std::string indented(const Json& json) {
    const std::string text = json.dump(2);
    std::string result;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        result += displayText(std::string_view(text).substr(begin, end - begin)) + "\n";
        begin = end + 1;
    }
    return result;
}

}  // namespace

void printJson(const char* name, Json content) {
    makeTextsValid(content);
    print(indented({{"version", kJsonVersion}, {name, std::move(content)}}));
}

void printJsonLine(const Json& object) {
    Json line{{"version", kJsonVersion}};
    line.update(object);
    makeTextsValid(line);
    print(oneLine(line) + "\n");
}

JsonList::JsonList(const char* name) {
    print("{\n  \"version\": " + std::to_string(kJsonVersion) + ",\n  \"" + name + "\": [");
}

void JsonList::add(Json entry) {
    makeTextsValid(entry);
    print((_isEmpty ? "\n    " : ",\n    ") + oneLine(entry));
    _isEmpty = false;
}

void JsonList::end() {
    print(_isEmpty ? "]\n}\n" : "\n  ]\n}\n");
}

std::string jsonText(std::string_view text) {
    return oneLine(validText(text));
}

}  // namespace tav::tool
