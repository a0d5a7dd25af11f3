// SPDX-License-Identifier: MIT
#include "AppKit/IconTheme.h"
#include "AppKit/IconPixels.h"

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>

namespace {

using namespace appkit;
using tav::test::TemporaryFolder;
using tav::test::writeFile;
namespace fs = std::filesystem;

// A variable of the environment for as long as this lives.
class Variable {
public:
    Variable(const char* name, const std::string& value) : _name(name) {
        if (const char* before = std::getenv(name))
            _before = before;
        setenv(name, value.c_str(), 1);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() {
        if (_before)
            setenv(_name, _before->c_str(), 1);
        else
            unsetenv(_name);
    }

private:
    const char* _name;
    std::optional<std::string> _before;
};

class IconThemes : public testing::Test {
protected:
    // A theme with folders "48", "16", "scalable" and "32@2".
    void addTheme(const std::string& name, const std::string& inherits = {}) {
        fs::create_directories(folder / ("icons/" + name));
        writeFile(folder / ("icons/" + name + "/index.theme"),
                  "[Icon Theme]\nName=x\nInherits=" + inherits +
                      "\nDirectories=16,48,scalable,32@2,\n"
                      "[16]\nSize=16\nType=Fixed\n[48]\nSize=48\n"
                      "[scalable]\nSize=48\nMinSize=64\nMaxSize=512\nType=Scalable\n"
                      "[32@2]\nSize=32\nScale=2\nType=Fixed\n");
    }
    std::string addIcon(const std::string& path) {
        const std::string file = folder / ("icons/" + path);
        fs::create_directories(fs::path(file).parent_path());
        writeFile(file, "an icon");
        return file;
    }
    std::string find(const std::vector<std::string>& names, int pixels = 48,
                     const std::string& theme = "Mine") {
        return IconTheme({{folder / "first", folder / "icons"}, theme}).find(names, pixels);
    }

    TemporaryFolder folder;
};

TEST_F(IconThemes, TakeTheFolderOfTheWantedSize) {
    addTheme("Mine");
    const std::string small = addIcon("Mine/16/drive.png");
    const std::string right = addIcon("Mine/48/drive.png");
    const std::string large = addIcon("Mine/scalable/drive.svg");
    EXPECT_EQ(find({"drive"}, 48), right);
    EXPECT_EQ(find({"drive"}, 46), right);
    EXPECT_EQ(find({"drive"}, 16), small);
    EXPECT_EQ(find({"drive"}, 100), large);
    EXPECT_EQ(find({"drive"}, 20), small);
    EXPECT_EQ(find({"other"}), "");
}

TEST_F(IconThemes, CountThePixelsOfDenseScreens) {
    addTheme("Mine");
    addIcon("Mine/16/drive.png");
    const std::string dense = addIcon("Mine/32@2/drive.png");
    EXPECT_EQ(find({"drive"}, 64), dense);
}

TEST_F(IconThemes, PreferAThemesLesserNameToAParentsBest) {
    addTheme("Mine", "Base");
    addTheme("Base");
    const std::string best = addIcon("Base/48/drive-usb.png");
    const std::string inherited = addIcon("Base/48/disc.png");
    EXPECT_EQ(find({"drive-usb", "drive"}), best);
    EXPECT_EQ(find({"disc"}), inherited);
    const std::string own = addIcon("Mine/48/drive.png");
    EXPECT_EQ(find({"drive-usb", "drive"}), own);
}

TEST_F(IconThemes, EndWithHicolorWhateverInheritsIt) {
    addTheme("Mine", "hicolor, Base");
    addTheme("Base");
    addTheme("hicolor");
    addIcon("hicolor/48/drive.png");
    const std::string inherited = addIcon("Base/48/drive.png");
    EXPECT_EQ(find({"drive"}), inherited);
}

TEST_F(IconThemes, ThatInheritEachOtherHaveAnEnd) {
    addTheme("Mine", "Base");
    addTheme("Base", "Mine,Base");
    EXPECT_EQ(find({"drive"}), "");
}

TEST_F(IconThemes, AreAdwaitaWithoutAChoiceOrWithOneThatIsNotThere) {
    addTheme("Adwaita");
    const std::string file = addIcon("Adwaita/48/drive.png");
    for (const char* theme : {"", "Gone", "../Adwaita", ".."})
        EXPECT_EQ(find({"drive"}, 48, theme), file) << theme;
}

TEST_F(IconThemes, UsersIconsComeBeforeTheSystems) {
    addTheme("Mine");
    addIcon("Mine/48/drive.png");
    addIcon("../first/Mine/48/drive.png");
    EXPECT_EQ(find({"drive"}), folder / "first/Mine/48/drive.png");
}

TEST_F(IconThemes, BrokenIndexIsAThemeWithoutIcons) {
    addIcon("Mine/48/drive.png");
    writeFile(folder / "icons/Mine/index.theme", "no group\n\xff\xfe[[[\nSize=99999999999999");
    EXPECT_EQ(find({"drive"}), "");
}

TEST_F(IconThemes, ChoiceIsReadFromTheSettingsOfTheDesktop) {
    const Variable home("HOME", folder.path());
    const Variable config("XDG_CONFIG_HOME", folder / "config");
    const Variable own("XDG_DATA_HOME", folder / "data");
    const Variable shared("XDG_DATA_DIRS", "/one::/two");
    fs::create_directories(folder / "config/gtk-3.0");
    writeFile(folder / "config/kdeglobals", "[Icons]\nTheme=Breeze\n");
    EXPECT_EQ(IconPlaces::ofProcess().theme, "Breeze");
    writeFile(folder / "config/gtk-3.0/settings.ini",
              "[Settings]\ngtk-theme-name=x\ngtk-icon-theme-name=Papirus Dark\n");
    EXPECT_EQ(IconPlaces::ofProcess().theme, "Papirus Dark");
    EXPECT_EQ(IconPlaces::ofProcess().folders,
              (std::vector<std::string>{folder / ".icons", folder / "data/icons", "/one/icons",
                                        "/two/icons"}));
}

using Drawing = IconThemes;

TEST_F(Drawing, MultipliesColoursByTheirOpacity) {
    GdkPixbuf* image = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, 2, 1);
    gdk_pixbuf_fill(image, 0xff804080);
    ASSERT_TRUE(gdk_pixbuf_save(image, (folder / "a.png").c_str(), "png", nullptr, nullptr));
    g_object_unref(image);
    const auto icon = drawIcon(folder / "a.png", 2);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->width, 2);
    EXPECT_EQ(icon->height, 1);
    EXPECT_EQ(icon->bytes,
              (std::vector<unsigned char>{0x80, 0x40, 0x20, 0x80, 0x80, 0x40, 0x20, 0x80}));
}

TEST_F(Drawing, ScalesDrawingsToTheSize) {
    writeFile(folder / "a.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                                "<rect width='10' height='10' fill='#ff0000'/></svg>");
    const auto icon = drawIcon(folder / "a.svg", 48);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->width, 48);
    EXPECT_EQ(icon->height, 48);
    ASSERT_EQ(icon->bytes.size(), 48u * 48 * 4);
    EXPECT_EQ(icon->bytes[4 * (48 * 24 + 24)], 0xff);
    EXPECT_EQ(icon->bytes[4 * (48 * 24 + 24) + 1], 0);
}

TEST_F(Drawing, WhatIsNoImageIsNone) {
    writeFile(folder / "a.png", "no image");
    EXPECT_FALSE(drawIcon(folder / "a.png", 48));
    EXPECT_FALSE(drawIcon(folder / "none.png", 48));
    EXPECT_FALSE(drawIcon("", 48));
}

}  // namespace
