// SPDX-License-Identifier: MIT
// Copying, cutting and looking up strings of 8, 24 and 200 bytes. A second thread lives while they
// are measured (see BenchMain.cpp): with a single one, counts would change without locked
// instructions.
#include "bench/PeerData.h"
#include "ula/FastString.h"

#include <QByteArray>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <ext/vstring.h>
#include <map>
#include <string>

namespace {

using tav::ula::FastString;

/// The counted string of the GNU C++ library's extensions.
using CountedString = __gnu_cxx::__versa_string<char, std::char_traits<char>, std::allocator<char>,
                                                __gnu_cxx::__rc_string_base>;

constexpr std::size_t kMapSize = 1000;

/// Names that differ in their last six bytes, as keys of one group do.
std::string nameOf(std::size_t length, std::size_t number) {
    std::array<char, 16> digits;
    std::snprintf(digits.data(), digits.size(), "%06zu", number);
    return std::string(length - 6, 'p') + digits.data();
}

/// In a random order, so that a walk through a map does not run through memory in order.
template <class Text>
std::vector<Text> makeNames(std::size_t length) {
    std::vector<std::size_t> numbers(kMapSize);
    for (std::size_t i = 0; i < kMapSize; ++i)
        numbers[i] = i;
    tav::bench::Random(7).shuffle(numbers);
    std::vector<Text> names;
    for (const std::size_t number : numbers)
        names.push_back(Text(nameOf(length, number).c_str()));
    return names;
}

std::size_t lengthOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

template <class Text>
void copy(benchmark::State& state) {
    const Text text(nameOf(lengthOf(state), 1).c_str());
    for (auto _ : state) {
        Text other(text);
        benchmark::DoNotOptimize(other);
    }
}

void copyLiteral(benchmark::State& state) {
    FastString text = FastString::literal("twenty-four bytes of it!");
    benchmark::DoNotOptimize(text);
    for (auto _ : state) {
        FastString other(text);
        benchmark::DoNotOptimize(other);
    }
}

std::string part(const std::string& text, std::size_t length) {
    return text.substr(1, length);
}
CountedString part(const CountedString& text, std::size_t length) {
    return text.substr(1, length);
}
QByteArray part(const QByteArray& text, std::size_t length) {
    return text.mid(1, static_cast<int>(length));
}
FastString part(const FastString& text, std::size_t length) {
    return text.substr(1, length);
}

template <class Text>
void substring(benchmark::State& state) {
    const Text text(nameOf(lengthOf(state), 1).c_str());
    const std::size_t half = lengthOf(state) / 2;
    for (auto _ : state) {
        Text other = part(text, half);
        benchmark::DoNotOptimize(other);
    }
}

template <class Text>
void find(benchmark::State& state) {
    std::map<Text, int> map;
    for (const Text& name : makeNames<Text>(lengthOf(state)))
        map.emplace(name, static_cast<int>(map.size()));
    // The same names in other memory.
    const std::vector<Text> names = makeNames<Text>(lengthOf(state));
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(names[i]));
        i = i + 1 == names.size() ? 0 : i + 1;
    }
}

template <class Text>
void copyMap(benchmark::State& state) {
    std::map<Text, Text> map;
    for (const Text& name : makeNames<Text>(lengthOf(state)))
        map.emplace(name, name);
    for (auto _ : state) {
        std::map<Text, Text> other = map;
        benchmark::DoNotOptimize(other);
    }
}

void add(const std::string& name, void (*function)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name.c_str(), function)->Arg(8)->Arg(24)->Arg(200);
}

template <class Text>
void registerAll(const std::string& name) {
    add("copy/" + name, copy<Text>);
    add("substring/" + name, substring<Text>);
    add("find1000/" + name, find<Text>);
    add("copyMap1000/" + name, copyMap<Text>);
}

const bool kRegistered = [] {
    registerAll<FastString>("ula");
    registerAll<std::string>("std::string");
    registerAll<QByteArray>("QByteArray");
    registerAll<CountedString>("counted");
    benchmark::RegisterBenchmark("copyLiteral/ula", copyLiteral)->Arg(24);
    return true;
}();

}  // namespace
