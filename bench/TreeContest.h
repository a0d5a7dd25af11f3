// SPDX-License-Identifier: MIT
#pragma once

#include "bench/PeerData.h"
#include "bench/Quantile.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// What all who watch a tree of folders are given to watch, and what they are held to.
namespace tav::bench {

/// 20,000 folders in two levels, below a folder of its own.
class WatchedTree {
public:
    static constexpr std::uint32_t kFolders = 20000;
    static constexpr std::uint32_t kNoFolder = UINT32_MAX;

    explicit WatchedTree(std::string top) : _top(std::move(top)) {}

    const std::string& top() const { return _top; }
    std::string folder(std::uint32_t index) const;
    /// Of a path, without a slash at its end; kNoFolder for the top, and what is not of the tree.
    std::uint32_t indexOf(std::string_view path) const;
    void make() const;
    /// What the bursts have left.
    void clear() const;

private:
    std::string _top;
};

/// What a contestant says, held against what was written. A client of it is taken to read again
/// what it is told to read again, at that moment; there is nothing that it notices by itself.
/// Thread: what the contestant calls is called on one thread.
class TreeReport {
public:
    explicit TreeReport(const WatchedTree& tree) : _tree(tree) {}

    /// Contestant. The file itself.
    void told(std::string_view path);
    /// Contestant. Something in the folder.
    void toldFolder(std::string_view path);
    /// Contestant. Everything at and below the path is to be read again.
    void toldRescan(std::string_view path);
    bool isOver() const { return _isOver; }

    /// Adds files flat out, and waits until all were told or nothing comes any more.
    void startBurst();
    /// Adds a file, waits until it is told, and adds the next one.
    void startSingles();
    /// Waits for what was started, and prints the figures.
    void finish();

private:
    struct File {
        std::uint32_t folder = WatchedTree::kNoFolder;
        Clock::time_point made;
        bool isCovered = false;
    };

    void burst();
    void singles();
    void expect(std::uint32_t count);
    void write(std::uint32_t index, std::uint32_t folder);
    void cover(std::uint32_t index);
    void coverFolder(std::uint32_t folder, std::uint32_t count);
    void waitForTheLast();
    void printBurst();

    const WatchedTree& _tree;
    std::vector<File> _files;
    std::vector<std::vector<std::uint32_t>> _uncovered;  ///< the files of each folder
    std::thread _writer;
    std::atomic<std::uint32_t> _begun = 0;  ///< how many of the files may be there
    std::atomic<std::uint32_t> _made = 0;   ///< how many of them are
    std::uint32_t _filed = 0;               ///< how many of them are in `_uncovered`, or were
    std::atomic<bool> _isOver = false;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::uint32_t _covered = 0;
    std::uint32_t _wanted = 0;
    std::uint64_t _reports = 0;
    std::uint64_t _rescans = 0;
    Clock::time_point _lastMade;
    Clock::time_point _lastCovered;
    std::vector<double> _delays;  ///< in nanoseconds
};

/// In use by this process, or another one. Units: bytes.
double residentBytes(int process = 0);
/// In use by the kernel for its own objects, of all processes. Units: bytes.
double kernelBytes();

}  // namespace tav::bench
