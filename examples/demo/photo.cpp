// SPDX-License-Identifier: MIT
// A session of the photo application:
//   demo-photo session FILE   loads, reads with defaults, changes and saves
//   demo-photo check FILE     a second process: is everything there?
#include "examples/demo/Checksum.h"
#include "examples/demo/Report.h"

#include <cstring>
#include <set>
#include <ula/SettingsXML.h>

namespace {

using namespace demo;
using tav::ula::FastString;
using tav::ula::SettingsXML;

std::size_t countKeys(const SettingsXML& settings, std::set<int>& types) {
    std::size_t count = 0;
    for (const auto& [group, keys] : settings.getAllSettings())
        for (const auto& [key, setting] : keys) {
            types.insert(static_cast<int>(setting.type()));
            ++count;
        }
    return count;
}

void load(SettingsXML& settings, Report& report) {
    const StopWatch watch;
    const bool isRead = settings.read();
    const double time = watch.milliseconds();
    std::set<int> types;
    const std::size_t keys = countKeys(settings, types);
    report.check(isRead && keys > 0, format("%zu keys in %zu groups, read in %.2f ms", keys,
                                            settings.allGroups().size(), time));
    report.check(types.size() == 5, format("%zu types of value", types.size()));
    std::string names;
    for (const FastString& name : settings.allGroups())
        names += (names.empty() ? "" : " · ") + name.toStdString();
    report.note(names);
}

void readTyped(SettingsXML& settings, Report& report, int& stores) {
    report.check(settings.getInt("Window", "Width", 800) == 1440 && stores == 0,
                 "int     Window/Width is 1440, not the default; nothing stored");
    report.check(settings.getBool("Import", "EjectCard", false) && stores == 0,
                 "bool    Import/EjectCard is true");
    report.check(settings.getDouble("Browser", "ThumbnailScale", 1) == 1.25 && stores == 0,
                 "double  Browser/ThumbnailScale is 1.25");
    report.check(settings.getString("Keywords", "写真", "") == "東京, 夜" && stores == 0,
                 "string  Keywords/写真 is 東京, 夜");
    report.check(settings.getStringArray("Keywords", "Été", {}).size() == 3 && stores == 0,
                 "array   Keywords/Été has three entries");
    report.check(settings.getInt("Slideshow", "Seconds", 5) == 5 && stores == 1 &&
                     settings.containsValue("Slideshow", "Seconds"),
                 "missing Slideshow/Seconds: the default 5 is given and stored");
    report.check(settings.getBool("Window", "Height", true) && stores == 2,
                 "wrong type: Window/Height asked for as a bool becomes one");
}

int runSession(const char* path) {
    Report report;
    int stores = 0;
    SettingsXML file("Photos", "Example", path, false);
    load(file, report);
    file.changed().connect([&stores] { ++stores; });
    readTyped(file, report, stores);
    file.setGeneric("Window", "Width", 1920);
    file.setGeneric("Keywords", "Größe", "groß");
    report.check(stores == 4, format("the change signal came %d times for 4 stores", stores));
    sign(file);
    const StopWatch watch;
    const bool isWritten = file.write();
    report.check(isWritten, format("saved and on the disk in %.2f ms", watch.milliseconds()));
    return report.exitCode();
}

int runCheck(const char* path) {
    Report report;
    SettingsXML file("Photos", "Example", path, false);
    report.check(file.lastError().empty() && isSigned(file), "the checksum in the file is right");
    int stores = 0;
    file.changed().connect([&stores] { ++stores; });
    report.check(file.getInt("Window", "Width", 0) == 1920 &&
                     file.getInt("Slideshow", "Seconds", 0) == 5 &&
                     file.getString("Keywords", "Größe", "") == "groß" && stores == 0,
                 "the new values and the stored default are there");
    return report.exitCode();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "session") == 0)
        return runSession(argv[2]);
    if (argc == 3 && std::strcmp(argv[1], "check") == 0)
        return runCheck(argv[2]);
    std::fputs("usage: demo-photo session|check FILE\n", stderr);
    return 2;
}
