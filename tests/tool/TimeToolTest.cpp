// SPDX-License-Identifier: MIT
// ula time. The pictures are made here, byte by byte.
#include "tests/tool/ToolProcess.h"

#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct Tag {
    unsigned number;
    std::string text;  ///< with the zero byte at its end, if any
};

/// The bytes of a TIFF in little-endian order: a directory with nothing but the way to the one of
/// EXIF, which holds texts.
class Tiff {
public:
    explicit Tiff(const std::vector<Tag>& tags, unsigned directory = 8) {
        _bytes = std::string("II*\0", 4);
        put32(directory);
        _bytes.resize(directory);
        put16(1);
        putEntry(0x8769, 4, 1, directory + 18);
        put32(0);
        putTexts(tags, directory + 18);
    }
    const std::string& bytes() const { return _bytes; }

private:
    void put16(unsigned value) {
        _bytes += static_cast<char>(value & 0xFF);
        _bytes += static_cast<char>(value >> 8 & 0xFF);
    }
    void put32(unsigned value) {
        put16(value & 0xFFFF);
        put16(value >> 16);
    }
    void putEntry(unsigned tag, unsigned type, unsigned count, unsigned value) {
        put16(tag);
        put16(type);
        put32(count);
        put32(value);
    }
    void putTexts(const std::vector<Tag>& tags, unsigned begin) {
        put16(static_cast<unsigned>(tags.size()));
        std::string texts;
        unsigned at = begin + 2 + 12 * static_cast<unsigned>(tags.size()) + 4;
        for (const Tag& tag : tags) {
            const auto size = static_cast<unsigned>(tag.text.size());
            if (size > 4) {
                putEntry(tag.number, 2, size, at);
                texts += tag.text;
                at += size;
                continue;
            }
            putEntry(tag.number, 2, size, 0);
            _bytes.replace(_bytes.size() - 4, size, tag.text);
        }
        put32(0);
        _bytes += texts;
    }

    std::string _bytes;
};

std::string ended(const std::string& text) {
    return text + '\0';
}

/// A JPEG with these EXIF texts and no picture in it.
std::string jpegOf(const std::vector<Tag>& tags) {
    const std::string exif = std::string("Exif\0\0", 6) + Tiff(tags).bytes();
    const std::size_t length = exif.size() + 2;
    std::string jpeg = "\xFF\xD8\xFF\xE1";
    jpeg += static_cast<char>(length >> 8);
    jpeg += static_cast<char>(length & 0xFF);
    return jpeg + exif + "\xFF\xD9";
}

constexpr unsigned kDate = 0x9003;
constexpr unsigned kOffset = 0x9011;
constexpr unsigned kSubSecond = 0x9291;

std::string jpegTaken(const std::string& date) {
    return jpegOf({{kDate, ended(date)}});
}

const std::string kFullJpeg = jpegOf(
    {{kDate, ended("2009:03:15 10:20:30")}, {kOffset, ended("+02:00")}, {kSubSecond, ended("45")}});

class TimeTool : public ToolTest {
protected:
    TimeTool() { setenv("TZ", "UTC", 1); }

    ToolResult time(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "time");
        return run(arguments);
    }

    /// A file that was changed at a known time.
    void writeOld(const std::string& name, const std::string& bytes) {
        write(name, bytes);
        const timespec times[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, (folder / name).c_str(), times, 0), 0);
    }

    std::string birthOf(const std::string& name) {
        struct statx info {};
        EXPECT_EQ(statx(AT_FDCWD, (folder / name).c_str(), 0, STATX_BTIME, &info), 0);
        const time_t seconds = info.stx_btime.tv_sec;
        tm utc{};
        gmtime_r(&seconds, &utc);
        char text[32];
        return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &utc)};
    }

    /// What the tool says of when the only file was taken.
    std::string taken(const std::string& bytes) {
        write("picture", bytes);
        const ToolResult result = time({"--json", "picture"});
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.errors, "");
        const std::string begin = "\"taken\": ";
        const std::size_t at = result.output.find(begin) + begin.size();
        return result.output.substr(at, result.output.find(",\n", at) - at);
    }
};

TEST_F(TimeTool, ShowsWhenAPictureWasTakenAndItsFileMadeAndChanged) {
    writeOld("a.jpg", kFullJpeg);
    writeOld("notes.txt", "text");
    expectResult(time({"a.jpg", "notes.txt"}), 0,
                 "FILE       TAKEN                          CREATED              MODIFIED\n"
                 "a.jpg      2009-03-15 10:20:30.45 +02:00  " +
                     birthOf("a.jpg") +
                     "  2001-09-09 01:46:40\n"
                     "notes.txt  -                              " +
                     birthOf("notes.txt") + "  2001-09-09 01:46:40\n",
                 "");
}

TEST_F(TimeTool, JsonHasTheMomentInUtcToo) {
    writeOld("a.jpg", kFullJpeg);
    std::string birth = birthOf("a.jpg");
    birth[10] = 'T';
    expectResult(time({"--json", "a.jpg"}), 0,
                 "{\n  \"version\": 1,\n  \"files\": [\n    {\n      \"file\": \"a.jpg\",\n"
                 "      \"taken\": \"2009-03-15T10:20:30.45+02:00\",\n"
                 "      \"takenUtc\": \"2009-03-15T08:20:30Z\",\n"
                 "      \"created\": \"" +
                     birth + "\",\n      \"modified\": \"2001-09-09T01:46:40\"\n    }\n  ]\n}\n",
                 "");
}

TEST_F(TimeTool, DatesOfFilesAreInTheUsersZone) {
    writeOld("notes.txt", "text");
    setenv("TZ", "Asia/Kolkata", 1);
    EXPECT_THAT(time({"notes.txt"}).output, HasSubstr("2001-09-09 07:16:40"));
}

TEST_F(TimeTool, PictureWithoutFractionAndOffsetHasTheDateAlone) {
    EXPECT_EQ(taken(jpegTaken("2009:03:15 10:20:30")), "\"2009-03-15T10:20:30\"");
    EXPECT_THAT(time({"--json", "picture"}).output, HasSubstr("\"takenUtc\": null"));
}

TEST_F(TimeTool, TextWithoutTheZeroByteAtItsEndIsRead) {
    EXPECT_EQ(taken(jpegOf({{kDate, "2009:03:15 10:20:30"}, {kSubSecond, "4567"}})),
              "\"2009-03-15T10:20:30.4567\"");
}

TEST_F(TimeTool, JpegWithOtherDataBeforeItsExifIsRead) {
    const std::string other = std::string("\xFF\xE0\x00\x10JFIF\0\1\1\0\0\1\0\1\0\0", 18);
    EXPECT_EQ(taken(kFullJpeg.substr(0, 2) + other + kFullJpeg.substr(2)),
              "\"2009-03-15T10:20:30.45+02:00\"");
}

TEST_F(TimeTool, TiffIsReadWhereItsDirectoriesAreNear) {
    const std::vector<Tag> tags{{kDate, ended("2009:03:15 10:20:30")}};
    EXPECT_EQ(taken(Tiff(tags).bytes() + std::string(1 << 20, '\0')), "\"2009-03-15T10:20:30\"");
    EXPECT_EQ(taken(Tiff(tags, 60'000).bytes()), "\"2009-03-15T10:20:30\"");
    EXPECT_EQ(taken(Tiff(tags, 100'000).bytes()), "null");
}

TEST_F(TimeTool, BlankDatesOfCamerasAreNone) {
    for (const char* date : {"    :  :     :  :  ", "0000:00:00 00:00:00", "", "       "}) {
        EXPECT_EQ(taken(jpegTaken(date)), "null");
        EXPECT_THAT(time({"picture"}).output, HasSubstr("\npicture  -      2"));
    }
}

TEST_F(TimeTool, DateOfNoCalendarIsShownAsItWasWritten) {
    EXPECT_EQ(taken(jpegTaken("2009:02:31 10:20:30")), "null");
    EXPECT_THAT(time({"picture"}).output, HasSubstr("\"2009:02:31 10:20:30\"?"));
    EXPECT_EQ(taken(jpegTaken("2009:02:31 \033[31mred")), "null");
    EXPECT_THAT(time({"picture"}).output, HasSubstr("\"2009:02:31 \\u001b[31mred\"?"));
}

TEST_F(TimeTool, FilesWithoutExifHaveNoDateAndAreNoError) {
    for (const std::string& bytes :
         {std::string(), std::string("text"), std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16),
          std::string("\xFF\xD8\xFF\xD9"), std::string("\xFF\xD8\xFF\xE1"), std::string("II*\0", 4),
          jpegOf({}), std::string(1 << 20, '\xFF')})
        EXPECT_EQ(taken(bytes), "null");
}

TEST_F(TimeTool, PictureCutOffAnywhereIsNoError) {
    std::vector<std::string> arguments = {"--json"};
    for (std::size_t length = 0; length < kFullJpeg.size(); length += 7) {
        arguments.push_back(std::to_string(length));
        write(arguments.back(), kFullJpeg.substr(0, length));
    }
    const ToolResult result = time(arguments);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.errors, "");
    std::size_t told = 0;
    for (const std::string& line : lines(result.output)) {
        if (line.find("\"taken\": ") == std::string::npos)
            continue;
        ++told;
        EXPECT_THAT(line, testing::AnyOf(HasSubstr(": null"), HasSubstr(": \"20")));
    }
    EXPECT_EQ(told, arguments.size() - 1);
}

TEST_F(TimeTool, FoldersLinksAndPipesHaveTheirDates) {
    fs::create_directory(folder / "inner");
    writeOld("a.jpg", kFullJpeg);
    fs::create_symlink("a.jpg", folder / "link");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const ToolResult result = time({"inner", "link", "pipe"});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.output, HasSubstr("\ninner  -  "));
    EXPECT_THAT(result.output, HasSubstr("\nlink   2009-03-15 10:20:30.45 +02:00  "));
    EXPECT_THAT(result.output, HasSubstr("\npipe   -  "));
}

TEST_F(TimeTool, MissingFilesAreToldAndTheOthersShown) {
    writeOld("a.jpg", kFullJpeg);
    fs::create_symlink("nowhere", folder / "link");
    const ToolResult result = time({"missing.jpg", "a.jpg", "link"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.output, HasSubstr("\na.jpg  2009-03-15"));
    EXPECT_THAT(result.output, Not(HasSubstr("missing.jpg")));
    EXPECT_EQ(result.errors, "ula: missing.jpg: there is no such file\n"
                             "ula: link: the link leads to nothing\n");
}

TEST_F(TimeTool, JsonTellsWhatIsMissing) {
    const ToolResult result = time({"--json", "missing.jpg"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.output, HasSubstr("\"error\": \"there is no such file\""));
    EXPECT_THAT(result.output, HasSubstr("\"modified\": null"));
}

TEST_F(TimeTool, NamesThatSteerATerminalAreShownAsEscapes) {
    writeOld("red\033[31m\n", "text");
    EXPECT_THAT(time({"red\033[31m\n"}).output, HasSubstr("red\\u001b[31m\\n"));
}

TEST_F(TimeTool, NameThatIsNoTextIsTold) {
    writeOld("odd\xFF.jpg", kFullJpeg);
    expectResult(time({"odd\xFF.jpg"}), 3, "",
                 "ula: odd\\xff.jpg: the name is no text in UTF-8; rename the file\n");
}

/// GNUstep makes texts of all of them, in the encoding of the locale.
TEST_F(TimeTool, ArgumentsAndEnvironmentThatAreNoTextEndNothing) {
    writeOld("full.jpg", kFullJpeg);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("ULA_TEST_ODD_\xFF", "odd\xFF", 1);
    const ToolResult result = time({"full.jpg", "odd\xFF"});
    EXPECT_EQ(result.code, 3) << result.errors;
    EXPECT_EQ(result.errors, "ula: odd\\xff: there is no such file\n");
    EXPECT_THAT(result.output, HasSubstr("full.jpg"));
    unsetenv("ULA_TEST_ODD_\xFF");
    unsetenv("LC_ALL");
}

TEST_F(TimeTool, NothingToShowIsWrongUsage) {
    EXPECT_EQ(time({}).code, 2);
    EXPECT_EQ(time({"--wrong", "a.jpg"}).code, 2);
}

}  // namespace

}  // namespace tav::test
