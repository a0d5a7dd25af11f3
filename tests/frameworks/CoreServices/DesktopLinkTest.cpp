// SPDX-License-Identifier: MIT
#include "CoreServices/DesktopLink.h"

#include <cstdlib>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;

std::string entry(const std::string& lines) {
    return "[Desktop Entry]\nType=Link\n" + lines;
}

std::string pathIn(const std::string& lines) {
    auto link = parseDesktopLink(entry(lines));
    return link ? link->path : "none";
}

AliasKind hintIn(const std::string& lines) {
    return parseDesktopLink(entry(lines)).value().hint;
}

TEST(DesktopLink, TakesFileUrlsOfThisHostAndAbsolutePaths) {
    EXPECT_EQ(pathIn("URL=file:///home/ann"), "/home/ann");
    EXPECT_EQ(pathIn("URL=file:/home/ann"), "/home/ann");
    EXPECT_EQ(pathIn("URL=FILE://LocalHost/home/ann"), "/home/ann");
    EXPECT_EQ(pathIn("URL=/home/ann"), "/home/ann");
    EXPECT_EQ(pathIn("URL = /home/ann \r"), "/home/ann");
    char host[256] = "";
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    EXPECT_EQ(pathIn("URL=file://" + std::string(host) + "/x"), "/x");
    EXPECT_EQ(pathIn("URL=file://other.example/x"), "none");
}

TEST(DesktopLink, UndoesPercentSignsInUrlsOnly) {
    EXPECT_EQ(pathIn("URL=file:///a%20b/%C3%A4/100%/%zz%2"), "/a b/\u00E4/100%/%zz%2");
    EXPECT_EQ(pathIn("URL=/a%20b"), "/a%20b");
    EXPECT_EQ(pathIn("URL=file:///a#b?c"), "/a#b?c");
    EXPECT_EQ(pathIn("URL=file:///bytes%FF"), "/bytes\xFF");
    EXPECT_EQ(pathIn("URL=/bytes\xFF"), "/bytes\xFF");
    EXPECT_EQ(pathIn("URL=file:///a%00b"), "none");
}

TEST(DesktopLink, UndoesTheEscapesOfTheFormat) {
    EXPECT_EQ(pathIn("URL=/a\\sb\\n\\t\\r\\\\c\\x"), "/a b\n\t\r\\c\\x");
}

TEST(DesktopLink, FillsInVariablesWhereTheKeyAsksForIt) {
    ASSERT_EQ(setenv("ULA_ALIAS_HOME", "/home/ann", 1), 0);
    EXPECT_EQ(pathIn("URL[$e]=file:$ULA_ALIAS_HOME/x"), "/home/ann/x");
    EXPECT_EQ(pathIn("URL[$e]=file:${ULA_ALIAS_HOME}x"), "/home/annx");
    EXPECT_EQ(pathIn("URL[$e]=/a$ULA_ALIAS_UNSET/$/${x"), "/a/$/${x");
    EXPECT_EQ(pathIn("URL[$e]=/$(id)"), "/$(id)");
    EXPECT_EQ(pathIn("URL=/$ULA_ALIAS_HOME"), "/$ULA_ALIAS_HOME");
}

TEST(DesktopLink, KeepsPlacesOnTheNetworkAsUrls) {
    for (const char* url : {"smb://server/share", "sftp://ann@server:22/home", "DAV://server/x"}) {
        auto link = parseDesktopLink(entry(std::string("URL=") + url));
        ASSERT_TRUE(link) << url;
        EXPECT_EQ(link->url, url);
        EXPECT_EQ(link->path, "");
        EXPECT_EQ(link->hint, AliasKind::Folder);
    }
}

TEST(DesktopLink, LeavesOutWhatLeadsToNoFile) {
    for (const char* lines :
         {"URL=https://example.org/", "URL=mailto:ann@example.org", "URL=trash:///", "URL=", "",
          "URL=relative/path", "URL=smb://", "URL=smb:", "Hidden=true\nURL=/x"})
        EXPECT_FALSE(parseDesktopLink(entry(lines))) << lines;
    EXPECT_FALSE(parseDesktopLink("[Desktop Entry]\nType=Application\nURL=/x\n"));
    EXPECT_FALSE(parseDesktopLink("[Other]\nType=Link\nURL=/x\n"));
    EXPECT_FALSE(parseDesktopLink("Type=Link\nURL=/x\n"));
    EXPECT_FALSE(parseDesktopLink(""));
}

TEST(DesktopLink, ReadsItsOwnGroupOnly) {
    EXPECT_EQ(pathIn("# URL=/wrong\n\nURL=/x\n[Desktop Action y]\nURL=/wrong\nType=Application\n"),
              "/x");
    EXPECT_EQ(pathIn("URL[de]=/wrong\nURL=/x\n"), "/x");
}

TEST(DesktopLink, HintsAtTheKindOfATargetThatIsGone) {
    EXPECT_EQ(hintIn("URL=/x"), AliasKind::File);
    EXPECT_EQ(hintIn("URL=/x/"), AliasKind::Folder);
    EXPECT_EQ(hintIn("URL=/x\nIcon=folder-music"), AliasKind::Folder);
    EXPECT_EQ(hintIn("URL=/x\nIcon=/usr/share/icons/48/inode-directory.png"), AliasKind::Folder);
    EXPECT_EQ(hintIn("URL=/x\nMimeType=inode/directory;"), AliasKind::Folder);
    EXPECT_EQ(hintIn("URL=/x\nX-Target-MimeType=inode/directory"), AliasKind::Folder);
    EXPECT_EQ(hintIn("URL=/x/\nIcon=drive-harddisk"), AliasKind::Disk);
    EXPECT_EQ(hintIn("URL=/x\nIcon=text-plain"), AliasKind::File);
}

TEST(DesktopLink, TellsOtherEntriesByTheirBeginning) {
    EXPECT_TRUE(isOtherDesktopEntry("[Desktop Entry]\nType=Application\nName[de"));
    EXPECT_FALSE(isOtherDesktopEntry("[Desktop Entry]\nType=Link\nName[de"));
    EXPECT_FALSE(isOtherDesktopEntry("[Desktop Entry]\nName=x\nType=Li"));
    EXPECT_FALSE(isOtherDesktopEntry("[Desktop Entry]"));
}

}  // namespace
