// SPDX-License-Identifier: MIT
#include "ula/src/Core/PictureDate.h"

#include "tests/support/Picture.h"

#include <gtest/gtest.h>

namespace tav::test {

namespace {

using namespace ula;

std::string dateOf(std::string_view bytes) {
    const auto date = pictureDate(bytes);
    return date ? date->toString() : "none";
}

std::string tiff() {
    const std::string jpeg = picture("2009:03:15 10:20:30");
    return jpeg.substr(12, jpeg.find("10:20:30") + 9 - 12);
}

TEST(PictureDates, AreReadFromJpegs) {
    EXPECT_EQ(dateOf(picture("2009:03:15 10:20:30")), "2009-03-15T10:20:30");
    EXPECT_EQ(dateOf(picture()), "none");
    EXPECT_EQ(dateOf(""), "none");
}

TEST(PictureDates, AreReadFromTiffsOfBothByteOrders) {
    EXPECT_EQ(dateOf(tiff()), "2009-03-15T10:20:30");
    const std::string big("MM\0\x2A\0\0\0\x08"
                          "\0\x01\x87\x69\0\x04\0\0\0\x01\0\0\0\x1A\0\0\0\0"
                          "\0\x01\x90\x03\0\x02\0\0\0\x14\0\0\0\x2C\0\0\0\0"
                          "2010:04:16 11:21:31\0",
                          64);
    EXPECT_EQ(dateOf(big), "2010-04-16T11:21:31");
}

TEST(PictureDates, AreReadBehindOtherSegments) {
    const std::string jpeg = picture("2009:03:15 10:20:30");
    EXPECT_EQ(dateOf(jpeg.substr(0, 2) + std::string("\xFF\xE0\0\x04xx", 6) + jpeg.substr(2)),
              "2009-03-15T10:20:30");
}

TEST(PictureDates, OfEveryBrokenFileAreNoneOrWhole) {
    for (const std::string& whole : {picture("2009:03:15 10:20:30"), tiff()}) {
        for (std::size_t length = 0; length < whole.size(); ++length)
            pictureDate(std::string(whole, 0, length));
        for (std::size_t place = 0; place < whole.size(); ++place)
            for (const char byte : {'\0', '\xFF', '\x7F'}) {
                std::string broken = whole;
                broken[place] = byte;
                if (const auto date = pictureDate(broken)) {
                    EXPECT_GE(date->time.year, 1u);
                }
            }
    }
}

TEST(PictureDates, OfFilesWithoutOneAreThoseOfTheFile) {
    const PictureDay day = pictureDay("no picture", 1'000'000'000);
    EXPECT_EQ(dateFolder("%Y-%m-%d", day), "2001-09-09");
}

TEST(DateFolders, FillInWhatIsKnownAndLeaveTheRest) {
    const PictureDay day{2009, 3, 5};
    EXPECT_EQ(dateFolder("%Y/%m/%d", day), "2009/03/05");
    EXPECT_EQ(dateFolder("Trip %Y%%", day), "Trip 2009%%");
    EXPECT_EQ(dateFolder("%H%", day), "%H%");
    EXPECT_EQ(dateFolder("//%Y//x/", day), "2009/x");
    EXPECT_EQ(dateFolder("..", day), "");
}

}  // namespace

}  // namespace tav::test
