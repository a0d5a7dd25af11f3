// SPDX-License-Identifier: MIT
// Runs a sequence of string operations beside the same ones on std::string and compares.
#include "fuzz/Expect.h"
#include "ula/foundation/debug/Log.h"
#include "ula/foundation/text/FastString.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

namespace {

using namespace tav;

/// The order as it is defined, one byte after the other.
int referenceOrder(const std::string& left, const std::string& right) {
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i)
        if (left[i] != right[i])
            return static_cast<signed char>(left[i]) < static_cast<signed char>(right[i]) ? -1 : 1;
    return left.size() < right.size() ? -1 : left.size() > right.size() ? 1 : 0;
}

int signOf(int number) {
    return number < 0 ? -1 : number > 0 ? 1 : 0;
}

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : _next(data), _end(data + size) {}
    bool isEmpty() const { return _next == _end; }
    std::uint8_t byte() { return isEmpty() ? std::uint8_t{0} : *_next++; }
    std::string bytes(std::size_t count) {
        count = std::min(count, static_cast<std::size_t>(_end - _next));
        std::string text(reinterpret_cast<const char*>(_next), count);
        _next += count;
        return text;
    }

private:
    const std::uint8_t* _next;
    const std::uint8_t* _end;
};

class Machine {
public:
    void step(Input& input) {
        const std::uint8_t operation = input.byte();
        const std::size_t to = input.byte() % kStrings;
        const std::size_t from = input.byte() % kStrings;
        switch (operation % 10) {
        case 0:
            return set(to, input.bytes(input.byte()));
        case 1:
            return borrow(to, input.bytes(input.byte()));
        case 2:
            _strings[to] = _strings[from];
            _models[to] = _models[from];
            return;
        case 3:
            return move(to, from);
        case 4:
            return take(to, from, input.byte(), input.byte());
        case 5:
            return find(from, static_cast<char>(input.byte()), input.byte());
        case 6:
            return append(to, from);
        case 7:
            return findText(to, from, input.byte());
        case 8:
            return compareText(to, from);
        default:
            return compare(to, from);
        }
    }
    void check() const {
        for (std::size_t i = 0; i < kStrings; ++i)
            expect(_strings[i].toStdString() == _models[i]);
    }

private:
    static constexpr std::size_t kStrings = 6;

    void set(std::size_t to, const std::string& text) {
        _strings[to] = String(text);
        _models[to] = text;
    }
    /// The text is gone when this returns: the string must have its own bytes.
    void borrow(std::size_t to, std::string text) {
        const String borrowed = String::borrow(text);
        _strings[to] = borrowed;
        _models[to] = text;
        std::ranges::fill(text, 'X');
    }
    void move(std::size_t to, std::size_t from) {
        if (to == from)
            return;
        _strings[to] = std::move(_strings[from]);
        _models[to] = std::move(_models[from]);
        _strings[from] = String();
        _models[from].clear();
    }
    void take(std::size_t to, std::size_t from, std::size_t begin, std::size_t length) {
        const std::string& model = _models[from];
        if (length == 255)
            length = String::npos;
        const std::string part = begin <= model.size() ? model.substr(begin, length) : "";
        _strings[to] = _strings[from].substr(begin, length);
        _models[to] = part;
    }
    void find(std::size_t from, char byte, std::size_t offset) {
        const std::size_t place = _strings[from].find(byte, offset);
        expect(place ==
               (offset > _models[from].size() ? String::npos : _models[from].find(byte, offset)));
    }
    void findText(std::size_t to, std::size_t from, std::size_t offset) {
        const char* const text = _models[to].c_str();
        const std::size_t place = _strings[from].find(text, offset);
        expect(place ==
               (offset > _models[from].size() ? String::npos : _models[from].find(text, offset)));
    }
    /// A zero-terminated text ends at the first zero of the model.
    void compareText(std::size_t left, std::size_t right) {
        const char* const text = _models[right].c_str();
        const int order = referenceOrder(_models[left], text);
        expect(signOf(_strings[left].compare(text)) == order);
        expect((_strings[left] == text) == (order == 0));
    }
    void append(std::size_t to, std::size_t from) {
        if (_models[to].size() + _models[from].size() > 4096)
            return;
        _strings[to] = _strings[to] + _strings[from];
        _models[to] += _models[from];
    }
    void compare(std::size_t left, std::size_t right) {
        const int order = referenceOrder(_models[left], _models[right]);
        expect(signOf(_strings[left].compare(_strings[right])) == order);
        expect((_strings[left] < _strings[right]) == (order < 0));
        expect((_strings[left] >= _strings[right]) == (order >= 0));
        const bool equal = _models[left] == _models[right];
        expect((_strings[left] == _strings[right]) == equal);
        if (equal)
            expect(std::hash<String>()(_strings[left]) == std::hash<String>()(_strings[right]));
    }

    std::array<String, kStrings> _strings;
    std::array<std::string, kStrings> _models;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool quiet = (debug::setLogSink([](const debug::LogRecord&) {}), true);
    static_cast<void>(quiet);
    Input input(data, size);
    Machine machine;
    while (!input.isEmpty())
        machine.step(input);
    machine.check();
    return 0;
}
