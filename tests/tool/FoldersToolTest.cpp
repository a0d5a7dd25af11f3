// SPDX-License-Identifier: MIT
#include "tests/tool/ToolProcess.h"

#include <cstdlib>
#include <filesystem>

namespace tav::test {

namespace {

/// Of a user whose home is the test's folder.
class FoldersTool : public ToolTest {
protected:
    FoldersTool() {
        setenv("HOME", home.c_str(), 1);
        setenv("TMPDIR", home.c_str(), 1);
        unsetenv("XDG_CONFIG_HOME");
        unsetenv("XDG_DATA_HOME");
    }

    // The folder of the next test is not to be made in the one of this.
    ~FoldersTool() override { unsetenv("TMPDIR"); }

    const std::string home = folder.path().string();
};

TEST_F(FoldersTool, ShowsWhereEachFolderLies) {
    expectResult(run({"folders"}), 0,
                 "home                 " + home +
                     "\n"
                     "documents            " +
                     home +
                     "/Documents\n"
                     "pictures             " +
                     home +
                     "/Pictures\n"
                     "movies               " +
                     home +
                     "/Movies\n"
                     "music                " +
                     home +
                     "/Music\n"
                     "application support  " +
                     home +
                     "/.local/share\n"
                     "application data     " +
                     home +
                     "/Library/Application Support\n"
                     "temporary            " +
                     home +
                     "\n"
                     "global preferences   /Library/Preferences\n",
                 "");
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(FoldersTool, FollowsTheDesktopsFolders) {
    std::filesystem::create_directory(folder / ".config");
    write(".config/user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"
                                    "XDG_MUSIC_DIR=\"/srv/Musik \\\"laut\\\"\"\n");
    expectResult(run({"folders", "--json"}), 0,
                 "{\n  \"version\": 1,\n  \"folders\": {\n    \"home\": \"" + home +
                     "\",\n    \"documents\": \"" + home + "/Documents\",\n    \"pictures\": \"" +
                     home + "/Bilder\",\n    \"movies\": \"" + home +
                     "/Movies\",\n    \"music\": \"/srv/Musik \\\"laut\\\"\",\n"
                     "    \"applicationSupport\": \"" +
                     home + "/.local/share\",\n    \"applicationData\": \"" + home +
                     "/Library/Application Support\",\n    \"temporary\": \"" + home +
                     "\",\n    \"globalPreferences\": \"/Library/Preferences\"\n  }\n}\n",
                 "");
}

TEST_F(FoldersTool, TakesNoArguments) {
    EXPECT_EQ(run({"folders", "x"}).code, 2);
}

}  // namespace

}  // namespace tav::test
