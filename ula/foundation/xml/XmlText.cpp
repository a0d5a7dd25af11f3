// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlText.h"

#include "ula/foundation/filesystem/Descriptor.h"
#include "ula/foundation/thread/ScratchPad.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <iconv.h>
#include <memory>
#include <sys/stat.h>

namespace tav::xml {

namespace {

using filesystem::Descriptor;
using filesystem::retryInterrupted;

bool fail(XmlError& error, std::string reason) {
    error.reason = std::move(reason);
    return false;
}

bool failWithErrno(XmlError& error, const char* what) {
    error.isMissing = errno == ENOENT || errno == ENOTDIR;
    return fail(error, std::string(what) + ": " + std::strerror(errno));
}

bool failTooLarge(XmlError& error) {
    return fail(error, "larger than " + std::to_string(XmlDocumentRapid::kLargestText >> 20) +
                           " MiB, the most that is read");
}

XmlText makeText(std::size_t capacity) {
    text::StringBuffer* buffer = text::StringBuffer::create(std::max<std::size_t>(capacity, 1));
    XmlText text{String(buffer, 0, capacity), buffer, buffer->bytes(), capacity};
    buffer->release();  // the string has taken its own reference
    return text;
}

bool readWhole(const Descriptor& file, XmlText& text, XmlError& error) {
    std::size_t done = 0;
    while (done < text.length) {
        const ssize_t count = retryInterrupted(
            [&] { return ::read(file.get(), text.bytes + done, text.length - done); });
        if (count < 0)
            return failWithErrno(error, "cannot be read");
        if (count == 0)
            break;  // shorter than it was a moment ago
        done += static_cast<std::size_t>(count);
    }
    text.length = done;
    return true;
}

bool startsWith(const XmlText& text, std::string_view bytes) {
    return text.view().substr(0, bytes.size()) == bytes;
}

void skip(XmlText& text, std::size_t count) {
    text.bytes += count;
    text.length -= count;
}

/// The encoding named by a mark at the begin, which is skipped, or by how "<" is spelt; empty when
/// it is of the ASCII family. XML 1.0, appendix F.
std::string encodingFromFirstBytes(XmlText& text) {
    using namespace std::string_view_literals;
    struct Sign {
        std::string_view bytes;
        bool isMark;
        const char* encoding;
    };
    static constexpr std::array<Sign, 9> signs = {{{"\xFF\xFE\0\0"sv, true, "UTF-32LE"},
                                                   {"\0\0\xFE\xFF"sv, true, "UTF-32BE"},
                                                   {"\xFF\xFE"sv, true, "UTF-16LE"},
                                                   {"\xFE\xFF"sv, true, "UTF-16BE"},
                                                   {"\xEF\xBB\xBF"sv, true, "UTF-8"},
                                                   {"<\0\0\0"sv, false, "UTF-32LE"},
                                                   {"\0\0\0<"sv, false, "UTF-32BE"},
                                                   {"<\0"sv, false, "UTF-16LE"},
                                                   {"\0<"sv, false, "UTF-16BE"}}};
    for (const Sign& sign : signs) {
        if (!startsWith(text, sign.bytes))
            continue;
        if (sign.isMark)
            skip(text, sign.bytes.size());
        return sign.encoding;
    }
    return {};
}

/// The encoding that an XML declaration in ASCII names, in capitals; empty when it names none.
std::string declaredEncoding(const XmlText& text) {
    if (!startsWith(text, "<?xml"))
        return {};
    const std::string_view declaration = text.view().substr(0, text.view().find("?>"));
    constexpr std::string_view kKey = "encoding";
    const std::size_t key = declaration.substr(0, 256).find(kKey);
    if (key == std::string_view::npos)
        return {};
    const std::size_t begin = declaration.find_first_of("\"'", key + kKey.size());
    if (begin == std::string_view::npos)
        return {};
    const std::size_t end = declaration.find(declaration[begin], begin + 1);
    if (end == std::string_view::npos)
        return {};
    std::string name(declaration.substr(begin + 1, end - begin - 1));
    std::ranges::transform(name, name.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return name;
}

class Converter {
public:
    explicit Converter(const std::string& encoding)
        : _handle(iconv_open("UTF-8", encoding.c_str())) {}
    ~Converter() {
        if (isKnown())
            iconv_close(_handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool isKnown() const {
        return _handle != reinterpret_cast<iconv_t>(-1);  // NOLINT: how iconv_open says no
    }
    bool convert(const XmlText& from, XmlText& to) {
        char* source = from.bytes;
        std::size_t sourceLeft = from.length;
        char* target = to.bytes;
        std::size_t targetLeft = to.length;
        if (iconv(_handle, &source, &sourceLeft, &target, &targetLeft) ==
            static_cast<std::size_t>(-1))
            return false;
        to.length -= targetLeft;
        return sourceLeft == 0;
    }

private:
    iconv_t _handle;
};

bool convertToUtf8(XmlText& text, XmlError& error) {
    std::string encoding = encodingFromFirstBytes(text);
    if (encoding.empty())
        encoding = declaredEncoding(text);
    if (encoding.empty() || encoding == "UTF-8" || encoding == "UTF8" || encoding == "US-ASCII" ||
        encoding == "ASCII")
        return true;
    Converter converter(encoding);
    if (!converter.isKnown())
        return fail(error, "in the unknown encoding \"" + encoding + "\"");
    // No encoding's byte stands for more than three bytes of UTF-8.
    XmlText converted = makeText(3 * text.length + 4);
    if (!converter.convert(text, converted))
        return fail(error, "not in the encoding \"" + encoding + "\" that it claims");
    text = std::move(converted);
    return true;
}

}  // namespace

bool readXmlFile(const String& path, XmlText& text, XmlError& error) {
    error.path = path.toStdString();
    if (path.empty() || path.find('\0') != String::npos) {
        error.isMissing = true;
        return fail(error, "no file can have this name");
    }
    // Not to wait for the writer of a pipe that has the name.
    const char* name = thread::globalScratchPad().zeroTerminated(path);
    const Descriptor file(
        retryInterrupted([&] { return ::open(name, O_RDONLY | O_NONBLOCK | O_CLOEXEC); }));
    struct stat facts {};
    if (!file || fstat(file.get(), &facts) != 0)
        return failWithErrno(error, "cannot be opened");
    if (!S_ISREG(facts.st_mode))
        return fail(error, S_ISDIR(facts.st_mode) ? "is a folder" : "is not a regular file");
    const auto size = static_cast<std::size_t>(facts.st_size);
    if (size > XmlDocumentRapid::kLargestText)
        return failTooLarge(error);
    text = makeText(size);
    return readWhole(file, text, error) && convertToUtf8(text, error);
}

bool copyXmlText(const String& source, XmlText& text, XmlError& error) {
    if (source.length() > XmlDocumentRapid::kLargestText)
        return failTooLarge(error);
    text = makeText(source.length());
    std::memcpy(text.bytes, source.data(), source.length());
    return convertToUtf8(text, error);
}

void locate(std::string_view text, std::size_t offset, XmlError& error) {
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    error.line = 1 + static_cast<std::size_t>(std::ranges::count(before, '\n'));
    // Before the first line end, rfind's npos plus one is the begin.
    error.column = before.size() - (before.rfind('\n') + 1) + 1;
}

}  // namespace tav::xml
