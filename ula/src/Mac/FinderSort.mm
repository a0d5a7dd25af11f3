// SPDX-License-Identifier: MIT
#include "ula/src/Core/FinderSort.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/src/Mac/FinderCollation.h"

#include <CoreServices/TextSortKeys.h>
#include <numeric>

namespace tav::ula {

namespace {

/// Many texts in UTF-16, in one piece of memory.
class Utf16Texts {
public:
    explicit Utf16Texts(const std::vector<const std::string*>& texts) {
        _ends.reserve(texts.size());
        for (const std::string* text : texts) {
            append(*text);
            _ends.push_back(_characters.size());
        }
    }

    std::vector<TextSortItem> items() const {
        std::vector<TextSortItem> items;
        items.reserve(_ends.size());
        std::size_t begin = 0;
        for (const std::size_t end : _ends) {
            items.push_back({_characters.data() + begin, end - begin});
            begin = end;
        }
        return items;
    }

private:
    void append(const std::string& text) {
        const ScopedARPool pool;
        NSString* const string = [NSString fromStdString:text];
        const std::size_t begin = _characters.size();
        _characters.resize(begin + [string length]);
        [string getCharacters:_characters.data() + begin];
    }

    std::vector<UniChar> _characters;
    std::vector<std::size_t> _ends;
};

}  // namespace

std::vector<std::size_t> finderOrder(const std::vector<const std::string*>& texts) {
    const Utf16Texts characters(texts);
    const std::vector<TextSortItem> items = characters.items();
    std::vector<UInt32> order(items.size());
    // Without memory for the keys the order stays as it is.
    if (TextSortKeysOrder(kFinderCollation, items.data(), items.size(), order.data()) != noErr)
        std::iota(order.begin(), order.end(), 0U);
    return {order.begin(), order.end()};
}

}  // namespace tav::ula
