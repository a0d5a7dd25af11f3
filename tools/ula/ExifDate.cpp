// SPDX-License-Identifier: MIT
#include "tools/ula/ExifDate.h"

#include <cerrno>
#include <fcntl.h>
#include <libexif/exif-data.h>
#include <libexif/exif-loader.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tav::tool {

namespace {

/// More than EXIF data can hold, as its lengths have 16 bits.
constexpr std::size_t kLongestExif = 0xFFFF;

struct ExifDeleter {
    void operator()(ExifData* data) const { exif_data_unref(data); }
    void operator()(ExifLoader* loader) const { exif_loader_unref(loader); }
};
using ExifDataOwner = std::unique_ptr<ExifData, ExifDeleter>;

/// A regular file, opened without waiting: a pipe would wait for its writer.
class File {
public:
    explicit File(const std::string& path)
        : _descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
        if (_descriptor < 0)
            _error = errno;
    }
    ~File() {
        if (_descriptor >= 0)
            close(_descriptor);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isRegular() const {
        struct stat info {};
        return _descriptor >= 0 && fstat(_descriptor, &info) == 0 && S_ISREG(info.st_mode);
    }
    int error() const { return _error; }

    /// Appends what comes next, as much as one reading gives. False at the end.
    bool readMore(std::vector<unsigned char>& bytes) {
        constexpr std::size_t kPiece = 0x10000;
        const std::size_t before = bytes.size();
        bytes.resize(before + kPiece);
        ssize_t count = 0;
        do
            count = read(_descriptor, bytes.data() + before, kPiece);
        while (count < 0 && errno == EINTR);
        if (count < 0)
            _error = errno;
        bytes.resize(before + static_cast<std::size_t>(count > 0 ? count : 0));
        return count > 0;
    }

private:
    int _descriptor;
    int _error = 0;
};

bool isTiff(const std::vector<unsigned char>& bytes) {
    if (bytes.size() < 8)
        return false;
    const std::string_view head(reinterpret_cast<const char*>(bytes.data()), 4);
    return head == std::string_view("II*\0", 4) || head == std::string_view("MM\0*", 4);
}

/// A TIFF is what EXIF data is made of.
ExifDataOwner dataOfTiff(File& file, std::vector<unsigned char> bytes) {
    while (bytes.size() < kLongestExif && file.readMore(bytes)) {
    }
    constexpr unsigned char kHead[] = {'E', 'x', 'i', 'f', 0, 0};
    bytes.insert(bytes.begin(), std::begin(kHead), std::end(kHead));
    bytes.resize(std::min(bytes.size(), kLongestExif));
    ExifDataOwner data(exif_data_new());
    if (data == nullptr)
        return nullptr;
    // As it was written: nothing is to be added or mended.
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_load_data(data.get(), bytes.data(), static_cast<unsigned>(bytes.size()));
    return data;
}

ExifDataOwner dataOfJpeg(File& file, std::vector<unsigned char> bytes) {
    const std::unique_ptr<ExifLoader, ExifDeleter> loader(exif_loader_new());
    if (loader == nullptr)
        return nullptr;
    while (exif_loader_write(loader.get(), bytes.data(), static_cast<unsigned>(bytes.size())) !=
           0) {
        bytes.clear();
        if (!file.readMore(bytes))
            break;
    }
    return ExifDataOwner(exif_loader_get_data(loader.get()));
}

std::string textOf(const ExifData* data, ExifTag tag) {
    const ExifEntry* const entry = exif_content_get_entry(data->ifd[EXIF_IFD_EXIF], tag);
    if (entry == nullptr || entry->data == nullptr || entry->format != EXIF_FORMAT_ASCII)
        return {};
    return {reinterpret_cast<const char*>(entry->data), entry->size};
}

/// Without the zero bytes and blanks that fill the field.
std::string trimmed(std::string text) {
    const std::size_t last = text.find_last_not_of(std::string_view("\0 ", 2));
    text.resize(last == std::string::npos ? 0 : last + 1);
    return text;
}

}  // namespace

ExifDate readExifDate(const std::string& path) {
    File file(path);
    std::vector<unsigned char> bytes;
    if (file.isRegular())
        file.readMore(bytes);
    if (bytes.empty())
        return {{}, {}, file.error()};
    const ExifDataOwner data =
        isTiff(bytes) ? dataOfTiff(file, std::move(bytes)) : dataOfJpeg(file, std::move(bytes));
    if (data == nullptr)
        return {{}, {}, file.error()};
    const std::string text = textOf(data.get(), EXIF_TAG_DATE_TIME_ORIGINAL);
    return {ula::parseShootingDate(text, textOf(data.get(), EXIF_TAG_SUB_SEC_TIME_ORIGINAL),
                                   textOf(data.get(), EXIF_TAG_OFFSET_TIME_ORIGINAL)),
            trimmed(text), file.error()};
}

}  // namespace tav::tool
