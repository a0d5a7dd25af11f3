// SPDX-License-Identifier: MIT
#include "CoreServices/AliasFile.h"

#include "CoreServices/AliasRecord.h"
#include "CoreServices/BookmarkData.h"
#include "CoreServices/Finder.h"
#include "CoreServices/ResourceFork.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace coreservices {

namespace {

constexpr uint64_t kSmallestAlias = 58;
constexpr uint64_t kLargestAlias = 1 << 20;
constexpr size_t kFirstRead = 4096;
constexpr uint16_t kIsAliasFlag = 0x8000;
constexpr std::string_view kDesktopSuffix = ".desktop";

constexpr size_t kLongestExtension = 8;

// An extension as one number. Capital letters become small; what becomes of other characters does
// not matter as long as letters and digits stay apart.
constexpr uint64_t packed(std::string_view extension) {
    uint64_t number = 0;
    for (char c : extension)
        number = number << 8 | static_cast<unsigned char>(c | 0x20);
    return number;
}

// Extensions of the files that folders are full of. No alias to a folder ends like that, unless
// somebody named the folder so.
constexpr uint64_t kOrdinaryExtensions[] = {
    packed("3fr"),  packed("7z"),   packed("a"),    packed("aac"),   packed("ai"),   packed("aiff"),
    packed("arw"),  packed("avi"),  packed("avif"), packed("bak"),   packed("bmp"),  packed("bz2"),
    packed("c"),    packed("cc"),   packed("cfg"),  packed("conf"),  packed("cpp"),  packed("cr2"),
    packed("cr3"),  packed("crw"),  packed("css"),  packed("csv"),   packed("dat"),  packed("db"),
    packed("deb"),  packed("dll"),  packed("dng"),  packed("doc"),   packed("docx"), packed("eps"),
    packed("epub"), packed("erf"),  packed("exe"),  packed("flac"),  packed("gif"),  packed("gz"),
    packed("h"),    packed("heic"), packed("heif"), packed("hpp"),   packed("htm"),  packed("html"),
    packed("icns"), packed("ico"),  packed("ics"),  packed("iso"),   packed("jar"),  packed("java"),
    packed("jpeg"), packed("jpg"),  packed("js"),   packed("json"),  packed("key"),  packed("log"),
    packed("m4a"),  packed("m4v"),  packed("md"),   packed("mef"),   packed("mkv"),  packed("mm"),
    packed("mo"),   packed("mos"),  packed("mov"),  packed("mp3"),   packed("mp4"),  packed("mpeg"),
    packed("mpg"),  packed("mrw"),  packed("nef"),  packed("nrw"),   packed("o"),    packed("odp"),
    packed("ods"),  packed("odt"),  packed("ogg"),  packed("opus"),  packed("orf"),  packed("otf"),
    packed("pdf"),  packed("pef"),  packed("php"),  packed("plist"), packed("png"),  packed("po"),
    packed("ppt"),  packed("pptx"), packed("ps"),   packed("psd"),   packed("py"),   packed("pyc"),
    packed("raf"),  packed("rar"),  packed("raw"),  packed("rpm"),   packed("rtf"),  packed("rw2"),
    packed("rwl"),  packed("sh"),   packed("so"),   packed("sql"),   packed("sr2"),  packed("srf"),
    packed("srw"),  packed("svg"),  packed("tar"),  packed("tex"),   packed("tga"),  packed("tgz"),
    packed("thm"),  packed("tif"),  packed("tiff"), packed("tmp"),   packed("toml"), packed("ts"),
    packed("ttf"),  packed("txt"),  packed("wav"),  packed("webm"),  packed("webp"), packed("wma"),
    packed("wmv"),  packed("woff"), packed("x3f"),  packed("xcf"),   packed("xls"),  packed("xlsx"),
    packed("xml"),  packed("xmp"),  packed("xz"),   packed("yaml"),  packed("yml"),  packed("zip"),
    packed("zst")};
static_assert(std::size(kOrdinaryExtensions) < 256, "the table is to be half empty at least");

// Every file of a listing is looked up here.
class ExtensionTable {
public:
    constexpr ExtensionTable() {
        for (uint64_t extension : kOrdinaryExtensions) {
            size_t slot = firstSlot(extension);
            while (_slots[slot] != 0)
                slot = (slot + 1) % std::size(_slots);
            _slots[slot] = extension;
        }
    }

    constexpr bool contains(uint64_t extension) const {
        size_t slot = firstSlot(extension);
        while (_slots[slot] != 0 && _slots[slot] != extension)
            slot = (slot + 1) % std::size(_slots);
        return _slots[slot] != 0;
    }

private:
    static constexpr size_t firstSlot(uint64_t extension) {
        return extension * 0x9E3779B97F4A7C15 >> 55;
    }

    uint64_t _slots[512] = {};
};

constexpr ExtensionTable kExtensions;
static_assert(kExtensions.contains(packed("JPG")) && !kExtensions.contains(packed("alias")));

// Read from its end: extensions are short, and names are not.
bool hasOrdinaryExtension(std::string_view name) {
    size_t longest = std::min(name.size(), kLongestExtension + 1);
    for (size_t length = 0; length < longest; ++length) {
        size_t dot = name.size() - 1 - length;
        if (name[dot] == '.')
            return dot > 0 && kExtensions.contains(packed(name.substr(dot + 1)));
    }
    return false;
}

std::string_view leafOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

// A regular file, open for reading. Anything else is never opened: that alone could wake up who
// waits at a fifo, or rewind a tape.
class RegularFile {
public:
    explicit RegularFile(const std::string& path) {
        _place = open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
        struct stat info;
        if (_place < 0 || fstat(_place, &info) != 0 || !S_ISREG(info.st_mode))
            return;
        _size = static_cast<uint64_t>(info.st_size);
        std::string name = "/proc/self/fd/" + std::to_string(_place);
        _file = open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    }
    ~RegularFile() {
        int reason = errno;
        if (_file >= 0)
            close(_file);
        if (_place >= 0)
            close(_place);
        errno = reason;
    }
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;

    bool isOpen() const { return _file >= 0; }
    uint64_t size() const { return _size; }

    // Up to `length` bytes of the file's beginning.
    std::string read(size_t length) const {
        std::string bytes(length, '\0');
        size_t done = 0;
        while (done < length) {
            ssize_t count =
                pread(_file, bytes.data() + done, length - done, static_cast<off_t>(done));
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                break;
            done += static_cast<size_t>(count);
        }
        bytes.resize(done);
        return bytes;
    }

private:
    int _place = -1;
    int _file = -1;
    uint64_t _size = 0;
};

template <class Alias>
std::optional<AliasContent> content(std::optional<Alias> alias) {
    if (!alias)
        return std::nullopt;
    return AliasContent(std::move(*alias));
}

std::optional<AliasContent> readDesktopLink(const RegularFile& file) {
    size_t size = static_cast<size_t>(file.size());
    std::string text = file.read(std::min(size, kFirstRead));
    if (text.size() < size) {
        if (isOtherDesktopEntry(text))
            return std::nullopt;
        text = file.read(size);
    }
    return content(parseDesktopLink(text));
}

// What the platform writes for the Finder says the kind more exactly than a record can.
std::optional<AliasContent> readCompanion(const std::string& path) {
    size_t leaf = path.rfind('/') + 1;
    RegularFile file(path.substr(0, leaf) + "._" + path.substr(leaf));
    if (!file.isOpen() || file.size() > kLargestAlias)
        return std::nullopt;
    std::string bytes = file.read(static_cast<size_t>(file.size()));
    auto companion = parseCompanion(bytes);
    if (!companion || (companion->finderFlags & kIsAliasFlag) == 0)
        return std::nullopt;
    auto record = firstResource(companion->resourceFork, kGenericAliasFileType);
    auto alias = record ? parseAliasRecord(*record) : std::nullopt;
    if (alias && companion->finderType == kContainerFolderAliasType)
        alias->kind = AliasKind::Folder;
    if (alias && companion->finderType == kContainerHardDiskAliasType)
        alias->kind = AliasKind::Disk;
    return content(std::move(alias));
}

std::optional<AliasContent> readMacAlias(const std::string& path, const RegularFile& file) {
    if (file.size() == 0)
        return readCompanion(path);
    size_t size = static_cast<size_t>(file.size());
    std::string bytes = file.read(std::min(size, kFirstRead));
    bool bookmark = beginsAsBookmark(bytes);
    if (!bookmark && !beginsAsAliasRecord(bytes, size))
        return std::nullopt;
    if (bytes.size() < size)
        bytes = file.read(size);
    return bookmark ? content(parseBookmark(bytes)) : content(parseAliasRecord(bytes));
}

}  // namespace

bool mayBeAliasFile(std::string_view name, uint64_t size, Companion companion) {
    if (size > kLargestAlias)
        return false;
    if (name.ends_with(kDesktopSuffix))
        return size > 0;
    if (size == 0 ? companion == Companion::Absent : size < kSmallestAlias)
        return false;
    return name.substr(0, 2) != "._" && !hasOrdinaryExtension(name);
}

std::optional<AliasContent> readAliasFile(const std::string& path) {
    errno = 0;
    RegularFile file(path);
    if (!file.isOpen() || !mayBeAliasFile(leafOf(path), file.size()))
        return std::nullopt;
    return path.ends_with(kDesktopSuffix) ? readDesktopLink(file) : readMacAlias(path, file);
}

bool isAliasFile(const std::string& path) {
    return readAliasFile(path).has_value();
}

}  // namespace coreservices
