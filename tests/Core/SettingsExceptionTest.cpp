// SPDX-License-Identifier: MIT
#include "ula/SettingsException.h"

#include <gtest/gtest.h>
#include <memory>

namespace tav::ula {
namespace {

TEST(SettingsExceptionTest, CarriesItsMessage) {
    EXPECT_STREQ(SettingsException("why").what(), "why");
    EXPECT_STREQ(SettingsException().what(), "");
}

TEST(SettingsExceptionTest, ACloneOutlivesTheOriginal) {
    auto original = std::make_unique<SettingsException>("why");
    const std::unique_ptr<SettingsException> clone(original->clone());
    original.reset();
    EXPECT_STREQ(clone->what(), "why");
}

TEST(SettingsExceptionTest, RaisedThroughTheBaseItKeepsItsType) {
    const std::unique_ptr<Exception> exception(SettingsException("why").clone());
    EXPECT_THROW(exception->raise(), SettingsException);
}

}  // namespace
}  // namespace tav::ula
