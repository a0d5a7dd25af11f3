// SPDX-License-Identifier: MIT
// The tool in other languages, with its catalogues beside it as where it is installed. Needs root:
// mounts in a space of its own.
#include "tests/tool/ToolProcess.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <regex>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class TranslatedTool : public ToolTest {
protected:
    TranslatedTool() {
        fs::create_directories(folder / "prefix/bin");
        fs::create_directories(folder / "prefix/share");
        fs::copy_file(ULA_TOOL_PATH, program);
        fs::create_directory_symlink(ULA_CATALOGUES, folder / "prefix/share/locale");
        for (const char* name : {"DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"})
            unsetenv(name);
        setenv("HOME", folder.path().c_str(), 1);
    }
    /// What it says, errors too, to a user with this environment.
    std::string says(const std::string& environment, const std::string& command) const {
        return outputOf("cd " + folder.path().string() + "; env " + environment + " " + program +
                        " " + command + " || true");
    }
    /// The language over a locale that every system has.
    std::string saysIn(const std::string& language, const std::string& command) const {
        return says("LC_ALL=C.UTF-8 LANGUAGE=" + language, command);
    }
    /// A locale that this test alone has.
    void install(const std::string& name, const std::string& encoding) const {
        outputOf("localedef -i de_DE -f " + encoding + " " + (folder / name));
    }

    const std::string program = folder / "prefix/bin/ula";
};

/// The columns that a text takes on a terminal, with Japanese and Latin letters in it.
std::size_t columns(const std::string& text) {
    std::size_t count = 0;
    for (const char byte : text) {
        const auto unit = static_cast<unsigned char>(byte);
        // Of those with three bytes all are wide that stand here.
        count += (unit & 0xC0) == 0x80 ? 0 : unit >= 0xE0 ? 2 : 1;
    }
    return count;
}

/// The examples of a help, without what stands behind them for people.
std::vector<std::string> examples(const std::string& help) {
    std::vector<std::string> commands;
    static const std::regex kCommand("^  ((sudo |source <\\()?ula .*?)(  .*)?$");
    for (const std::string& line : lines(help)) {
        std::smatch match;
        if (std::regex_match(line, match, kCommand))
            commands.push_back(match[1]);
    }
    return commands;
}

TEST_F(TranslatedTool, SpeaksTheLanguageOfTheUsersLocale) {
    install("de_DE.UTF-8", "UTF-8");
    const std::string german = "LOCPATH=" + folder.path().string() + " LC_ALL=de_DE.UTF-8";
    EXPECT_THAT(
        says(german, "drives"),
        ContainsRegex("^NAME +ART +GRÖSSE +FREI +DATEISYSTEM +EINGEHÄNGT IN\nLinux +fest "));
    EXPECT_EQ(says(german, "watch none"),
              "ula: „none“ kann nicht beobachtet werden: es ist nicht da\n"
              "     'ula watch -r' auf dem Ordner darüber sagt, wann es kommt\n");
    EXPECT_EQ(says(german, "drives none"),
              "ula: Dieses Argument wird nicht erwartet: none\n"
              "     'ula --help' und 'ula BEFEHL --help' zeigen, wie es geht\n");
    const std::string help = says(german, "drives --help");
    for (const char* text :
         {"Das Startvolume und eingehängte Volumes auflisten\nAufruf: ula drives [OPTIONS]\n",
          "\nOptionen:\n", "--json                      Als JSON\n",
          "\nBeispiele:\n  ula drives             das Startvolume"})
        EXPECT_THAT(help, HasSubstr(text));
}

TEST_F(TranslatedTool, SpeaksEachLanguageThatTheUserPrefers) {
    EXPECT_THAT(saysIn("de", "screens"), StartsWith("ula: es gibt keinen Bildschirm\n"));
    EXPECT_THAT(saysIn("es", "screens"), StartsWith("ula: no hay ninguna pantalla\n"));
    EXPECT_THAT(saysIn("fr", "screens"), StartsWith("ula: il n’y a pas d’écran\n"));
    EXPECT_THAT(saysIn("ja", "screens"), StartsWith("ula: ディスプレイがありません\n"));
    EXPECT_THAT(saysIn("xx:fr:de", "screens"), StartsWith("ula: il n’y a pas d’écran\n"));
}

TEST_F(TranslatedTool, SpeaksEnglishWhereItDoesNotKnowTheLanguage) {
    const std::string english = "ula: there is no display\n";
    EXPECT_THAT(saysIn("xx", "screens"), StartsWith(english));
    EXPECT_THAT(says("LC_ALL=xx_XX.UTF-8 LANGUAGE=de", "screens"), StartsWith(english));
    EXPECT_THAT(says("LC_ALL=C LANGUAGE=de", "screens"), StartsWith(english));
}

TEST_F(TranslatedTool, SpeaksEnglishInEncodingsThatLackLetters) {
    install("de_DE.ISO-8859-1", "ISO-8859-1");
    EXPECT_THAT(says("LOCPATH=" + folder.path().string() + " LC_ALL=de_DE.ISO-8859-1", "screens"),
                StartsWith("ula: there is no display\n"));
}

TEST_F(TranslatedTool, TellsProgramsEverythingInEnglish) {
    EXPECT_EQ(saysIn("de", "volumes --json"), saysIn("en", "volumes --json"));
    // The checks have two seconds, which a busy machine may use up before some have found anything.
    std::string german, english;
    for (int attempt = 0; attempt < 10 && (attempt == 0 || german != english); ++attempt) {
        german = saysIn("de", "doctor --json");
        english = saysIn("en", "doctor --json");
    }
    EXPECT_EQ(german, english);
    EXPECT_THAT(saysIn("de", "time missing --json"), HasSubstr("\"there is no such file\""));
    EXPECT_THAT(saysIn("de", "time missing --json"), HasSubstr("ula: missing: there is no such"));
}

TEST_F(TranslatedTool, ColumnsStandUnderEachOtherInWideLetters) {
    const std::vector<std::string> table = lines(saysIn("ja", "drives"));
    ASSERT_GE(table.size(), 2U);
    const auto before = [](const std::string& line, const std::string& text) {
        EXPECT_THAT(line, HasSubstr(text));
        return columns(line.substr(0, line.find(text)));
    };
    EXPECT_EQ(before(table[0], "種類"), before(table[1], "固定"));
    EXPECT_EQ(before(table[0], "マウント先"), columns(table[1]) - 1);
    for (const std::string& line : lines(saysIn("ja", "system"))) {
        const std::size_t end = line.find("  ");
        const std::size_t begin = line.find_first_not_of(' ', end);
        EXPECT_EQ(columns(line.substr(0, begin)), columns("グラフィックス  ")) << line;
    }
}

TEST_F(TranslatedTool, TheDoctorSpeaksToo) {
    const std::string found = saysIn("de", "doctor");
    EXPECT_THAT(found, StartsWith("Problem    display         DISPLAY ist nicht gesetzt: "));
    EXPECT_THAT(found, HasSubstr("\nWarnung    secret-service  kein Secret Service"));
    EXPECT_THAT(found, HasSubstr("  # dann neu anmelden, oder: dbus-run-session PROGRAM\n"));
}

TEST_F(TranslatedTool, EveryHelpIsTranslatedAndItsExamplesStay) {
    const std::vector<std::string> english = lines(saysIn("en", "--help"));
    std::vector<std::string> commands = {""};
    for (const std::string& line : english)
        if (line.starts_with("  ") && std::islower(static_cast<unsigned char>(line[2])) &&
            line.find("ula") == std::string::npos)
            commands.push_back(line.substr(2, line.find(' ', 2) - 2));
    EXPECT_THAT(commands, Contains("doctor"));
    for (const std::string& command : commands) {
        const std::string help = saysIn("en", command + " --help");
        EXPECT_THAT(examples(help), Not(testing::IsEmpty())) << command;
        for (const char* language : {"de", "es", "fr", "ja"}) {
            const std::string other = saysIn(language, command + " --help");
            EXPECT_EQ(examples(other), examples(help)) << command << " in " << language;
            EXPECT_THAT(other, Not(HasSubstr("Examples:"))) << command;
            EXPECT_THAT(other, Not(HasSubstr("\nOptions:\n  -h,--help                   Print")));
        }
    }
}

TEST_F(TranslatedTool, TheLettersOfAPromptAndOfAColumnAreWhole) {
    EXPECT_THAT(saysIn("de", "secret get Mail"), StartsWith("ula: Mail: dieses Objekt gibt es "));
    EXPECT_THAT(saysIn("ja", "folders"),
                HasSubstr("ホーム                    " + folder.path().string() + "\n"));
    EXPECT_THAT(saysIn("de", "volumes --folder x"), HasSubstr("x beginnt nicht mit /"));
    EXPECT_THAT(saysIn("de", "completion tcsh"), HasSubstr("tcsh ist keines von {bash,fish,zsh}"));
}

}  // namespace

}  // namespace tav::test
