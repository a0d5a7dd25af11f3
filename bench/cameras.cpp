// SPDX-License-Identifier: MIT
// Bringing pictures over from a memory card, and listing it, against cp and gphoto2's own tool on
// the same card, a disk image. Each contestant starts with an empty folder. gphoto2 and cp leave
// the pictures in the system's memory: "+sync" has them on the disk, where ours are when it is
// done. Needs root.
#include "bench/ScratchFolder.h"
#include "tests/support/Mounts.h"
#include "ula/ImportSession.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace tav::ula;

constexpr int kPictures = 500;
constexpr std::size_t kPictureSize = 5'000'000;
constexpr int kListed = 10'000;

/// Before there are threads.
const std::string kNoMounts = tav::test::isolateMounts();

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error(command + " fails");
}

class Card : public tav::test::Mounted {
public:
    Card(const std::string& name, int count, std::size_t size,
         const tav::bench::ScratchFolder& folder)
        : Mounted("/Volumes/" + name), _name(name) {
        const std::string image = folder / name;
        run("truncate -s 3500M " + image + " && mkfs.ext4 -q " + image);
        run("mount -o loop " + image + " " + _point);
        fs::create_directories(_point + "/DCIM/100BENCH");
        const std::string bytes(size, 'x');
        for (int i = 0; i < count; ++i)
            std::ofstream(pictures() + "/IMG_" + std::to_string(i) + ".JPG") << i << bytes;
        sync();
    }

    std::string pictures() const { return _point + "/DCIM/100BENCH"; }
    std::string id() const {
        for (const ImportDevice& device : ImportSession::devices())
            if (device.name == _name)
                return device.id;
        throw std::runtime_error("the card is no device");
    }

private:
    std::string _name;
};

struct World {
    World() {
        if (!kNoMounts.empty())
            throw std::runtime_error("needs root: " + kNoMounts);
    }

    const tav::bench::ScratchFolder folder{fs::temp_directory_path()};
    Card large{"Large", kPictures, kPictureSize, folder};
    Card many{"Many", kListed, 100, folder};
};

World& world() {
    static World theWorld;
    return theWorld;
}

/// Times `work` on an empty folder.
template <typename Work>
void importBench(benchmark::State& state, Work work) {
    const std::string target = world().folder / "target";
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove_all(target);
        fs::create_directory(target);
        sync();
        state.ResumeTiming();
        work(target);
    }
    state.SetBytesProcessed(state.iterations() * kPictures *
                            static_cast<std::int64_t>(kPictureSize));
}

void importUla(benchmark::State& state) {
    importBench(state, [](const std::string& target) {
        ImportSession session(world().large.id());
        for (const ImportedFile& file : session.import(session.list(), target))
            if (file.result != ImportResult::Imported)
                throw std::runtime_error(file.error);
    });
}
BENCHMARK(importUla)->Name("import/ula/500")->UseRealTime()->Unit(benchmark::kMillisecond);

void importCp(benchmark::State& state) {
    importBench(state, [](const std::string& target) {
        run("cp " + world().large.pictures() + "/* " + target);
    });
}
BENCHMARK(importCp)->Name("import/cp/500")->UseRealTime()->Unit(benchmark::kMillisecond);

void importCpSync(benchmark::State& state) {
    importBench(state, [](const std::string& target) {
        run("cp " + world().large.pictures() + "/* " + target + " && sync -f " + target);
    });
}
BENCHMARK(importCpSync)->Name("import/cp+sync/500")->UseRealTime()->Unit(benchmark::kMillisecond);

void importGphoto(benchmark::State& state) {
    importBench(state, [](const std::string& target) {
        run("cd " + target + " && gphoto2 --quiet --port disk:" + world().large.point() +
            " --get-all-files >/dev/null 2>&1");
    });
}
BENCHMARK(importGphoto)->Name("import/gphoto2/500")->UseRealTime()->Unit(benchmark::kMillisecond);

void listUla(benchmark::State& state) {
    const std::string id = world().many.id();
    for (auto _ : state)
        benchmark::DoNotOptimize(ImportSession(id).list().size());
}
BENCHMARK(listUla)->Name("list/ula/10000")->UseRealTime()->Unit(benchmark::kMillisecond);

void firstUla(benchmark::State& state) {
    const std::string id = world().many.id();
    for (auto _ : state)
        ImportSession(id).list([](const std::vector<ImportObject>&) { return false; });
}
BENCHMARK(firstUla)->Name("listFirst/ula/10000")->UseRealTime()->Unit(benchmark::kMillisecond);

void listGphoto(benchmark::State& state) {
    const std::string point = world().many.point();
    for (auto _ : state)
        run("gphoto2 --port disk:" + point + " --list-files >/dev/null 2>&1");
}
BENCHMARK(listGphoto)->Name("list/gphoto2/10000")->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
