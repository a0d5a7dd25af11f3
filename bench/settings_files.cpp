// SPDX-License-Identifier: MIT
// Loading a settings file into a store, saving a store without waiting for the disk, and replacing
// a file durably.
#include "bench/PeerFiles.h"
#include "bench/Stores.h"
#include "ula/foundation/filesystem/DurableFile.h"
#include "ula/foundation/xml/XmlFile.h"
#include "ula/src/Core/SettingsXMLWriter.h"

#include <QSaveFile>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace tav::bench;
using tav::ula::FastString;
using tav::ula::SettingsXML;

/// A file of this run with this text, written once.
template <class MakeText>
const std::string& keptFile(std::size_t keyCount, const std::string& suffix, MakeText makeText) {
    static std::map<std::string, std::string> made;
    const std::string name = std::to_string(keyCount) + suffix;
    std::string& path = made[name];
    if (path.empty()) {
        path = BenchFolder::instance() / name;
        writeFile(path, makeText());
    }
    return path;
}

const std::string& xmlFile(std::size_t keyCount) {
    return keptFile(keyCount, ".xml", [keyCount] { return xmlText(settingsData(keyCount)); });
}

// Loading. What was loaded is freed within the time too: with a document tree, that is a part of
// its price.

struct LoadOurs {
    static void load(const std::string& path) {
        const SettingsXML settings(FastString::literal("bench"), FastString::literal("ula"), path,
                                   false);
        benchmark::DoNotOptimize(settings.getAllSettings().size());
    }
    static bool isRight(std::size_t keyCount) {
        const SettingsXML settings(FastString::literal("bench"), FastString::literal("ula"),
                                   xmlFile(keyCount), false);
        return holdsAll(settings.getAllSettings(), settingsData(keyCount));
    }
};

template <StdStore (*Load)(const std::string&)>
struct LoadStd {
    static void load(const std::string& path) { benchmark::DoNotOptimize(Load(path).size()); }
    static bool isRight(std::size_t keyCount) {
        return Load(xmlFile(keyCount)) == toStdStore(settingsData(keyCount));
    }
};

struct LoadQSettings {
    static void load(const std::string& path) {
        QSettings settings(toQString(path), QSettings::IniFormat);
        // Sections are parsed when they are first asked for.
        benchmark::DoNotOptimize(settings.allKeys());
    }
};

struct LoadGKeyFile {
    static void load(const std::string& path) {
        const GKeyFilePtr file(g_key_file_new());
        g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr);
        benchmark::DoNotOptimize(file.get());
    }
};

const std::string& gkeyFile(std::size_t keyCount) {
    return keptFile(keyCount, ".keyfile", [keyCount] {
        const GKeyFilePtr file = toGKeyFile(settingsData(keyCount));
        gsize length = 0;
        char* bytes = g_key_file_to_data(file.get(), &length, nullptr);
        std::string text(bytes, length);
        g_free(bytes);
        return text;
    });
}

template <class Loader>
const std::string& fileFor(std::size_t keyCount) {
    if constexpr (std::is_same_v<Loader, LoadQSettings>)
        return qsettingsFile(keyCount);
    else if constexpr (std::is_same_v<Loader, LoadGKeyFile>)
        return gkeyFile(keyCount);
    else
        return xmlFile(keyCount);
}

template <class Loader>
void load(benchmark::State& state) {
    // The others read what they have written themselves.
    if constexpr (requires { Loader::isRight; })
        if (keyCountOf(state) <= 1000 && !Loader::isRight(keyCountOf(state)))
            state.SkipWithError("what was loaded differs from what was saved");
    const std::string& path = fileFor<Loader>(keyCountOf(state));
    for (auto _ : state)
        Loader::load(path);
}

// Saving, to a path where there is no file: replacing one makes ext4 write it out.

struct SaveOurs {
    explicit SaveOurs(std::size_t keyCount) : store(settingsData(keyCount)) {}
    void save(const std::string& path) const {
        tav::xml::XmlFile file(path, {.sync = false, .keepOldAs = {}});
        tav::ula::writeSettingsXML(store.settings.getAllSettings(), file.output());
        file.commit();
    }
    OurStore store;
};

struct SaveOneString {
    explicit SaveOneString(std::size_t keyCount) : store(toStdStore(settingsData(keyCount))) {}
    void save(const std::string& path) const { writeFile(path, xmlText(store)); }
    StdStore store;
};

template <class Saver>
void save(benchmark::State& state) {
    const Saver saver(keyCountOf(state));
    const std::string path = BenchFolder::instance() / "saved.xml";
    for (auto _ : state) {
        state.PauseTiming();
        unlink(path.c_str());
        state.ResumeTiming();
        saver.save(path);
    }
    if (keyCountOf(state) <= 1000 &&
        loadWithRapidXml(path) != toStdStore(settingsData(keyCountOf(state))))
        state.SkipWithError("what was saved differs from the store");
}

// Replacing a file durably: the same bytes over an old file.

void replaceOurs(const std::string& path, const std::string& text) {
    tav::filesystem::replaceFileDurably(path, text);
}

void replaceQSaveFile(const std::string& path, const std::string& text) {
    QSaveFile file(toQString(path));
    file.open(QIODevice::WriteOnly);
    file.write(text.data(), static_cast<qint64>(text.size()));
    file.commit();
}

/// QSaveFile leaves it to the file system when the new name reaches the disk; ours has waited for
/// it when it returns. This is what the same promise costs with QSaveFile.
void replaceQSaveFileAndFolder(const std::string& path, const std::string& text) {
    replaceQSaveFile(path, text);
    const std::string folder = path.substr(0, path.rfind('/'));
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    fsync(descriptor);
    close(descriptor);
}

template <void (*Replace)(const std::string&, const std::string&)>
void replace(benchmark::State& state) {
    const std::string text = readFile(xmlFile(keyCountOf(state)));
    const std::string path = BenchFolder::instance() / "replaced.xml";
    writeFile(path, text);
    for (auto _ : state)
        Replace(path, text);
    if (readFile(path) != text)
        state.SkipWithError("the file holds other bytes");
}

void add(const std::string& name, void (*function)(benchmark::State&),
         std::initializer_list<std::int64_t> keyCounts) {
    auto* added = benchmark::RegisterBenchmark(name.c_str(), function);
    added->Unit(benchmark::kMillisecond)->UseRealTime();
    for (const std::int64_t keyCount : keyCounts)
        added->Arg(keyCount);
}

const bool kRegistered = [] {
    add("load/ula", load<LoadOurs>, {1000, 100000, 1000000});
    add("load/rapidxml+map", load<LoadStd<loadWithRapidXml>>, {1000, 100000, 1000000});
    add("load/pugixml+map", load<LoadStd<loadWithPugiXml>>, {1000, 100000, 1000000});
    add("load/QSettings", load<LoadQSettings>, {1000, 100000, 1000000});
    add("load/GKeyFile", load<LoadGKeyFile>, {1000, 100000, 1000000});
    add("save/ula", save<SaveOurs>, {1000, 100000, 1000000});
    add("save/string+write", save<SaveOneString>, {1000, 100000, 1000000});
    add("replace/ula", replace<replaceOurs>, {1000, 100000});
    add("replace/QSaveFile", replace<replaceQSaveFile>, {1000, 100000});
    add("replace/QSaveFile+folder", replace<replaceQSaveFileAndFolder>, {1000, 100000});
    return true;
}();

}  // namespace
