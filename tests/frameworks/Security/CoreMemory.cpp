// SPDX-License-Identifier: MIT
#include "tests/frameworks/Security/CoreMemory.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace tav::test {

namespace {

constexpr char kMask = 0x55;
constexpr std::size_t kPiece = std::size_t(1) << 20;

struct Range {
    unsigned long begin = 0;
    unsigned long end = 0;
};

bool isHeader(const std::string& line) {
    return !line.empty() && std::isxdigit(static_cast<unsigned char>(line[0])) != 0 &&
           line.find('-') < line.find(' ');
}

/// What can be read and is not kept out ("dd"); pages of the kernel and of devices apart.
std::vector<Range> dumpedRanges() {
    std::ifstream maps("/proc/self/smaps");
    std::vector<Range> ranges;
    Range range;
    bool isReadable = false;
    for (std::string line; std::getline(maps, line);) {
        if (isHeader(line)) {
            char dash = 0, readable = 0;
            std::istringstream(line) >> std::hex >> range.begin >> dash >> range.end >> readable;
            isReadable = readable == 'r' && line.find("[v") == std::string::npos;
        } else if (line.starts_with("VmFlags:") && isReadable &&
                   line.find(" dd") == std::string::npos) {
            ranges.push_back(range);
        }
    }
    return ranges;
}

/// Memory of its own, which is not looked at.
class Window {
public:
    explicit Window(std::size_t size)
        : _size(size),
          _bytes(static_cast<char*>(
              mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        madvise(_bytes, size, MADV_DONTDUMP);
    }
    ~Window() { munmap(_bytes, _size); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    char* bytes() { return _bytes; }

private:
    std::size_t _size;
    char* _bytes;
};

}  // namespace

HiddenText::HiddenText(const std::string& text) : _masked(text) {
    for (char& c : _masked)
        c = static_cast<char>(c ^ kMask);
}

std::string HiddenText::reveal() const {
    std::string text = _masked;
    for (char& c : text)
        c = static_cast<char>(c ^ kMask);
    return text;
}

bool HiddenText::isAt(const char* bytes) const {
    return std::equal(_masked.begin(), _masked.end(), bytes,
                      [](char masked, char plain) { return masked == (plain ^ kMask); });
}

bool HiddenText::isIn(const char* bytes, std::size_t count) const {
    const char* const end = bytes + count;
    while (count >= size()) {
        const auto* const begin =
            static_cast<const char*>(std::memchr(bytes, _masked[0] ^ kMask, count - size() + 1));
        if (begin == nullptr)
            return false;
        if (isAt(begin))
            return true;
        bytes = begin + 1;
        count = static_cast<std::size_t>(end - bytes);
    }
    return false;
}

bool isInCoreMemory(const HiddenText& text) {
    const std::vector<Range> ranges = dumpedRanges();
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    Window window(kPiece + text.size());
    bool isFound = false;
    for (const Range& range : ranges) {
        for (unsigned long at = range.begin; at < range.end && !isFound; at += kPiece) {
            const std::size_t wanted = std::min<std::size_t>(kPiece + text.size(), range.end - at);
            const ssize_t count = pread(memory, window.bytes(), wanted, static_cast<off_t>(at));
            isFound = count > 0 && text.isIn(window.bytes(), static_cast<std::size_t>(count));
        }
    }
    close(memory);
    return isFound;
}

void wipe(std::string& text) {
    for (volatile char* c = text.data(); *c != '\0'; ++c)
        *c = 'x';
}

}  // namespace tav::test
