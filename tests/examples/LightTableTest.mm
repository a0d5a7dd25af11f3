// SPDX-License-Identifier: MIT
// The desktop example, by the pictures that it draws of itself. Needs an X server, and root:
// mounts.
#import "tests/examples/LightTableFixture.h"

#include "tests/support/Mounts.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/wait.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr Shot::Colour kAccent = {0x2f, 0x6f, 0xde};
constexpr Shot::Colour kCanvas = {0xfa, 0xfb, 0xfc};
constexpr Shot::Colour kProgress = {0xd9, 0xdd, 0xe2};

TEST_F(LightTable, ShowsTheThumbnailsOfAFolder) {
    const std::vector<Shot::Colour> colours = {{200, 30, 40},  {30, 160, 60}, {40, 60, 190},
                                               {220, 180, 20}, {90, 20, 120}, {20, 150, 170}};
    for (std::size_t i = 0; i < colours.size(); ++i)
        paint("pictures/IMG_" + std::to_string(i + 1) + ".png", colours[i], 300, 200);
    ASSERT_EQ(take("browser", path("pictures"), "shot.png"), 0) << errors();
    const Shot shot(path("shot.png"));
    EXPECT_EQ(shot.width(), 1080);
    EXPECT_EQ(shot.height(), 752);
    EXPECT_GT(shot.colours(), 20u);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const auto [x, y] = middleOf(i, colours.size());
        EXPECT_EQ(shot.at(x, y), colours[i]) << "picture " << i;
    }
}

TEST_F(LightTable, LeavesOutWhatIsNoPicture) {
    fs::create_directories(folder / "pictures/IMG_3.png");
    writeFile(folder / "pictures/notes.txt", "none");
    writeFile(folder / "pictures/.IMG_0.png", "hidden");
    paint("pictures/IMG_2.png", {10, 20, 200});
    ASSERT_EQ(take("browser", path("pictures"), "shot.png"), 0) << errors();
    const Shot shot(path("shot.png"));
    const auto [first, y] = middleOf(0, 2);
    EXPECT_EQ(shot.at(first, y), (Shot::Colour{10, 20, 200}));
    EXPECT_EQ(shot.at(middleOf(1, 2)[0], y), kCanvas);
}

TEST_F(LightTable, APictureThatCannotBeReadIsSaidToBeSo) {
    fs::create_directories(folder / "pictures");
    writeFile(folder / "pictures/IMG_1.jpg", "\xff\xd8\xff\xe0 and then nothing");
    writeFile(folder / "pictures/IMG_2.png", "\x89PNG\r\n\x1a\n");
    writeFile(folder / "pictures/IMG_3.tif", std::string(2000, 'I'));
    paint("pictures/IMG_4.png", {10, 20, 200});
    ASSERT_EQ(take("browser", path("pictures"), "shot.png"), 0) << errors();
    const Shot shot(path("shot.png"));
    const auto [x, y] = middleOf(3, 4);
    EXPECT_EQ(shot.at(x, y), (Shot::Colour{10, 20, 200}));
    // The text on the card.
    const auto [first, line] = middleOf(0, 4);
    EXPECT_GT(shot.count({0x6b, 0x73, 0x80}, first - 60, line - 10, first + 60, line + 10), 5);
}

TEST_F(LightTable, FoldersThatAreEmptyOrMissingSaySo) {
    fs::create_directories(folder / "empty");
    ASSERT_EQ(take("browser", path("empty"), "empty.png"), 0) << errors();
    ASSERT_EQ(take("browser", path("missing"), "missing.png"), 0) << errors();
    const Shot empty(path("empty.png")), missing(path("missing.png"));
    EXPECT_GT(empty.colours(), 20u);
    EXPECT_GT(empty.differences(missing, kSidebar, 300, 1080, 450), 50);
}

TEST_F(LightTable, ThousandsOfPicturesAreNoHindrance) {
    paint("pictures/IMG_0000.png", {200, 30, 40});
    for (int i = 1; i < 5000; ++i)
        fs::create_hard_link(folder / "pictures/IMG_0000.png",
                             folder / ("pictures/IMG_" + std::to_string(10000 + i) + ".png"));
    ASSERT_EQ(take("browser", path("pictures"), "shot.png"), 0) << errors();
    const auto [x, y] = middleOf(9, 5000);
    EXPECT_EQ(Shot(path("shot.png")).at(x, y), (Shot::Colour{200, 30, 40}));
}

TEST_F(LightTable, WithoutACameraTheImportPanelSaysSo) {
    fs::create_directories(folder / "pictures");
    ASSERT_EQ(take("browser", path("pictures"), "browser.png"), 0) << errors();
    ASSERT_EQ(take("import", path("pictures"), "import.png"), 0) << errors();
    const Shot browser(path("browser.png")), import(path("import.png"));
    EXPECT_GT(browser.differences(import, 310, 120, 770, 460), 10000);
    // Nothing can be imported: the button is not the filled one. A ticked box is all there is.
    EXPECT_LT(import.count(kAccent, 310, 120, 770, 480), 16 * 16);
}

TEST_F(LightTable, AnImportShowsItsProgress) {
    for (int i = 10; i < 60; ++i)
        paint("pool/IMG_" + std::to_string(i) + ".png", {i, 2 * i, 3 * i}, 120, 80);
    fs::create_directories(folder / "pictures");
    const MountedMemory card(path("Card"), "/dev/mmcblk0p1");
    fs::create_directories(folder / "Card/DCIM");
    fs::copy(folder / "pool", folder / "Card/DCIM/100TEST");
    ASSERT_EQ(take("import", path("pictures"), "shot.png"), 0) << errors();
    const Shot shot(path("shot.png"));
    // The bar above the line of text: 60 of 100 points are done.
    const int done = shot.count(kAccent, kSidebar, 664, 1080, 720);
    const int left = shot.count(kProgress, kSidebar, 692, 980, 708);
    EXPECT_GT(done, 6 * 400);
    EXPECT_GT(left, 6 * 150);
}

TEST_F(LightTable, TheAccountPanelLiesOverTheWindow) {
    fs::create_directories(folder / "pictures");
    ASSERT_EQ(take("browser", path("pictures"), "browser.png"), 0) << errors();
    ASSERT_EQ(take("account", path("pictures"), "account.png"), 0) << errors();
    const Shot browser(path("browser.png")), account(path("account.png"));
    EXPECT_GT(browser.differences(account, 330, 130, 750, 440), 10000);
    EXPECT_GT(account.count(kAccent, 330, 130, 750, 460), 500) << "the button Save";
}

TEST_F(LightTable, WithoutADisplayItSaysWhatIsMissing) {
    const std::string display = getenv("DISPLAY");
    for (const char* wrong : {"", ":4711"}) {
        setenv("DISPLAY", wrong, 1);
        EXPECT_EQ(run({path("pictures")}), 1);
        EXPECT_EQ(errors(), "lighttable: there is no display: set DISPLAY to a running X server\n");
    }
    setenv("DISPLAY", display.c_str(), 1);
}

TEST_F(LightTable, WithoutTheFolderOfVolumesItSaysWhatIsMissing) {
    // That of this program and its children alone.
    fs::remove("/Volumes/Linux");
    EXPECT_EQ(run({path("pictures")}), 1);
    EXPECT_EQ(errors(),
              "lighttable: the disks are not in /Volumes: run scripts/make-volumes as root\n");
    fs::create_directory_symlink("/", "/Volumes/Linux");
}

TEST_F(LightTable, RefusesWhatItDoesNotKnow) {
    EXPECT_EQ(run({"--scene", "beach"}), 2);
    EXPECT_THAT(errors(), HasSubstr("no scene 'beach'"));
    EXPECT_EQ(run({"--folder"}), 2);
    EXPECT_EQ(run({"--colour"}), 2);
    EXPECT_EQ(run({"one", "two"}), 2);
    EXPECT_EQ(run({"--quit"}), 1);
    EXPECT_EQ(errors(), "lighttable: it does not run\n");
}

TEST_F(LightTable, APictureThatCannotBeWrittenIsAFailure) {
    EXPECT_EQ(take("browser", path("home"), "nowhere/shot.png"), 1);
    EXPECT_THAT(errors(), HasSubstr("nowhere/shot.png cannot be written"));
}

/// The later one of two, which has nothing left to do.
pid_t waitForFirst() {
    int status = -1;
    const pid_t ended = waitpid(-1, &status, 0);
    EXPECT_EQ(status, 0);
    return ended;
}

TEST_F(LightTable, OfTwoThatStartOneHandsItsFolderToTheOther) {
    for (const char* name : {"one", "two"})
        fs::create_directories(folder / name);
    const pid_t one = start({path("one")}), two = start({path("two")});
    const pid_t ended = waitForFirst();
    ASSERT_TRUE(ended == one || ended == two);
    EXPECT_EQ(run({"--quit"}), 0) << errors();
    EXPECT_EQ(wait(ended == one ? two : one), 0) << errors();
    // The one that ran shows what the other was started with, and remembers it.
    const std::string handed = path(ended == one ? "one" : "two");
    EXPECT_THAT(readFile(folder / "home/data/lighttable/settings.xml"), HasSubstr(handed));
}

TEST_F(LightTable, RemembersItsWindow) {
    fs::create_directories(folder / "home/data/lighttable");
    writeFile(folder / "home/data/lighttable/settings.xml",
              "<settings><group name=\"Window\">"
              "<key name=\"Left\" type=\"int\"><value value=\"40\"/></key>"
              "<key name=\"Bottom\" type=\"int\"><value value=\"50\"/></key>"
              "<key name=\"Width\" type=\"int\"><value value=\"700\"/></key>"
              "<key name=\"Height\" type=\"int\"><value value=\"500\"/></key>"
              "</group></settings>");
    const pid_t one = start({path("home")}), two = start({path("home")});
    const pid_t ended = waitForFirst();
    EXPECT_EQ(run({"--quit"}), 0) << errors();
    EXPECT_EQ(wait(ended == one ? two : one), 0) << errors();
    const std::string settings = readFile(folder / "home/data/lighttable/settings.xml");
    for (const char* number : {"40", "50", "700", "500"})
        EXPECT_THAT(settings, HasSubstr("<value value=\"" + std::string(number) + "\""));
}

}  // namespace

}  // namespace tav::test
