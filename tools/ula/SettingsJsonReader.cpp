// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsJsonReader.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/ProgressBar.h"
#include "tools/ula/SettingsJsonValue.h"
#include "tools/ula/SettingsValue.h"
#include "tools/ula/Translation.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

namespace tav::tool {

namespace {

using namespace tav::ula;
using nlohmann::json;

/// Reads a text for the parser and tells how far it has come, which the parser itself does not
/// say to those that it calls.
class TrackedIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    TrackedIterator(const char* position, const char** latest)
        : _position(position), _latest(latest) {}
    reference operator*() const { return *_position; }
    TrackedIterator& operator++() {
        *_latest = ++_position;
        return *this;
    }
    TrackedIterator operator++(int) {
        TrackedIterator before(*this);
        ++*this;
        return before;
    }
    friend bool operator==(const TrackedIterator& left, const TrackedIterator& right) {
        return left._position == right._position;
    }

private:
    const char* _position;
    const char** _latest;
};

/// Takes the parser's events. Anything that does not belong stops it at once, so that nothing of
/// a hostile text is kept: it holds at most one value beside the groups.
class Reader : public nlohmann::json_sax<json> {
public:
    Reader(const std::string& text, std::string name)
        : _text(text),
          _name(std::move(name)),
          _latest(text.data()),
          _bar(translated("importing"), text.size()) {}

    GroupMap read();

    // The parser's events.
    bool null() override { return fail(translated("null is no settings value")); }
    bool boolean(bool value) override { return take(JsonValue(value)); }
    bool number_integer(number_integer_t value) override {
        return takeNumber(WholeNumber{value, true});
    }
    bool number_unsigned(number_unsigned_t value) override {
        return takeNumber(wholeNumberOf(value));
    }
    bool number_float(number_float_t value, const string_t&) override { return takeNumber(value); }
    bool string(string_t& value) override { return take(FastString(value)); }
    bool binary(binary_t&) override { return fail(translated("binary data does not belong here")); }
    bool start_object(std::size_t) override;
    bool key(string_t& name) override;
    bool end_object() override;
    bool start_array(std::size_t) override;
    bool end_array() override;
    bool parse_error(std::size_t, const std::string&, const json::exception& error) override;

private:
    /// What the innermost open bracket holds.
    enum class Level { Nothing, Document, Groups, Keys, Setting, Array };

    bool take(JsonValue value);
    bool takeNumber(JsonValue value) {
        // The end of a number shows only in the character after it.
        const char* const after = std::exchange(_latest, _latest - 1);
        const bool isTaken = take(std::move(value));
        _latest = after;
        return isTaken;
    }
    bool takeVersion(const JsonValue& value);
    bool finishSetting();
    bool fail(const std::string& reason);

    const std::string& _text;
    std::string _name;
    const char* _latest;
    ProgressBar _bar;
    std::string _error;
    Level _level = Level::Nothing;
    GroupMap _groups;
    KeyMap* _keys = nullptr;
    FastString _key;
    std::string _member;
    std::set<std::string> _documentMembers;
    bool _hasType = false;
    SettingsType _type = SETTINGSTYPE_INVALID;
    JsonValue _value;
};

GroupMap Reader::read() {
    const char* const end = _text.data() + _text.size();
    json::sax_parse(TrackedIterator(_text.data(), &_latest), TrackedIterator(end, &_latest), this);
    if (_error.empty())
        for (const char* member : {"version", "groups"})
            if (!_documentMembers.contains(member))
                fail(translated("the member \"%1\" is missing", std::string(member)));
    if (!_error.empty())
        throw CommandError{ExitCannotRead, _error,
                           translated("'ula settings FILE export' shows what is expected")};
    return std::move(_groups);
}

bool Reader::fail(const std::string& reason) {
    const auto offset = static_cast<std::size_t>(_latest - _text.data());
    const std::size_t at = offset == 0 ? 0 : offset - 1;
    const auto line = 1 + std::count(_text.begin(), _text.begin() + static_cast<long>(at), '\n');
    const std::size_t begin = at == 0 ? std::string::npos : _text.rfind('\n', at - 1);
    const std::size_t column = begin == std::string::npos ? at + 1 : at - begin;
    _error = _name + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + reason;
    return false;
}

bool Reader::start_object(std::size_t) {
    switch (_level) {
    case Level::Nothing:
        _level = Level::Document;
        return true;
    case Level::Document:
        if (_member != "groups")
            return fail(translated("\"%1\" must be a number", _member));
        _level = Level::Groups;
        return true;
    case Level::Groups:
        _level = Level::Keys;
        return true;
    case Level::Keys:
        _level = Level::Setting;
        _hasType = false;
        _value = {};
        return true;
    default:
        return fail(translated("an object does not belong here"));
    }
}

bool Reader::key(string_t& name) {
    switch (_level) {
    case Level::Document:
        _member = name;
        if (name != "version" && name != "groups")
            return fail(translated("\"%1\" is unknown; use \"%2\" and \"%3\"", name,
                                   std::string("version"), std::string("groups")));
        return _documentMembers.insert(name).second ||
               fail(translated("\"%1\" is there twice", name));
    case Level::Groups: {
        const FastString group(name);
        if (_groups.contains(group))
            return fail(translated("the group \"%1\" is there twice", name));
        _keys = &_groups[group];
        return true;
    }
    case Level::Keys:
        _key = FastString(name);
        return !_keys->contains(_key) || fail(translated("the key \"%1\" is there twice", name));
    default:
        _member = name;
        if (name != "type" && name != "value")
            return fail(translated("\"%1\" is unknown; use \"%2\" and \"%3\"", name,
                                   std::string("type"), std::string("value")));
        if (name == "type" ? _hasType : _value.index() != 0)
            return fail(translated("\"%1\" is there twice", name));
        return true;
    }
}

bool Reader::end_object() {
    switch (_level) {
    case Level::Setting:
        _level = Level::Keys;
        return finishSetting();
    case Level::Keys:
        _level = Level::Groups;
        return true;
    case Level::Groups:
        _level = Level::Document;
        return true;
    default:
        _level = Level::Nothing;
        return true;
    }
}

bool Reader::start_array(std::size_t) {
    if (_level != Level::Setting || _member != "value")
        return fail(translated("an array does not belong here"));
    _level = Level::Array;
    _value = std::vector<FastString>();
    return true;
}

bool Reader::end_array() {
    _level = Level::Setting;
    return true;
}

bool Reader::take(JsonValue value) {
    if (_level == Level::Document && _member == "version")
        return takeVersion(value);
    const FastString* text = std::get_if<FastString>(&value);
    if (_level == Level::Array) {
        if (!text)
            return fail(translated("the entries of a string_array must be strings"));
        std::get<std::vector<FastString>>(_value).push_back(*text);
        return true;
    }
    if (_level != Level::Setting)
        return fail(translated("an object must stand here, between { and }"));
    if (_member == "value") {
        _value = std::move(value);
        return true;
    }
    _hasType = true;
    _type = text ? typeOf(text->toStdString()) : SETTINGSTYPE_INVALID;
    return _type != SETTINGSTYPE_INVALID ||
           fail(translated("the type must be int, bool, double, string or string_array"));
}

bool Reader::takeVersion(const JsonValue& value) {
    const WholeNumber* whole = std::get_if<WholeNumber>(&value);
    return (whole && whole->fits && whole->number == 1) ||
           fail(translated("the version must be 1, the only one there is"));
}

bool Reader::finishSetting() {
    if (!_hasType || _value.index() == 0)
        return fail(
            translated("the member \"%1\" is missing", std::string(_hasType ? "value" : "type")));
    std::string error;
    Setting setting = settingOf(_type, _value, error);
    if (!error.empty())
        return fail(error);
    _keys->insert_or_assign(_key, std::move(setting));
    _bar.advance(static_cast<std::size_t>(_latest - _text.data()));
    return true;
}

/// The parser's reason without its own name and place, and without the text that it quotes, which
/// may be as long as the whole input.
std::string parserReason(std::string text) {
    const std::size_t place = text.find("column ");
    const std::size_t begin = place == std::string::npos ? place : text.find(": ", place);
    if (begin != std::string::npos)
        text.erase(0, begin + 2);
    const std::size_t quoted = text.find("; last read: ");
    if (quoted != std::string::npos) {
        const std::size_t expected = text.rfind("; expected ");
        const bool isAfter = expected != std::string::npos && expected > quoted;
        text = text.substr(0, quoted) + (isAfter ? text.substr(expected) : "");
    }
    constexpr std::size_t kLongest = 200;
    return translated("no valid JSON: %1",
                      text.size() > kLongest ? text.substr(0, kLongest) + "…" : text);
}

bool Reader::parse_error(std::size_t position, const std::string&, const json::exception& error) {
    // The parser's count is the better one here: it has put back what it only peeked at.
    _latest = _text.data() + std::min(position, _text.size());
    return fail(parserReason(error.what()));
}

}  // namespace

GroupMap readJson(const std::string& text, const std::string& name) {
    return Reader(text, name).read();
}

}  // namespace tav::tool
