// SPDX-License-Identifier: MIT
#include "ImageCapture/SafeName.h"

#include <gtest/gtest.h>

namespace {

using imagecapture::safeName;

TEST(SafeName, PlainNamesStayAsTheyAre) {
    for (const char* name :
         {"IMG_0001.JPG", "a b-c(1).cr2", "Größe.jpg", "写真.jpg", "e\u0301.jpg", "a..b"})
        EXPECT_EQ(safeName(name), name);
}

TEST(SafeName, NamesThatLeadElsewhereBecomePlain) {
    EXPECT_EQ(safeName("../x"), "_._x");
    EXPECT_EQ(safeName("/etc/passwd"), "_etc_passwd");
    EXPECT_EQ(safeName(".."), "_.");
    EXPECT_EQ(safeName("."), "_");
    EXPECT_EQ(safeName(""), "_");
}

TEST(SafeName, HiddenNamesAreNotHidden) {
    EXPECT_EQ(safeName(".profile"), "_profile");
}

TEST(SafeName, ControlCharactersAreReplaced) {
    EXPECT_EQ(safeName(std::string_view("a\0b.jpg", 7)), "a_b.jpg");
    EXPECT_EQ(safeName("a\nb\x1b[31m\x7f"), "a_b_[31m_");
    EXPECT_EQ(safeName("a\xC2\x9B"
                       "31m"),
              "a_31m");
}

TEST(SafeName, CharactersThatTurnTheDirectionAreReplaced) {
    EXPECT_EQ(safeName("a\u202Egpj.exe"), "a_gpj.exe");
}

TEST(SafeName, BytesThatAreNoTextAreReplacedOneByOne) {
    EXPECT_EQ(safeName("a\xFF"
                       "b\xE4.jpg"),
              "a_b_.jpg");
    EXPECT_EQ(safeName("\xC0\xAE\xC0\xAE/x"), "_____x");      // longer than needed
    EXPECT_EQ(safeName("\xED\xA0\x80.jpg"), "___.jpg");       // a surrogate
    EXPECT_EQ(safeName("\xF4\x90\x80\x80.jpg"), "____.jpg");  // beyond the last character
    EXPECT_EQ(safeName("a\xE5\x86"), "a__");                  // cut short
}

TEST(SafeName, LongNamesKeepTheirExtension) {
    std::string safe = safeName(std::string(400, 'a') + ".JPG");
    EXPECT_EQ(safe.size(), 255u);
    EXPECT_TRUE(safe.ends_with("a.JPG"));
    std::string wide;
    for (int i = 0; i < 200; ++i)
        wide += "ü";
    safe = safeName(wide + ".JPG");
    EXPECT_EQ(safe, wide.substr(0, 250) + ".JPG");
}

}  // namespace
