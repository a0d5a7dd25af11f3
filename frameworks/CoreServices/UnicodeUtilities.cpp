// SPDX-License-Identifier: MIT
#include "CoreServices/FastCompare.h"
#include "CoreServices/PreparedText.h"

#include <climits>

namespace {

using namespace coreservices;

int sign(int64_t difference) {
    return difference < 0 ? -1 : difference > 0;
}

// Compares with ICU. Fails: nothing when it has no data.
std::optional<int> compareWithCollator(UCCollateOptions options, TextView left, TextView right) {
    UCollator* collator = threadCollator(options);
    if (collator == nullptr)
        return std::nullopt;
    PreparedText a(options, left), b(options, right);
    int order = ucol_strcoll(collator, a.text().data(), static_cast<int32_t>(a.text().size()),
                             b.text().data(), static_cast<int32_t>(b.text().size()));
    if (order == UCOL_EQUAL)
        order = sign(int64_t{a.joiningCount()} - int64_t{b.joiningCount()});
    return order;
}

std::optional<int> compare(UCCollateOptions options, TextView left, TextView right) {
    if (options == kFinderOptions) {
        const CollationTable& table = CollationTable::ofProcess();
        if (table.usable())
            if (std::optional<int> order = fastCompare(table, left, right))
                return order;
    }
    return compareWithCollator(options, left, right);
}

bool isText(const UniChar* text, UniCharCount length) {
    return (text != nullptr || length == 0) && length <= INT_MAX / 4;
}

}  // namespace

OSStatus UCCompareTextDefault(UCCollateOptions options, const UniChar* text1Ptr,
                              UniCharCount text1Length, const UniChar* text2Ptr,
                              UniCharCount text2Length, Boolean* equivalent, SInt32* order) {
    if (!isText(text1Ptr, text1Length) || !isText(text2Ptr, text2Length) ||
        (equivalent == nullptr && order == nullptr))
        return paramErr;
    if (!optionsAreKnown(options))
        return kCollateInvalidOptions;
    std::optional<int> result =
        compare(options, viewOf(text1Ptr, text1Length), viewOf(text2Ptr, text2Length));
    if (!result)
        return kCollateMissingUnicodeTableErr;
    if (equivalent != nullptr)
        *equivalent = *result == 0;
    if (order != nullptr)
        *order = *result;
    return noErr;
}
