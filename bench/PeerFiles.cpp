// SPDX-License-Identifier: MIT
#include "bench/PeerFiles.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pugixml.hpp>
#include <rapidxml/rapidxml.hpp>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::bench {

namespace {

void appendEscaped(std::string& text, std::string_view value) {
    for (const char byte : value) {
        switch (byte) {
        case '&':
            text += "&amp;";
            break;
        case '<':
            text += "&lt;";
            break;
        case '>':
            text += "&gt;";
            break;
        case '"':
            text += "&quot;";
            break;
        default:
            text += byte;
        }
    }
}

void appendValue(std::string& text, std::string_view value) {
    text += "\t\t\t<value value=\"";
    appendEscaped(text, value);
    text += "\"/>\n";
}

void appendReal(std::string& text, double value) {
    std::array<char, 40> digits;
    const int length = std::snprintf(digits.data(), digits.size(), "%.17g", value);
    appendValue(text, {digits.data(), static_cast<std::size_t>(length)});
}

void appendValues(std::string& text, const Value& value) {
    switch (value.type) {
    case ValueType::integer:
        return appendValue(text, std::to_string(value.integer));
    case ValueType::boolean:
        return appendValue(text, value.boolean ? "1" : "0");
    case ValueType::real:
        return appendReal(text, value.real);
    case ValueType::text:
        return appendValue(text, value.text);
    case ValueType::textArray:
        for (const std::string& entry : value.texts)
            appendValue(text, entry);
    }
}

void appendKey(std::string& text, const std::string& name, const Value& value) {
    text += "\t\t<key name=\"";
    appendEscaped(text, name);
    text += "\" type=\"";
    text += typeName(value.type);
    text += "\">\n";
    appendValues(text, value);
    text += "\t\t</key>\n";
}

void beginGroup(std::string& text, const std::string& name) {
    text += "\t<group name=\"";
    appendEscaped(text, name);
    text += "\">\n";
}

constexpr const char* kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings>\n";

Value toValue(const char* type, const std::vector<const char*>& texts) {
    Value value;
    value.type = typeOfName(type);
    switch (value.type) {
    case ValueType::integer:
        value.integer = std::atoi(texts.at(0));
        break;
    case ValueType::boolean:
        value.boolean = std::atoi(texts.at(0)) > 0;
        break;
    case ValueType::real:
        std::from_chars(texts.at(0), texts[0] + std::strlen(texts[0]), value.real);
        break;
    case ValueType::text:
        value.text = texts.at(0);
        break;
    case ValueType::textArray:
        value.texts.assign(texts.begin(), texts.end());
        break;
    }
    return value;
}

}  // namespace

std::string xmlText(const Data& data) {
    std::string text = kHead;
    for (const Group& group : data) {
        beginGroup(text, group.name);
        for (const Key& key : group.keys)
            appendKey(text, key.name, key.value);
        text += "\t</group>\n";
    }
    return text += "</settings>\n";
}

std::string xmlText(const StdStore& store) {
    std::string text;
    text.reserve(1 << 16);
    text += kHead;
    for (const auto& [group, keys] : store) {
        beginGroup(text, group);
        for (const auto& [key, value] : keys)
            appendKey(text, key, value);
        text += "\t</group>\n";
    }
    return text += "</settings>\n";
}

std::string readFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (file < 0 || fstat(file, &status) != 0)
        throw std::runtime_error("cannot read " + path);
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t used = 0;
    while (used < text.size()) {
        const ssize_t count = read(file, text.data() + used, text.size() - used);
        if (count <= 0)
            throw std::runtime_error("cannot read " + path);
        used += static_cast<std::size_t>(count);
    }
    close(file);
    return text;
}

void writeFile(const std::string& path, std::string_view text) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    while (!text.empty()) {
        const ssize_t count = write(file, text.data(), text.size());
        if (count < 0)
            throw std::runtime_error("cannot write " + path);
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    close(file);
}

StdStore loadWithRapidXml(const std::string& path) {
    std::string text = readFile(path);
    rapidxml::xml_document<> document;
    document.parse<0>(text.data());
    StdStore store;
    std::vector<const char*> texts;
    for (auto* group = document.first_node()->first_node(); group; group = group->next_sibling()) {
        std::map<std::string, Value> keys;
        for (auto* key = group->first_node(); key; key = key->next_sibling()) {
            texts.clear();
            for (auto* value = key->first_node(); value; value = value->next_sibling())
                texts.push_back(value->first_attribute("value")->value());
            keys[key->first_attribute("name")->value()] =
                toValue(key->first_attribute("type")->value(), texts);
        }
        store[group->first_attribute("name")->value()] = std::move(keys);
    }
    return store;
}

StdStore loadWithPugiXml(const std::string& path) {
    pugi::xml_document document;
    if (!document.load_file(path.c_str()))
        throw std::runtime_error("cannot parse " + path);
    StdStore store;
    std::vector<const char*> texts;
    for (const auto group : document.document_element().children()) {
        std::map<std::string, Value> keys;
        for (const auto key : group.children()) {
            texts.clear();
            for (const auto value : key.children())
                texts.push_back(value.attribute("value").value());
            keys[key.attribute("name").value()] = toValue(key.attribute("type").value(), texts);
        }
        store[group.attribute("name").value()] = std::move(keys);
    }
    return store;
}

}  // namespace tav::bench
