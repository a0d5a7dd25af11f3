// SPDX-License-Identifier: MIT
// Property lists in XML: a file into a typed store, a store into a file without waiting for the
// disk, and Foundation's objects to and from their text.
#include "bench/PeerFiles.h"
#include "bench/PeerPropertyLists.h"
#include "bench/Stores.h"
#include "ula/SettingsPList.h"
#include "ula/src/Core/SettingsPListWriter.h"

#include <unistd.h>

namespace {

using namespace tav::bench;
using tav::ula::SettingsBase;
using tav::ula::SettingsPList;

const std::string& listFile(std::size_t keyCount) {
    static std::map<std::size_t, std::string> made;
    std::string& path = made[keyCount];
    if (path.empty()) {
        path = BenchFolder::instance() / (std::to_string(keyCount) + ".plist");
        writeFile(path, textWithLibplist(settingsData(keyCount)));
    }
    return path;
}

// What was loaded is freed within the time too.

void loadOurs(benchmark::State& state) {
    const std::string& path = listFile(keyCountOf(state));
    std::string error;
    {
        SettingsBase::GroupMap groups;
        if (!SettingsPList::readFile(path, groups, error) ||
            !holdsAll(groups, settingsData(keyCountOf(state))))
            return state.SkipWithError("what was loaded differs from what was saved");
    }
    for (auto _ : state) {
        SettingsBase::GroupMap groups;
        benchmark::DoNotOptimize(SettingsPList::readFile(path, groups, error));
    }
}

template <StdStore (*Load)(const std::string&)>
void loadPeer(benchmark::State& state) {
    const std::string& path = listFile(keyCountOf(state));
    if (Load(path) != toStdStore(settingsData(keyCountOf(state))))
        return state.SkipWithError("what was loaded differs from what was saved");
    for (auto _ : state)
        benchmark::DoNotOptimize(Load(path).size());
}

/// To a path where there is no file: replacing one makes ext4 write it out.
template <class MakeText>
void save(benchmark::State& state, const MakeText& makeText) {
    const std::string path = BenchFolder::instance() / "saved.plist";
    for (auto _ : state) {
        state.PauseTiming();
        unlink(path.c_str());
        state.ResumeTiming();
        writeFile(path, makeText());
    }
    if (loadWithLibplist(path) != toStdStore(settingsData(keyCountOf(state))))
        state.SkipWithError("what was saved differs from the store");
}

void saveOurs(benchmark::State& state) {
    const OurStore store(settingsData(keyCountOf(state)));
    save(state, [&] {
        std::string text;
        tav::xml::XmlOutput output([&](std::string_view piece) { text += piece; });
        tav::ula::writeSettingsPList(store.settings.getAllSettings(), output);
        output.flush();
        return text;
    });
}

template <std::string (*MakeText)(const Data&)>
void savePeer(benchmark::State& state) {
    const Data& data = settingsData(keyCountOf(state));
    save(state, [&] { return MakeText(data); });
}

template <Serialization Which>
void readObjects(benchmark::State& state) {
    const PropertyList list(settingsData(keyCountOf(state)));
    if (!list.readsTheSame(Which))
        return state.SkipWithError("what was read differs from what was written");
    for (auto _ : state)
        benchmark::DoNotOptimize(list.read(Which));
}

template <Serialization Which>
void writeObjects(benchmark::State& state) {
    const PropertyList list(settingsData(keyCountOf(state)));
    for (auto _ : state)
        benchmark::DoNotOptimize(list.write(Which));
}

void add(const std::string& name, void (*function)(benchmark::State&)) {
    auto* added = benchmark::RegisterBenchmark(name.c_str(), function);
    added->Unit(benchmark::kMillisecond)->UseRealTime()->Arg(1000)->Arg(100000);
}

const bool kRegistered = [] {
    add("loadList/ula", loadOurs);
    add("loadList/libplist", loadPeer<loadWithLibplist>);
    add("loadList/GNUstep", loadPeer<loadWithGNUstep>);
    add("saveList/ula", saveOurs);
    add("saveList/libplist", savePeer<textWithLibplist>);
    add("saveList/GNUstep", savePeer<textWithGNUstep>);
    add("readObjects/ula", readObjects<Serialization::Ours>);
    add("readObjects/GNUstep", readObjects<Serialization::GNUstep>);
    add("writeObjects/ula", writeObjects<Serialization::Ours>);
    add("writeObjects/GNUstep", writeObjects<Serialization::GNUstep>);
    return true;
}();

}  // namespace
