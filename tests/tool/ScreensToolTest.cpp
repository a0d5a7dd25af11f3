// SPDX-License-Identifier: MIT
// ula screens, on X servers of its own.
#include "tests/tool/ToolProcess.h"

#include "tests/support/DisplayServer.h"

#include <array>
#include <cstdlib>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gmock/gmock.h>

namespace tav::test {

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

using Colour = std::array<int, 3>;

constexpr Colour kWhite{255, 255, 255};
constexpr Colour kPrimary{0xdc, 0xeb, 0xfa};
constexpr Colour kOther{0xee, 0xf2, 0xf6};

class Picture {
public:
    explicit Picture(const std::string& path)
        : _pixels(gdk_pixbuf_new_from_file(path.c_str(), nullptr)) {}
    ~Picture() {
        if (_pixels != nullptr)
            g_object_unref(_pixels);
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    bool exists() const { return _pixels != nullptr; }
    int width() const { return gdk_pixbuf_get_width(_pixels); }
    int height() const { return gdk_pixbuf_get_height(_pixels); }
    Colour at(int x, int y) const {
        const unsigned char* pixel = gdk_pixbuf_read_pixels(_pixels) +
                                     y * gdk_pixbuf_get_rowstride(_pixels) +
                                     x * gdk_pixbuf_get_n_channels(_pixels);
        return {pixel[0], pixel[1], pixel[2]};
    }

private:
    GdkPixbuf* _pixels;
};

class ScreensTool : public ToolTest {};

TEST_F(ScreensTool, ListsTheDisplays) {
    const DisplayServer server;
    server.addSecondHead();
    const ToolResult result = run({"screens"});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.output,
                ContainsRegex("^NAME +SIZE +FROM +USABLE +BITS +RATE +SCALE\n"
                              "DUMMY0 \\(primary\\) +1280 x 1024 +0, -1024 +1280 x 1024 from "
                              "0, -1024 +24 +85.02 Hz +1\n"
                              "DUMMY1 +1024 x 768 +1280, -1024 +1024 x 768 from 1280, -1024 +24 "
                              "+[0-9.]+ Hz +1\n$"));
}

TEST_F(ScreensTool, JsonHasEverything) {
    const DisplayServer server("800x600x24");
    server.setProperty("_NET_WORKAREA", "32c", "0, 24, 800, 576");
    const ToolResult result = run({"screens", "--json"});
    EXPECT_EQ(result.code, 0);
    for (const char* text :
         {"\"name\": \"screen\"", "\"primary\": true", "\"bitsPerPixel\": 24",
          "\"refreshRate\": null", "\"scale\": 1.0", "\"top\": -600", "\"top\": -576"})
        EXPECT_THAT(result.output, HasSubstr(text));
    EXPECT_THAT(result.output, ContainsRegex("\"id\": [1-9][0-9]*"));
}

TEST_F(ScreensTool, DrawsTheArrangementWithWorkingAreas) {
    const DisplayServer server;
    server.addSecondHead();
    server.setProperty("_GTK_WORKAREAS_D0", "32c", "0, 128, 1280, 896, 1280, 0, 1024, 768");
    const ToolResult result = run({"screens", "--draw", "desk.png"});
    EXPECT_EQ(result.code, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    const Picture picture(folder / "desk.png");
    ASSERT_TRUE(picture.exists());
    // A third of 2304 x 1024 pixels, and margins of 16.
    EXPECT_EQ(picture.width(), 800);
    EXPECT_EQ(picture.height(), 373);
    EXPECT_EQ(picture.at(5, 5), kWhite);
    EXPECT_EQ(picture.at(25, 300), kPrimary);
    EXPECT_EQ(picture.at(460, 30), kOther);
    // Below the shorter one is nothing.
    EXPECT_EQ(picture.at(600, 340), kWhite);
    // Hatched, in two colours that are both darker than what is free.
    EXPECT_LT(picture.at(100, 30)[0], 0xc8);
}

TEST_F(ScreensTool, DrawingAndJsonGoTogether) {
    const DisplayServer server("800x600x24");
    const ToolResult result = run({"screens", "--json", "--draw", "desk.png"});
    EXPECT_THAT(result.output, HasSubstr("\"name\": \"screen\""));
    EXPECT_TRUE(Picture(folder / "desk.png").exists());
}

TEST_F(ScreensTool, ThePicturesNameMayBeginWithABracket) {
    const DisplayServer server("800x600x24");
    EXPECT_EQ(run({"screens", "--draw", "[desk].png"}).code, 0);
    EXPECT_TRUE(Picture(folder / "[desk].png").exists());
}

TEST_F(ScreensTool, PictureThatCannotBeWrittenIsTold) {
    const DisplayServer server("800x600x24");
    const ToolResult result = run({"screens", "--draw", "missing/desk.png"});
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.errors, HasSubstr("missing/desk.png"));
}

TEST_F(ScreensTool, WithoutADisplayItSaysSo) {
    unsetenv("DISPLAY");
    const std::string errors =
        "ula: there is no display\n"
        "     DISPLAY names the display server, as in: DISPLAY=:0 ula screens\n";
    expectResult(run({"screens"}), 1, "", errors);
    expectResult(run({"screens", "--json"}), 1, "{\n  \"version\": 1,\n  \"screens\": []\n}\n",
                 errors);
    EXPECT_EQ(run({"screens", "--draw", "desk.png"}).code, 1);
}

TEST_F(ScreensTool, UnknownOptionIsWrongUsage) {
    EXPECT_EQ(run({"screens", "--none"}).code, 2);
    EXPECT_EQ(run({"screens", "--draw"}).code, 2);
}

}  // namespace

}  // namespace tav::test
