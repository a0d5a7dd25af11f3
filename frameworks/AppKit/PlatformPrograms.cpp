// SPDX-License-Identifier: MIT
#include "AppKit/PlatformPrograms.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <string_view>
#include <unistd.h>

namespace appkit {

namespace {

constexpr std::string_view kPlace = "/usr/bin/";
constexpr const char* kPrograms[] = {"hdiutil", "open", "xattr"};
constexpr std::string_view kBeginners[] = {"!",  "{",    "do",    "elif", "else",
                                           "if", "then", "until", "while"};

std::string folderOfPrograms() {
    Dl_info library{};
    char path[PATH_MAX];
    if (dladdr(kPrograms, &library) == 0 || realpath(library.dli_fname, path) == nullptr)
        return {};
    const std::string file = path;
    return file.substr(0, file.rfind('/')) + "/ula/";
}

std::string quoted(const std::string& path) {
    std::string text = "'";
    for (const char character : path)
        text += character == '\'' ? "'\\''" : std::string(1, character);
    return text + "'";
}

// Goes through a script word by word, as far as needed to know which words are commands.
class ScriptReader {
public:
    explicit ScriptReader(const std::string& script) : _script(script) {}

    std::string replaced() {
        while (_at < _script.size())
            isWordEnd(_script[_at]) ? passSeparator() : passWord();
        return _result;
    }

private:
    static bool isWordEnd(char character) {
        return std::string_view(" \t\n;&|()`<>").find(character) != std::string_view::npos;
    }

    void passSeparator() {
        const char character = _script[_at++];
        if (character == '<' || character == '>')
            _isCommand = false;
        else if (character != ' ' && character != '\t')
            _isCommand = true;
        _result += character;
    }

    void passComment() {
        const size_t end = std::min(_script.find('\n', _at), _script.size());
        _result += _script.substr(_at, end - _at);
        _at = end;
    }

    void passWord() {
        if (_script[_at] == '#')
            return passComment();
        const size_t begin = _at;
        while (_at < _script.size() && !isWordEnd(_script[_at]))
            passCharacter();
        const std::string word = _script.substr(begin, _at - begin);
        const std::string program = _isCommand ? platformProgram(word) : "";
        _result += program.empty() ? word : quoted(program);
        _isCommand = _isCommand && std::find(std::begin(kBeginners), std::end(kBeginners), word) !=
                                       std::end(kBeginners);
    }

    // A quotation is one character of its word.
    void passCharacter() {
        const char quote = _script[_at++];
        if (quote == '\\')
            _at = std::min(_at + 1, _script.size());
        if (quote != '\'' && quote != '"')
            return;
        while (_at < _script.size() && _script[_at] != quote)
            _at += quote == '"' && _script[_at] == '\\' ? 2 : 1;
        _at = std::min(_at + 1, _script.size());
    }

    const std::string& _script;
    std::string _result;
    size_t _at = 0;
    bool _isCommand = true;
};

}  // namespace

std::string platformProgram(const std::string& name) {
    const std::string leaf = name.starts_with(kPlace) ? name.substr(kPlace.size()) : name;
    if (std::find(std::begin(kPrograms), std::end(kPrograms), leaf) == std::end(kPrograms))
        return {};
    // Never destroyed: programs are run at the very end.
    static const auto& folder = *new std::string(folderOfPrograms());
    const std::string program = folder.empty() ? "" : folder + leaf;
    return access(program.c_str(), X_OK) == 0 ? program : "";
}

std::string withPlatformPrograms(const std::string& script) {
    return ScriptReader(script).replaced();
}

}  // namespace appkit
