// SPDX-License-Identifier: MIT
#include "ula/src/Core/UnreadableFile.h"

#include "ula/foundation/filesystem/DurableFile.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/foundation/xml/XmlDocumentRapid.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <vector>

namespace tav::ula {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPiece = 1 << 20;

/// ISO 8601, basic form: no colons, which some file systems refuse.
std::string utcTime() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &parts));
}

std::size_t readPiece(std::ifstream& file, std::vector<char>& piece) {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    return static_cast<std::size_t>(file.gcount());
}

bool haveSameBytes(const fs::path& left, const fs::path& right) {
    std::error_code ignored;
    if (fs::equivalent(left, right, ignored))
        return true;
    if (fs::file_size(left, ignored) != fs::file_size(right, ignored))
        return false;
    std::ifstream leftFile(left, std::ios::binary);
    std::ifstream rightFile(right, std::ios::binary);
    std::vector<char> leftPiece(kPiece), rightPiece(kPiece);
    for (;;) {
        const std::size_t length = readPiece(leftFile, leftPiece);
        if (length != readPiece(rightFile, rightPiece) ||
            !std::equal(leftPiece.begin(), leftPiece.begin() + static_cast<std::ptrdiff_t>(length),
                        rightPiece.begin()))
            return false;
        if (length == 0)
            return leftFile.eof() && rightFile.eof();
    }
}

fs::path findCopy(const fs::path& path, const std::string& prefix) {
    std::error_code error;
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().filename().string().starts_with(prefix) &&
            haveSameBytes(path, entry->path()))
            return entry->path();
    return {};
}

/// A file that is too large to be read is too large to be copied while somebody waits: it gets a
/// second name, which stays when the first one is replaced.
bool linkLargeFile(const fs::path& from, const fs::path& to) {
    std::error_code error;
    if (fs::file_size(from, error) <= xml::XmlDocumentRapid::kLargestText)
        return false;
    fs::create_hard_link(from, to, error);
    return !error;
}

bool copyDurably(const fs::path& from, const fs::path& to, std::string& reason) {
    std::ifstream source(from, std::ios::binary);
    filesystem::DurableFile target(FastString(to.string()));
    std::vector<char> piece(kPiece);
    while (const std::size_t length = readPiece(source, piece)) {
        if (!target.write({piece.data(), length})) {
            reason = target.error();
            return false;
        }
    }
    if (!source.eof()) {
        reason = "cannot read \"" + from.string() + "\"";
        return false;
    }
    const bool done = target.commit();
    reason = target.error();
    return done;
}

/// Fails: false, the reason in `result`; otherwise `result` is the copy's path.
bool keep(const fs::path& original, std::string& result) {
    const std::string prefix = original.filename().string() + ".corrupt-";
    const fs::path known = findCopy(original, prefix);
    if (!known.empty()) {
        result = known.string();
        return true;
    }
    const std::string name = (original.parent_path() / (prefix + utcTime())).string();
    std::string free = name;
    std::error_code ignored;
    for (int i = 2; fs::exists(fs::symlink_status(free, ignored)); ++i)
        free = name + "-" + std::to_string(i);
    if (!linkLargeFile(original, free) && !copyDurably(original, free, result))
        return false;
    result = free;
    return true;
}

}  // namespace

bool keepUnreadableFile(const FastString& path, std::string& note) {
    note.clear();
    if (!filesystem::isRegularFile(path))
        return true;
    std::string result;
    const bool isKept = keep(path.toStdString(), result);
    note =
        isKept ? "; kept aside as \"" + result + "\"" : "; it could not be kept aside: " + result;
    return isKept;
}

}  // namespace tav::ula
