// SPDX-License-Identifier: MIT
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/SettingsException.h"
#include "ula/SettingsXML.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <random>

namespace tav::ula {
namespace {

struct Outcome {
    bool result = false;
    std::string exception;
    SettingsBase::GroupMap settings;

    bool operator==(const Outcome&) const = default;
};

class SettingsXMLQuickReaderTest : public testing::Test {
protected:
    /// Through the file, which may take the quick way.
    Outcome readFile() {
        // The reader exists before the file does: its constructor reads nothing.
        std::filesystem::remove(path);
        SettingsXML settings("App", "Company", FastString(path), false);
        test::writeFile(path, text);
        return outcomeOf(settings, [&] { return settings.read(); });
    }
    /// From memory, which always builds a document tree.
    Outcome readText() {
        SettingsXML settings("App", "Company", false);
        return outcomeOf(settings, [&] { return settings.read(FastString(text)); });
    }
    void expectSameBothWays(const std::string& content) {
        text = content;
        EXPECT_TRUE(readFile() == readText()) << text;
    }

private:
    template <class Read>
    static Outcome outcomeOf(const SettingsXML& settings, Read read) {
        const test::LogCapture quiet;
        Outcome outcome;
        try {
            outcome.result = read();
        } catch (const SettingsException& thrown) {
            outcome.exception = thrown.what();
        }
        outcome.settings = settings.getAllSettings();
        return outcome;
    }

    test::TemporaryFolder folder;
    std::string path = folder / "s.xml";
    std::string text;
};

const char* const kOrdinary = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                              "<settings>\n"
                              "\t<group name=\"G\">\n"
                              "\t\t<key name=\"a\" type=\"int\">\n"
                              "\t\t\t<value value=\"-12\"/>\n"
                              "\t\t</key>\n"
                              "\t\t<key name=\"b\" type=\"bool\">\n"
                              "\t\t\t<value value=\"1\"/>\n"
                              "\t\t</key>\n"
                              "\t\t<key name=\"c\" type=\"double\">\n"
                              "\t\t\t<value value=\"0.25\"/>\n"
                              "\t\t</key>\n"
                              "\t\t<key name=\"d\" type=\"string\">\n"
                              "\t\t\t<value value=\"x &amp;&#233;&#x10FFFF;&lt; y\"/>\n"
                              "\t\t</key>\n"
                              "\t\t<key name=\"e\" type=\"string_array\">\n"
                              "\t\t\t<value value=\"1\"/>\n"
                              "\t\t\t<value value=\"\"/>\n"
                              "\t\t</key>\n"
                              "\t\t<key name=\"f\" type=\"string_array\"/>\n"
                              "\t</group>\n"
                              "\t<group name=\"H\"/>\n"
                              "</settings>\n";

TEST_F(SettingsXMLQuickReaderTest, AnOrdinaryFileReadsTheSameBothWays) {
    expectSameBothWays(kOrdinary);
}

TEST_F(SettingsXMLQuickReaderTest, UnusualSpellingsReadTheSameBothWays) {
    for (const char* spelling :
         {"<settings/>",
          "<settings></settings>",
          "<!-- Q & A --><settings/>",
          "<settings><group name='G'/></settings>",
          "<settings><group name=\"G\" /></settings>",
          "<settings><group name=\"a\tb\"/></settings>",
          "<settings><group name=\"a&#9;b\"/></settings>",
          "<settings>text<group name=\"G\"/></settings>",
          "<settings><group name=\"a<b\"/></settings>",
          "<settings><group name=\"&nbsp;\"/></settings>",
          "<settings><group name=\"&#0;\"/></settings>",
          "<settings><group name=\"G\"/></settings>junk",
          "<settings><group name=\"G\"/>",
          "",
          "<settings><group name=\"G\"><key name=\"K\" type=\"int\"/></group></settings>",
          "<settings><group name=\"G\"><key name=\"K\" type=\"int\"><value "
          "value=\"x\"/></key></group>"
          "</settings>",
          "<settings><group name=\"G\"><key name=\"K\" type=\"int\"><value value=\" 1\"/></key>"
          "</group></settings>",
          "<settings><group name=\"G\"><key name=\"K\" type=\"double\"><value value=\"nan\"/></key>"
          "</group></settings>",
          "<settings><group name=\"G\"><key name=\"K\" type=\"odd\"><value "
          "value=\"1\"/></key></group>"
          "</settings>",
          "<settings><group name=\"G\"><key type=\"int\" name=\"K\"><value "
          "value=\"1\"/></key></group>"
          "</settings>",
          "<settings><group name=\"G\"><key name=\"b\" type=\"string_array\"/>"
          "<key name=\"a\" type=\"string_array\"/><key name=\"b\" type=\"string_array\"/></group>"
          "<group name=\"G\"><key name=\"z\" type=\"string_array\"/></group></settings>"})
        expectSameBothWays(spelling);
}

TEST_F(SettingsXMLQuickReaderTest, EveryTruncationReadsTheSameBothWays) {
    const std::string whole = kOrdinary;
    for (std::size_t length = 0; length <= whole.size(); ++length)
        expectSameBothWays(whole.substr(0, length));
}

TEST_F(SettingsXMLQuickReaderTest, RandomDamageReadsTheSameBothWays) {
    std::mt19937 random(7);
    const std::string bytes = "<>/\"'&;#= \n\tx0\xC3\xA9";
    for (int round = 0; round < 3000; ++round) {
        std::string damaged = kOrdinary;
        for (std::size_t changes = 1 + random() % 3; changes != 0; --changes) {
            const std::size_t place = random() % damaged.size();
            if (random() % 2 == 0)
                damaged[place] = bytes[random() % bytes.size()];
            else
                damaged.erase(place, 1 + random() % 4);
        }
        expectSameBothWays(damaged);
    }
}

}  // namespace
}  // namespace tav::ula
