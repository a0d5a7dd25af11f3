// SPDX-License-Identifier: MIT
// The encrypted file: reading, and adding until it is on the disk, beside other items. The
// argument is their number.
#include "bench/ScratchFolder.h"
#include "ula/SecureData.h"

#include <benchmark/benchmark.h>
#include <cstdlib>

namespace {

using tav::ula::FastString;

/// A keychain of its own, without a session bus.
class Keychain {
public:
    explicit Keychain(long items) {
        setenv("XDG_DATA_HOME", _folder.path(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        unsetenv("XDG_RUNTIME_DIR");
        for (long item = 0; item < items; ++item)
            tav::ula::addToKeychain(FastString("Item " + std::to_string(item)), "ann", "a password",
                                    "bench");
    }

private:
    tav::bench::ScratchFolder _folder;
};

void get(benchmark::State& state) {
    const Keychain keychain(state.range(0));
    const FastString name("Item 0"), account("ann"), qualifier("bench");
    FastString password;
    for (auto _ : state) {
        if (!tav::ula::getFromKeychain(name, account, password, qualifier))
            state.SkipWithError("not found");
    }
}

void add(benchmark::State& state) {
    const Keychain keychain(state.range(0));
    long item = 0;
    for (auto _ : state) {
        const FastString name("New " + std::to_string(++item));
        if (!tav::ula::addToKeychain(name, "ann", "a password", "bench"))
            state.SkipWithError("not added");
        state.PauseTiming();
        tav::ula::deleteKeychain(name, "ann", "bench");
        state.ResumeTiming();
    }
}

BENCHMARK(get)->Name("getFromFile/ula")->Arg(1)->Arg(100)->UseRealTime();
BENCHMARK(add)->Name("addToFile/ula")->Arg(1)->Arg(100)->UseRealTime();

}  // namespace
