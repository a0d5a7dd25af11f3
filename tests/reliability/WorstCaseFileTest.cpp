// SPDX-License-Identifier: MIT
// Files made to cost as much time and memory as a file of their size can, read as an application
// reads them at its start: in a process of its own, against a limit of time and one of memory.
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include "ula/SettingsException.h"
#include "ula/SettingsXML.h"
#include "ula/foundation/debug/Log.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/time.h>
#include <vector>

namespace tav::test {

namespace {

using ula::FastString;
using ula::SettingsXML;

/// Sanitizers multiply time and memory.
constexpr std::size_t kSize = ULA_IS_SANITIZED ? 1 << 18 : 8 << 20;
constexpr rlim_t kMostSeconds = ULA_IS_SANITIZED ? 60 : 10;
/// Peak memory over the file's size; a document tree of the shortest elements is the worst. Address
/// sanitizer holds back another 256 MiB of freed memory.
constexpr long kMostTimesFile = ULA_IS_SANITIZED ? 2000 : 40;

struct Case {
    const char* name;
    const char* result;  ///< "read", "refused" or "thrown"
    std::string (*text)();
};

std::string repeated(std::string_view piece, std::size_t size = kSize) {
    std::string text;
    text.reserve(size + piece.size());
    while (text.size() < size)
        text += piece;
    return text;
}

std::string inSettings(const std::string& content) {
    return "<settings>" + content + "</settings>";
}

std::string inGroup(const std::string& content) {
    return inSettings("<group name=\"g\">" + content + "</group>");
}

std::string inKey(const char* type, const std::string& content) {
    return inGroup(std::string("<key name=\"k\" type=\"") + type + "\">" + content + "</key>");
}

std::string nested(std::string_view begin, std::string_view end) {
    std::string text = repeated(begin, kSize / 2);
    const std::size_t levels = text.size() / begin.size();
    return text + repeated(end, levels * end.size());
}

/// `make` of the numbers up to what fits, in an order of `sort`.
std::string numbered(const std::function<std::string(std::string)>& make,
                     const std::function<void(std::vector<int>&)>& sort) {
    std::vector<int> numbers(kSize / (make("1234567").size()));
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = 1000000 + static_cast<int>(i);
    sort(numbers);
    std::string text;
    for (const int number : numbers)
        text += make(std::to_string(number));
    return text;
}

void reverse(std::vector<int>& numbers) {
    std::ranges::reverse(numbers);
}

void shuffle(std::vector<int>& numbers) {
    std::ranges::shuffle(numbers, std::mt19937(1));
}

void evenThenOdd(std::vector<int>& numbers) {
    std::stable_partition(numbers.begin(), numbers.end(),
                          [](int number) { return number % 2 == 0; });
}

std::string key(const std::string& name) {
    return "<key name=\"" + name + "\" type=\"int\"><value value=\"1\"/></key>";
}

std::string group(const std::string& name) {
    return "<group name=\"" + name + "\">" + key("k") + "</group>";
}

/// The same in the spelling that only the document tree reads.
std::string apostrophes(std::string text) {
    std::ranges::replace(text, '"', '\'');
    return text;
}

std::string entityBomb() {
    std::string text = "<!DOCTYPE settings [<!ENTITY a0 \"lol\">";
    for (int i = 1; i < 30; ++i)
        text += "<!ENTITY a" + std::to_string(i) + " \"" +
                repeated("&a" + std::to_string(i - 1) + ";", 60) + "\">";
    return text + "]>" + inKey("string", "<value value=\"&a29;\"/>");
}

const std::vector<Case> kCases = {
    {"EmptyGroups", "read", [] { return inSettings(repeated("<group/>")); }},
    {"EmptyKeys", "thrown", [] { return inGroup(repeated("<key/>")); }},
    {"ShortestElements", "thrown", [] { return inSettings(repeated("<a/>")); }},
    {"EmptyTexts", "read", [] { return inKey("string_array", repeated("<value value=\"\"/>")); }},
    {"TextsWithoutAttribute", "read", [] { return inKey("string_array", repeated("<a/>")); }},
    {"KeysBackwards", "read", [] { return inGroup(numbered(key, reverse)); }},
    {"KeysShuffled", "read", [] { return inGroup(numbered(key, shuffle)); }},
    {"KeysInterleaved", "read", [] { return inGroup(numbered(key, evenThenOdd)); }},
    {"KeysBackwardsInATree", "read", [] { return apostrophes(inGroup(numbered(key, reverse))); }},
    {"KeysShuffledInATree", "read", [] { return apostrophes(inGroup(numbered(key, shuffle))); }},
    {"OneKeyManyTimes", "read", [] { return inGroup(repeated(key("k"))); }},
    {"OneKeyManyTimesInATree", "read", [] { return apostrophes(inGroup(repeated(key("k")))); }},
    {"GroupsBackwards", "read", [] { return inSettings(numbered(group, reverse)); }},
    {"GroupsShuffled", "read", [] { return inSettings(numbered(group, shuffle)); }},
    {"GroupsShuffledInATree", "read",
     [] { return apostrophes(inSettings(numbered(group, shuffle))); }},
    {"OneGroupManyTimes", "read", [] { return inSettings(repeated(group("g"))); }},
    {"OneGroupManyTimesInATree", "read",
     [] { return apostrophes(inSettings(repeated(group("g")))); }},
    {"ManyAttributes", "thrown",
     [] {
         const auto attribute = [](const std::string& name) { return " a" + name + "=''"; };
         return inSettings("<a" + numbered(attribute, shuffle) + "/>");
     }},
    {"NumbersThatAreNone", "read",
     [] { return inGroup(repeated("<key name=\"k\" type=\"int\"><value value=\"x\"/></key>")); }},
    {"NumbersOutOfRange", "read",
     [] { return inKey("double", "<value value=\"1" + repeated("0") + "\"/>"); }},
    {"ReferencesOnly", "read",
     [] { return inKey("string", "<value value=\"" + repeated("&#x10FFFF;") + "\"/>"); }},
    // Legal, but of more digits than any character needs: not worth following.
    {"LongReference", "refused",
     [] { return inKey("string", "<value value=\"&#" + repeated("0") + "65;\"/>"); }},
    {"ReferencesWithoutEnd", "refused",
     [] { return inKey("string", "<value value=\"" + repeated("&#0") + "\"/>"); }},
    {"DeepInAValue", "read",
     [] { return inKey("string", "<value value=\"v\">" + nested("<a>", "</a>") + "</value>"); }},
    {"DeepWithoutEnd", "refused", [] { return repeated("<a>"); }},
    {"DeepGroups", "thrown", [] { return inSettings(nested("<group name=\"g\">", "</group>")); }},
    {"CommentsWithoutEnd", "refused", [] { return inSettings(repeated("<!--&")); }},
    {"SectionsWithoutEnd", "refused", [] { return inSettings(repeated("<![CDATA[&")); }},
    {"InstructionsWithoutEnd", "refused", [] { return inSettings(repeated("<?a&")); }},
    {"TypesWithoutEnd", "refused", [] { return repeated("<!DOCTYPE a ["); }},
    {"IgnoredSectionsWithoutEnd", "refused",
     [] { return "<!DOCTYPE a [" + repeated("<![IGNORE["); }},
    {"EntityBomb", "refused", entityBomb},
    {"ZeroBytes", "refused", [] { return std::string(kSize, '\0'); }},
    {"HighBytes", "refused", [] { return std::string(kSize, '\xFF'); }},
    {"Blanks", "refused", [] { return std::string(kSize, ' '); }},
};

void PrintTo(const Case& one, std::ostream* out) {
    *out << one.name;
}

/// What reading a file gives at construction, and whether it stayed within `mostBytes`.
std::string readInChild(const std::string& path, long mostBytes) {
    return runInChild([&] {
        debug::setLogSink([](const debug::LogRecord&) {});
        rusage begin{};
        getrusage(RUSAGE_SELF, &begin);
        const rlimit seconds{kMostSeconds, kMostSeconds};
        setrlimit(RLIMIT_CPU, &seconds);
        std::string result;
        try {
            const SettingsXML settings("App", "Company", FastString(path), false);
            result = settings.lastError().empty() ? "read" : "refused";
        } catch (const ula::SettingsException&) {
            result = "thrown";
        }
        rusage end{};
        getrusage(RUSAGE_SELF, &end);
        const long used = (end.ru_maxrss - begin.ru_maxrss) * 1024;
        std::printf("%s: peak %ld KiB, %ld ms\n", result.c_str(), used / 1024,
                    end.ru_utime.tv_sec * 1000 + end.ru_utime.tv_usec / 1000);
        std::fflush(stdout);
        if (used > mostBytes)
            result += ", with " + std::to_string(used) + " bytes of memory";
        return result;
    });
}

class WorstCaseFile : public testing::TestWithParam<Case> {
protected:
    TemporaryFolder _folder{"/dev/shm"};
    std::string _path = _folder / "settings.xml";
};

TEST_P(WorstCaseFile, IsReadOrRefusedWithinLimits) {
    // Made in a process of its own: memory that this one has had would be used again by the
    // reader and not count.
    ASSERT_EQ(runInChild([&] {
                  writeFile(_path, GetParam().text());
                  return std::string();
              }),
              "");
    const auto size = static_cast<long>(std::filesystem::file_size(_path));
    EXPECT_EQ(readInChild(_path, (16L << 20) + kMostTimesFile * size), GetParam().result);
    // Whatever came of it, the file is there as it was.
    EXPECT_EQ(static_cast<long>(std::filesystem::file_size(_path)), size);
}

INSTANTIATE_TEST_SUITE_P(Of, WorstCaseFile, testing::ValuesIn(kCases),
                         [](const auto& given) { return std::string(given.param.name); });

TEST(GigabyteOfNothing, IsRefusedWithoutReadingItIn) {
    const TemporaryFolder folder("/dev/shm");
    const std::string path = folder / "settings.xml";
    writeFile(path, "");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 30);
    EXPECT_EQ(readInChild(path, 32L << 20), "refused");
}

}  // namespace

}  // namespace tav::test
