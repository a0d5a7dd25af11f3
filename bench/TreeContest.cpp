// SPDX-License-Identifier: MIT
#include "bench/TreeContest.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <utility>

namespace tav::bench {

namespace {

constexpr std::uint32_t kFoldersInTop = 100;
constexpr std::uint32_t kFoldersInEach = WatchedTree::kFolders / kFoldersInTop;
constexpr std::uint32_t kBurst = 100000;
constexpr std::uint32_t kSingles = 30;
constexpr auto kSilence = std::chrono::seconds(3);
constexpr std::uint64_t kSeed = 21;

/// The number in "/d012"; kNoFolder for what has another form.
std::uint32_t numberIn(std::string_view name, char letter) {
    std::uint32_t number = WatchedTree::kNoFolder;
    if (name.size() < 3 || name[0] != '/' || name[1] != letter)
        return number;
    const char* const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + 2, end, number);
    return error == std::errc() && stop == end ? number : WatchedTree::kNoFolder;
}

}  // namespace

std::string WatchedTree::folder(std::uint32_t index) const {
    const std::string outer = _top + "/d" + std::to_string(index / kFoldersInEach);
    const std::uint32_t inner = index % kFoldersInEach;
    return inner == 0 ? outer : outer + "/s" + std::to_string(inner);
}

std::uint32_t WatchedTree::indexOf(std::string_view path) const {
    if (!path.starts_with(_top) || path.size() == _top.size())
        return kNoFolder;
    path.remove_prefix(_top.size());
    const std::size_t slash = std::min(path.find('/', 1), path.size());
    const std::uint32_t outer = numberIn(path.substr(0, slash), 'd');
    const std::uint32_t inner = slash == path.size() ? 0 : numberIn(path.substr(slash), 's');
    if (outer >= kFoldersInTop || inner >= kFoldersInEach)
        return kNoFolder;
    return outer * kFoldersInEach + inner;
}

void WatchedTree::make() const {
    std::filesystem::create_directories(_top);
    for (std::uint32_t index = 0; index < kFolders; ++index)
        std::filesystem::create_directory(folder(index));
}

void WatchedTree::clear() const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(_top))
        if (!entry.is_directory())
            std::filesystem::remove(entry.path());
}

void TreeReport::told(std::string_view path) {
    ++_reports;
    const std::size_t slash = path.rfind('/');
    const std::uint32_t index = numberIn(path.substr(std::min(slash, path.size())), 'f');
    if (index < _begun && _tree.indexOf(path.substr(0, slash)) == _files[index].folder)
        cover(index);
}

void TreeReport::toldFolder(std::string_view path) {
    ++_reports;
    // The report may come before the writer knows that the file is there.
    const std::uint32_t count = _begun;
    const std::uint32_t folder = _tree.indexOf(path);
    if (folder != WatchedTree::kNoFolder)
        coverFolder(folder, count);
}

void TreeReport::toldRescan(std::string_view path) {
    ++_rescans;
    const std::uint32_t made = _made;
    const std::uint32_t only = _tree.indexOf(path);
    // What is below it counts for a whole part of the tree, which is the first folder of its kind.
    if (only != WatchedTree::kNoFolder && only % kFoldersInEach != 0)
        return coverFolder(only, made);
    const bool isAll = only == WatchedTree::kNoFolder;
    const std::uint32_t begin = isAll ? 0 : only;
    const std::uint32_t end = isAll ? WatchedTree::kFolders : only + kFoldersInEach;
    for (std::uint32_t folder = begin; folder < end; ++folder)
        coverFolder(folder, made);
}

/// What lies in the folder, of the first `count` of all files.
void TreeReport::coverFolder(std::uint32_t folder, std::uint32_t count) {
    for (; _filed < count; ++_filed)
        _uncovered[_files[_filed].folder].push_back(_filed);
    std::erase_if(_uncovered[folder], [&](std::uint32_t index) {
        if (index >= count)
            return false;
        cover(index);
        return true;
    });
}

void TreeReport::cover(std::uint32_t index) {
    if (std::exchange(_files[index].isCovered, true))
        return;
    const std::lock_guard lock(_mutex);
    _lastCovered = Clock::now();
    _delays.push_back(nanoseconds(_lastCovered - _files[index].made));
    if (++_covered == _wanted)
        _changed.notify_one();
}

void TreeReport::expect(std::uint32_t count) {
    _files.resize(count);
    _uncovered.resize(WatchedTree::kFolders);
    _delays.reserve(count);
}

void TreeReport::startBurst() {
    expect(kBurst);
    _writer = std::thread([this] { burst(); });
}

void TreeReport::startSingles() {
    expect(kSingles);
    _writer = std::thread([this] { singles(); });
}

void TreeReport::write(std::uint32_t index, std::uint32_t folder) {
    const std::string path = _tree.folder(folder) + "/f" + std::to_string(index);
    _files[index].folder = folder;
    _files[index].made = Clock::now();
    _begun = index + 1;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    _made = index + 1;
    if (file < 0 || ::write(file, "z", 1) != 1)
        perror(path.c_str());
    close(file);
}

void TreeReport::burst() {
    Random random(kSeed);
    for (std::uint32_t index = 0; index < kBurst; ++index)
        write(index, random.below(WatchedTree::kFolders));
    _lastMade = Clock::now();
    waitForTheLast();
    _isOver = true;
}

void TreeReport::waitForTheLast() {
    std::unique_lock lock(_mutex);
    std::uint32_t before = 0;
    _wanted = kBurst;
    do {
        before = _covered;
        _changed.wait_for(lock, kSilence, [&] { return _covered == kBurst; });
    } while (_covered != before && _covered != kBurst);
}

void TreeReport::singles() {
    Random random(kSeed);
    for (std::uint32_t index = 0; index < kSingles; ++index) {
        // Longer than what is gathered, so that each one comes out of the blue.
        std::this_thread::sleep_for(std::chrono::milliseconds(120 + random.below(100)));
        {
            const std::lock_guard lock(_mutex);
            _wanted = index + 1;
        }
        write(index, random.below(WatchedTree::kFolders));
        std::unique_lock lock(_mutex);
        _changed.wait_for(lock, kSilence, [&] { return _covered > index; });
    }
    _isOver = true;
}

void TreeReport::finish() {
    _writer.join();
    const auto all = static_cast<double>(_files.size());
    printf("covered %f\n", static_cast<double>(_covered) / all);
    if (_covered == _files.size())
        printf("p50_ns %f\np99_ns %f\n", quantile(_delays, 0.5), quantile(_delays, 0.99));
    if (_files.size() == kBurst)
        printBurst();
}

void TreeReport::printBurst() {
    // The last may be told before its file is closed.
    printf("lag_ns %f\n", std::max(0.0, nanoseconds(_lastCovered - _lastMade)));
    printf("write_ns %f\n", nanoseconds(_lastMade - _files[0].made));
    printf("reports %f\n", static_cast<double>(_reports));
    printf("rescans %f\n", static_cast<double>(_rescans));
}

double residentBytes(int process) {
    const std::string name = process == 0 ? "self" : std::to_string(process);
    std::ifstream file("/proc/" + name + "/statm");
    double all = 0;
    double resident = 0;
    file >> all >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double kernelBytes() {
    std::ifstream file("/proc/meminfo");
    std::string line;
    while (std::getline(file, line))
        if (line.starts_with("Slab:"))
            return std::stod(line.substr(5)) * 1024;
    return 0;
}

}  // namespace tav::bench
