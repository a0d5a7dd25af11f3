// SPDX-License-Identifier: MIT
#include "tools/ula/TimeCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/ExifDate.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/TextTable.h"
#include "tools/ula/Translation.h"
#include "ula/ULATime.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace tav::tool {

namespace {

using ula::ShootingDate;
using ula::ULATime;

constexpr const char* kHelp = translatable(R"(Examples:
  ula time IMG_0815.jpg        when it was taken, when the file was made and changed
  ula time *.jpg *.NEF         the same for many
  ula time --json old.jpg      the same for programs, with the moment in UTC

When a picture was taken is read from its EXIF data (DateTimeOriginal), of JPEG and
of TIFF with most cameras' raw formats; with a fraction of the second and the offset
from UTC where the camera told them. Other files have no such date. The dates of the
file itself are in your time zone, those of a link are of what it leads to.
Exit codes: 0 done; 2 wrong usage; 3 a file is not there or cannot be read.)");

constexpr const char* kNone = "-";

struct Options {
    std::vector<std::string> files;
    bool asJson = false;
};

struct Times {
    std::string path;
    ExifDate shot;
    ULATime created;
    ULATime modified;
    std::string error;  ///< empty when everything could be read
};

/// Empty for no time.
std::string textOf(const ULATime& time, char separator) {
    if (!time.weakValidationCheck())
        return {};
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u%c%02u:%02u:%02u", time.year, time.monthOfYear,
                  time.dayOfMonth, separator, time.hourOfDay, time.minuteOfHour,
                  time.secondOfMinute);
    return text;
}

/// For people: "2009-03-15 10:20:30.45 +02:00".
std::string textOf(const ShootingDate& date) {
    ShootingDate local = date;
    local.utcOffsetMinutes.reset();
    const std::string time = local.toString();
    const std::string offset = date.toString().substr(time.size());
    return time.substr(0, 10) + ' ' + time.substr(11) + (offset.empty() ? "" : ' ' + offset);
}

/// Why there are no dates, or not the one of the picture.
std::string errorOf(const Times& times) {
    struct stat info {};
    if (stat(times.path.c_str(), &info) != 0) {
        const int error = errno;
        if (error == ENOENT && lstat(times.path.c_str(), &info) == 0)
            return translated("the link leads to nothing");
        return error == ENOENT ? translated("there is no such file") : std::strerror(error);
    }
    if (!times.created.weakValidationCheck() && !times.modified.weakValidationCheck())
        return translated("the name is no text in UTF-8; rename the file");
    if (times.shot.error != 0)
        return translated("cannot be read for when it was taken: %1",
                          std::string(std::strerror(times.shot.error)));
    return {};
}

Times timesOf(const std::string& path) {
    Times times;
    times.path = path;
    // The library's two are crossed, as its callers expect.
    times.created = ULATime::fromFileModificationTime(true, path);
    times.modified = ULATime::fromFileCreationTime(true, path);
    if (times.modified.weakValidationCheck())
        times.shot = readExifDate(path);
    times.error = errorOf(times);
    return times;
}

Json jsonOf(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json jsonOf(const Times& times) {
    Json json{{"file", times.path}};
    json["taken"] = times.shot.date ? Json(times.shot.date->toString()) : Json(nullptr);
    const auto utc = times.shot.date ? times.shot.date->toUtc() : std::nullopt;
    json["takenUtc"] = jsonOf(utc ? textOf(*utc, 'T') + "Z" : "");
    json["created"] = jsonOf(textOf(times.created, 'T'));
    json["modified"] = jsonOf(textOf(times.modified, 'T'));
    if (!times.error.empty())
        json["error"] = times.error;
    return json;
}

void printAsJson(const std::vector<Times>& all) {
    Json list = Json::array();
    for (const Times& times : all)
        list.push_back(jsonOf(times));
    printJson("files", std::move(list));
}

std::string orNone(const std::string& text) {
    return text.empty() ? kNone : text;
}

TableRow rowOf(const Times& times) {
    const ExifDate& shot = times.shot;
    // A date that is none is told as the camera wrote it.
    const std::string unclear = shot.text.find_first_of("123456789") == std::string::npos
                                    ? std::string()
                                    : quotedText(shot.text) + "?";
    return {displayText(times.path), orNone(shot.date ? textOf(*shot.date) : unclear),
            orNone(textOf(times.created, ' ')), orNone(textOf(times.modified, ' '))};
}

void printText(const std::vector<Times>& all) {
    std::vector<TableRow> rows = {
        {translated("FILE"), translated("TAKEN"), translated("CREATED"), translated("MODIFIED")}};
    for (const Times& times : all)
        if (times.modified.weakValidationCheck())
            rows.push_back(rowOf(times));
    if (rows.size() > 1)
        printTable(rows);
}

ExitCode run(const Options& options) {
    std::vector<Times> all;
    for (const std::string& file : options.files)
        all.push_back(timesOf(file));
    options.asJson ? printAsJson(all) : printText(all);
    ExitCode code = ExitOk;
    for (const Times& times : all) {
        if (times.error.empty())
            continue;
        code = ExitCannotRead;
        printError(times.path + ": " + times.error);
    }
    return code;
}

}  // namespace

void addTimeCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const time = program.add_subcommand(
        "time", translated("Show when pictures were taken, and files were made and changed"));
    time->add_option("FILE", options->files, translated("Pictures and other files"))->required();
    time->add_flag("--json", options->asJson, translated("As JSON"));
    time->callback([options, &result] { result = run(*options); });
    time->footer(translated(kHelp));
}

}  // namespace tav::tool
