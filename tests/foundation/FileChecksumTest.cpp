// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/FileChecksum.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tav::test {

namespace {

using filesystem::checksumOfFile;
using filesystem::FileChecksum;

TEST(FileChecksums, DoNotDependOnThePieces) {
    FileChecksum whole, pieces;
    whole.add("0123456789abcdefghij");
    for (const char* piece : {"0", "12345678", "", "9abcdefghi", "j"})
        pieces.add(piece);
    EXPECT_TRUE(whole == pieces);
}

TEST(FileChecksums, TellWhatIsDifferent) {
    const auto of = [](std::string_view text) {
        FileChecksum checksum;
        checksum.add(text);
        return checksum;
    };
    EXPECT_FALSE(of("0123456789") == of("0123456788"));
    EXPECT_FALSE(of("0123456789abcdef") == of("89abcdef01234567"));
    EXPECT_FALSE(of(std::string_view("\0", 1)) == of(std::string_view("\0\0", 2)));
    EXPECT_FALSE(of("") == of(std::string_view("\0\0\0\0\0\0\0\0", 8)));
}

TEST(FileChecksums, AreThoseOfFiles) {
    const TemporaryFolder folder;
    const std::string bytes(2'500'001, 'x');
    writeFile(folder / "a", bytes);
    FileChecksum checksum;
    checksum.add(bytes);
    std::string error;
    EXPECT_TRUE(checksumOfFile(folder / "a", error) == checksum);
    EXPECT_EQ(checksumOfFile(folder / "none", error), std::nullopt);
    EXPECT_EQ(error, "cannot read \"" + (folder / "none") + "\": No such file or directory");
}

}  // namespace

}  // namespace tav::test
