// SPDX-License-Identifier: MIT
#include "CoreServices/FastCompare.h"
#include "CoreServices/PreparedText.h"

#include <climits>

namespace {

using namespace coreservices;

int sign(int64_t difference) {
    return difference < 0 ? -1 : difference > 0;
}

// Compares with ICU. Fails: kUndecided when it has no data.
[[gnu::noinline]] int compareWithCollator(UCCollateOptions options, TextView left, TextView right) {
    UCollator* collator = threadCollator(options);
    if (collator == nullptr)
        return kUndecided;
    PreparedText a(options, left), b(options, right);
    int order = ucol_strcoll(collator, a.text().data(), static_cast<int32_t>(a.text().size()),
                             b.text().data(), static_cast<int32_t>(b.text().size()));
    if (order == UCOL_EQUAL)
        order = sign(int64_t{a.joiningCount()} - int64_t{b.joiningCount()});
    return order;
}

bool isText(const UniChar* text, UniCharCount length) {
    return (text != nullptr || length == 0) && length <= INT_MAX / 4;
}

OSStatus give(int result, Boolean* equivalent, SInt32* order) {
    if (equivalent != nullptr)
        *equivalent = result == 0;
    if (order != nullptr)
        *order = result;
    return noErr;
}

[[gnu::noinline]] OSStatus compareInFull(UCCollateOptions options, const UniChar* text1Ptr,
                                         UniCharCount text1Length, const UniChar* text2Ptr,
                                         UniCharCount text2Length, Boolean* equivalent,
                                         SInt32* order) {
    if (!isText(text1Ptr, text1Length) || !isText(text2Ptr, text2Length) ||
        (equivalent == nullptr && order == nullptr))
        return paramErr;
    if (!optionsAreKnown(options))
        return kCollateInvalidOptions;
    TextView left = viewOf(text1Ptr, text1Length);
    TextView right = viewOf(text2Ptr, text2Length);
    int result = kUndecided;
    if (options == kFinderOptions)
        if (const CollationTable* table = CollationTable::ofProcess())
            result = fastCompare(*table, left, right);
    if (result == kUndecided)
        result = compareWithCollator(options, left, right);
    return result != kUndecided ? give(result, equivalent, order)
                                : OSStatus{kCollateMissingUnicodeTableErr};
}

}  // namespace

// What decides most calls comes first and calls nothing: the rest costs more than it.
OSStatus UCCompareTextDefault(UCCollateOptions options, const UniChar* text1Ptr,
                              UniCharCount text1Length, const UniChar* text2Ptr,
                              UniCharCount text2Length, Boolean* equivalent, SInt32* order) {
    const CollationTable* table = CollationTable::ofProcessIfMade();
    if (options == kFinderOptions && table != nullptr && order != nullptr && text1Ptr != nullptr &&
        text2Ptr != nullptr && text1Length > 1 && text2Length > 1) {
        int result = compareFirst(*table, text1Ptr, text2Ptr);
        if (result != kUndecided)
            return give(result, equivalent, order);
    }
    return compareInFull(options, text1Ptr, text1Length, text2Ptr, text2Length, equivalent, order);
}
