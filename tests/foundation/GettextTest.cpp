// SPDX-License-Identifier: MIT
#include "ula/foundation/i18n/Gettext.h"

#include "tests/support/TemporaryFolder.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace tav::i18n {
namespace {

/// A catalogue and a locale, both made here: the machine need not have any.
class GettextTest : public testing::Test {
protected:
    GettextTest() {
        const std::string messages = folder / "de/LC_MESSAGES";
        std::filesystem::create_directories(messages);
        test::writeFile(folder / "de.po", "msgid \"\"\n"
                                          "msgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n"
                                          "msgid \"Folder\"\n"
                                          "msgstr \"Ordner \xC3\xA4\"\n");
        run("msgfmt -o " + messages + "/ula.mo " + (folder / "de.po"));
        run("localedef -i de_DE -f UTF-8 " + (folder / "de_DE.UTF-8"));
        setenv("LOCPATH", folder.path().c_str(), 1);
        unsetenv("LANGUAGE");
        setCatalogueFolder(String(folder.path().string()));
    }
    ~GettextTest() override { std::setlocale(LC_ALL, "C"); }

    static void run(const std::string& command) { ASSERT_EQ(std::system(command.c_str()), 0); }

    test::TemporaryFolder folder;
};

TEST_F(GettextTest, TranslatesInTheProgramsLocale) {
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(gettext("Folder"), "Ordner \xC3\xA4");
}

TEST_F(GettextTest, GivesTheTextItselfWhereThereIsNoTranslation) {
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(gettext("Drive"), "Drive");
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(gettext("Folder"), "Folder");
}

TEST_F(GettextTest, TheEmptyTextIsNotTheCataloguesHeader) {
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(gettext(""), "");
}

TEST_F(GettextTest, APartOfATextIsATextOfItsOwn) {
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(gettext(String("Folders").substr(0, 6)), "Ordner \xC3\xA4");
}

}  // namespace
}  // namespace tav::i18n
