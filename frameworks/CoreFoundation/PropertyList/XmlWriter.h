// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>
#include <string>
#include <string_view>
#include <vector>

namespace cf::plist {

/// Writes a property list in XML.
class XmlWriter {
public:
    /// Fails: false, the reason in `reason`.
    bool write(id list, std::string& reason);
    const std::string& text() const { return _text; }

private:
    struct Entry {
        std::string_view key;
        id value;
    };

    bool writeObject(id object);
    bool writeNumber(NSNumber* number);
    bool writeArray(NSArray* array);
    bool writeDictionary(NSDictionary* dictionary);
    bool collectEntries(NSDictionary* dictionary, std::string& names, std::vector<Entry>& entries);
    bool convert(NSString* string, std::string_view& text);
    bool writeString(NSString* string);
    bool writeData(NSData* data);
    bool writeDate(NSDate* date);
    bool writeEscaped(std::string_view text);
    void writeTabs() { _text.append(_level, '\t'); }
    bool fail(const std::string& reason) {
        if (_reason.empty())
            _reason = reason;
        return false;
    }

    std::string _text;
    std::string _reason;
    std::size_t _level = 0;
    std::vector<char> _characters;
};

}  // namespace cf::plist
