// SPDX-License-Identifier: MIT
// demo-crash FILE KILLS [--in-place]
// Kills a process that does nothing but save FILE, KILLS times within a save, and looks at the
// file after each. --in-place saves the way programs must not: the check has to notice.
#include "examples/demo/Checksum.h"
#include "examples/demo/Report.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <ula/SettingsException.h>
#include <ula/SettingsXML.h>
#include <unistd.h>

namespace {

using namespace demo;
using tav::ula::FastString;
using tav::ula::SettingsXML;

/// Shared with the process that is killed.
struct Counters {
    std::atomic<int> begun = 0;
    std::atomic<int> done = 0;
};

/// Enough for a save to last: a rating for each of 2000 photographs.
void fill(SettingsXML& settings, int serial) {
    settings.setGeneric("Demo", "Serial", serial);
    for (int i = 0; i < 2000; ++i)
        settings.setGeneric("Ratings", FastString("IMG_" + std::to_string(10000 + i)),
                            (serial + i) % 6);
    sign(settings);
}

void saveInPlace(const char* path, const std::string& text) {
    std::ofstream file(path, std::ios::trunc);
    for (std::size_t at = 0; at < text.size(); at += 4096)
        file.write(text.data() + at, std::min<long>(4096, static_cast<long>(text.size() - at)))
            .flush();
}

std::string textOf(const char* path) {
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

/// Never returns. Writes a byte to `ready` once the first save is done.
[[noreturn]] void saveForever(const char* path, Counters& counters, int ready, bool inPlace) {
    SettingsXML settings("Photos", "Example", path, false);
    const std::string text = textOf(path);
    // Without a text the file would only be emptied, which proves less than a torn one.
    if (inPlace && text.empty())
        _exit(1);
    for (int serial = counters.done;; ++serial) {
        fill(settings, serial + 1);
        counters.begun = serial + 1;
        if (inPlace)
            saveInPlace(path, text);
        else if (!settings.write())
            _exit(1);
        counters.done = serial + 1;
        if (ready >= 0 && write(ready, "", 1) == 1)
            ready = -1;
    }
}

struct Tally {
    int kills = 0;
    int within = 0;
    int whole = 0;
    int oldOnes = 0;
    int newOnes = 0;
};

class Crasher {
public:
    Crasher(const char* path, bool inPlace)
        : _path(path),
          _inPlace(inPlace),
          _counters(new (mmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Counters) {}

    /// False when the saving process could not be started or ended by itself.
    bool killOnce(Tally& tally) {
        int ready[2];
        if (pipe(ready) != 0)
            return false;
        const pid_t process = fork();
        if (process == 0)
            saveForever(_path, *_counters, ready[1], _inPlace);
        close(ready[1]);
        // Killing "process -1" would end everything that this user may end.
        if (process < 0) {
            close(ready[0]);
            return false;
        }
        char byte = 0;
        const bool isReady = read(ready[0], &byte, 1) == 1;
        close(ready[0]);
        // Anywhere in the saves to come.
        std::this_thread::sleep_for(std::chrono::microseconds(
            std::uniform_int_distribution<int>(0, kLongestMicroseconds)(_random)));
        kill(process, SIGKILL);
        int status = 0;
        waitpid(process, &status, 0);
        look(tally);
        return isReady && WIFSIGNALED(status);
    }

private:
    static constexpr int kLongestMicroseconds = 20'000;

    void look(Tally& tally) {
        const int begun = _counters->begun, done = _counters->done;
        ++tally.kills;
        const bool isWithin = begun != done;
        tally.within += isWithin;
        const int serial = serialInFile();
        const bool isWhole = _inPlace ? serial >= 0 : serial == begun || serial == done;
        tally.whole += isWhole;
        if (isWithin && isWhole)
            ++(serial == begun ? tally.newOnes : tally.oldOnes);
        _counters->begun = _counters->done = std::max(serial, 0);
    }

    /// -1 when the file is not whole.
    int serialInFile() const {
        SettingsXML settings("Photos", "Example", false);
        try {
            const auto document = tav::xml::XmlDocumentRapid::load(_path, true);
            if (!settings.read(document) || !isSigned(settings))
                return -1;
        } catch (const tav::ula::SettingsException&) {
            return -1;
        }
        return settings.getInt("Demo", "Serial", -1);
    }

    const char* _path;
    bool _inPlace;
    Counters* _counters;
    std::mt19937 _random{std::random_device()()};
};

std::size_t filesInFolderOf(const char* path) {
    namespace fs = std::filesystem;
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(fs::absolute(path).parent_path()), {}));
}

bool saveOnce(const char* path, int serial) {
    SettingsXML settings("Photos", "Example", path, false);
    fill(settings, serial);
    return settings.write();
}

int run(const char* path, int wanted, bool inPlace) {
    Report report;
    if (!report.check(saveOnce(path, 0), "the file grows to 2000 more keys, and is saved"))
        return 1;
    const std::size_t files = filesInFolderOf(path);
    Crasher crasher(path, inPlace);
    Tally tally;
    const StopWatch watch;
    // Not every kill finds the process within a save; there must be an end all the same.
    while (tally.within < wanted && tally.kills < 20 * wanted && tally.whole == tally.kills) {
        if (!crasher.killOnce(tally)) {
            report.check(false, "the saving process did not start, or ended by itself");
            break;
        }
        report.progress(tally.within, wanted,
                        format("%d of %d kills, all whole", tally.within, wanted));
    }
    report.check(tally.within >= wanted,
                 format("%d SIGKILLs, %d of them within a save, in %.1f s", tally.kills,
                        tally.within, watch.milliseconds() / 1000));
    report.check(tally.whole == tally.kills,
                 format("%d of %d times the file was whole: it parses, its checksum is right",
                        tally.whole, tally.kills));
    report.note(format("after a kill within a save: %d times the old file, %d times the new one",
                       tally.oldOnes, tally.newOnes));
    report.check(saveOnce(path, 1) && filesInFolderOf(path) == files,
                 "the next save leaves no temporary file behind");
    return report.exitCode();
}

}  // namespace

int main(int argc, char** argv) {
    const bool inPlace = argc == 4 && std::strcmp(argv[3], "--in-place") == 0;
    const int kills = argc >= 3 ? std::atoi(argv[2]) : 0;
    if (kills > 0 && (argc == 3 || inPlace))
        return run(argv[1], kills, inPlace);
    std::fputs("usage: demo-crash FILE KILLS [--in-place]\n", stderr);
    return 2;
}
