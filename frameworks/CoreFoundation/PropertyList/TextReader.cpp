// SPDX-License-Identifier: MIT
#include "TextReader.h"

#include "Readers.h"

namespace cf::plist {

Object TextReader::read(std::string& error) {
    const Object root = readRoot();
    if (root != nullptr && skipBlanks() && atEnd())
        return root;
    if (root != nullptr) {
        _factory.release(root);
        fail("something follows the list");
    }
    error = _error;
    return nullptr;
}

bool TextReader::fail(const std::string& reason) {
    if (_error.empty())
        _error = errorAt(_text, _next, reason);
    return false;
}

Object TextReader::failed(const std::string& reason) {
    fail(reason);
    return nullptr;
}

}  // namespace cf::plist
