// SPDX-License-Identifier: MIT
#include "ula/FileProperties.h"

#include <gtest/gtest.h>

namespace tav::ula {
namespace {

FileProperties photo() {
    FileProperties properties;
    properties.setName("a.jpg");
    properties.setTitle("A");
    properties.setTargetPath("/target");
    properties.setFullPath("/full");
    properties.setFlag(ReadOnly, true);
    return properties;
}

std::unique_ptr<FileIconBitmap> icon() {
    const unsigned char pixels[] = {1, 2, 3, 4, 5, 6, 7, 8};
    return std::make_unique<FileIconBitmap>(2U, 1U, 8U, 32U, pixels);
}

TEST(FileProperties, IsEmptyAtFirst) {
    const FileProperties properties;
    EXPECT_EQ(properties.name() + properties.title() + properties.targetPath() +
                  properties.fullPath(),
              "");
    EXPECT_EQ(properties.flags(), 0U);
    EXPECT_EQ(properties.icon(), nullptr);
}

TEST(FileProperties, FlagsHaveTheirFixedValues) {
    EXPECT_EQ(Alias, 1U);
    EXPECT_EQ(UnresolvedAlias, 2U);
    EXPECT_EQ(Link, 4U);
    EXPECT_EQ(Hidden, 8U);
    EXPECT_EQ(ReadOnly, 16U);
    EXPECT_EQ(Directory, 32U);
    EXPECT_EQ(MountPoint, 64U);
}

TEST(FileProperties, SeveralFlagsAreSetWhenAllOfThemAre) {
    FileProperties properties;
    properties.setFlag(Link, true);
    const auto both = static_cast<FilePropertyFlags>(Link | Hidden);
    EXPECT_FALSE(properties.isFlagSet(both));
    properties.setFlag(Hidden, true);
    EXPECT_TRUE(properties.isFlagSet(both));
}

TEST(FileProperties, SettingSeveralFlagsOfWhichOneIsSetSetsThemAll) {
    FileProperties properties;
    properties.setFlag(Link, true);
    properties.setFlag(static_cast<FilePropertyFlags>(Link | Hidden | Directory), true);
    EXPECT_EQ(properties.flags(), Link | Hidden | Directory);
}

TEST(FileProperties, ClearingSeveralFlagsOfWhichOneIsSetChangesNothing) {
    FileProperties properties;
    properties.setFlag(Link, true);
    // They are not set, together: it is as asked already.
    properties.setFlag(static_cast<FilePropertyFlags>(Link | Hidden), false);
    EXPECT_EQ(properties.flags(), Link);
}

TEST(FileProperties, ClearingSeveralFlagsThatAreSetClearsThemAll) {
    FileProperties properties;
    const auto both = static_cast<FilePropertyFlags>(Link | Hidden);
    properties.setFlag(both, true);
    properties.setFlag(both, false);
    EXPECT_EQ(properties.flags(), 0U);
}

TEST(FileProperties, ResetKeepsTheFullPath) {
    FileProperties properties = photo();
    properties.setIcon(icon());
    properties.reset();
    EXPECT_EQ(properties.fullPath(), "/full");
    EXPECT_EQ(properties.name() + properties.title() + properties.targetPath(), "");
    EXPECT_EQ(properties.flags(), 0U);
    EXPECT_EQ(properties.icon(), nullptr);
}

TEST(FileProperties, RecordsThatDifferOnlyInTheirIconsAreEqual) {
    FileProperties properties = photo();
    properties.setIcon(icon());
    EXPECT_TRUE(properties == photo());
}

TEST(FileProperties, RecordsThatDifferInAnythingElseAreNot) {
    const auto isChangedBy = [](auto change) {
        FileProperties properties = photo();
        change(properties);
        return !(properties == photo());
    };
    EXPECT_TRUE(isChangedBy([](FileProperties& properties) { properties.setName("b"); }));
    EXPECT_TRUE(isChangedBy([](FileProperties& properties) { properties.setTitle("b"); }));
    EXPECT_TRUE(isChangedBy([](FileProperties& properties) { properties.setTargetPath("b"); }));
    EXPECT_TRUE(isChangedBy([](FileProperties& properties) { properties.setFullPath("b"); }));
    EXPECT_TRUE(isChangedBy([](FileProperties& properties) { properties.setFlag(Link, true); }));
}

TEST(FileProperties, CopiesHaveAnIconOfTheirOwn) {
    FileProperties properties = photo();
    properties.setIcon(icon());
    const FileProperties copy(properties);
    ASSERT_NE(copy.icon(), nullptr);
    EXPECT_NE(copy.icon(), properties.icon());
    EXPECT_NE(copy.icon()->data.get(), properties.icon()->data.get());
    EXPECT_EQ(copy.icon()->data[7], 8);
    EXPECT_TRUE(copy == properties);
}

TEST(FileProperties, AssignmentReplacesAnIconByNone) {
    FileProperties properties;
    properties.setIcon(icon());
    properties = photo();
    EXPECT_EQ(properties.icon(), nullptr);
    EXPECT_TRUE(properties == photo());
}

TEST(FileProperties, AssignmentToItselfChangesNothing) {
    FileProperties properties = photo();
    const FileProperties& same = properties;
    properties = same;
    EXPECT_TRUE(properties == photo());
}

TEST(FileIconBitmap, CopiesExactlyItsRows) {
    const unsigned char pixels[] = {1, 2, 3, 4, 5, 6, 7};
    const FileIconBitmap bitmap(1, 2, 3, 24, pixels);
    EXPECT_EQ(bitmap.size(), 6U);
    EXPECT_EQ(std::vector<unsigned char>(bitmap.data.get(), bitmap.data.get() + 6),
              std::vector<unsigned char>(pixels, pixels + 6));
}

TEST(FileIconBitmap, ZeroBytesPerRowStandForTheWidth) {
    const FileIconBitmap bitmap(5, 2, 0, 8);
    EXPECT_EQ(bitmap.bytesPerRow, 5U);
    EXPECT_EQ(bitmap.size(), 10U);
}

TEST(FileIconBitmap, HasNoPixelsWithoutASource) {
    const FileIconBitmap bitmap(5, 2, 5, 8);
    EXPECT_EQ(bitmap.data, nullptr);
    EXPECT_EQ(FileIconBitmap(bitmap).data, nullptr);
}

TEST(FileIconBitmap, AssignmentTakesSizeAndPixels) {
    FileIconBitmap bitmap(5, 2, 5, 8);
    const unsigned char pixels[] = {9};
    bitmap = FileIconBitmap(1, 1, 1, 8, pixels);
    EXPECT_EQ(bitmap.width, 1U);
    EXPECT_EQ(bitmap.size(), 1U);
    EXPECT_EQ(bitmap.data[0], 9);
}

}  // namespace
}  // namespace tav::ula
