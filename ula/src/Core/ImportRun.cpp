// SPDX-License-Identifier: MIT
#include "ula/src/Core/ImportRun.h"

#include "ula/FastString.h"
#include "ula/src/Core/FileChecksum.h"
#include "ula/src/Core/ImportSource.h"
#include "ula/src/Core/PictureDate.h"

#include <algorithm>
#include <unistd.h>

namespace tav::ula {

namespace {

/// As much as one question asks for: often enough for progress, seldom enough for speed.
constexpr std::size_t kPiece = 1 << 20;

}  // namespace

struct ImportRun::Transfer {
    explicit Transfer(const ImportObject& chosen) : object(chosen) { file.object = chosen; }

    const ImportObject& object;
    ImportedFile file;
    std::string folder;
    std::string piece;  ///< what was read last
    FileChecksum checksum;
};

ImportRun::ImportRun(ImportSource& source, std::string folder, const ImportOptions& options,
                     const ImportSession::Progress& progress, const std::atomic<bool>& isCancelled)
    : _source(source),
      _places(std::move(folder)),
      _options(options),
      _tellProgress(progress),
      _isCancelled(isCancelled) {
}

std::vector<ImportedFile> ImportRun::import(const std::vector<ImportObject>& objects) {
    _progress.totalFiles = objects.size();
    for (const ImportObject& object : objects)
        _progress.totalBytes += object.size;
    std::vector<ImportedFile> files;
    files.reserve(objects.size());
    for (const ImportObject& object : objects) {
        files.push_back(importOne(object));
        ++_progress.files;
        _progress.doneBytes += object.size;
        tell(object, 0);
    }
    return files;
}

void ImportRun::tell(const ImportObject& object, std::uint64_t bytes) {
    _progress.object = &object;
    _progress.bytes = bytes;
    if (_tellProgress)
        _tellProgress(_progress);
}

ImportedFile ImportRun::importOne(const ImportObject& object) {
    Transfer transfer(object);
    if (_isCancelled)
        transfer.file.result = ImportResult::Cancelled;
    else if (!_problem.empty())
        fail(transfer, _problem);
    else if (begin(transfer))
        bringOver(transfer);
    return std::move(transfer.file);
}

void ImportRun::fail(Transfer& transfer, std::string error) {
    transfer.file.result = ImportResult::Failed;
    transfer.file.path.clear();
    transfer.file.error = std::move(error);
}

bool ImportRun::readPiece(Transfer& transfer, std::uint64_t offset) {
    const std::uint64_t left = transfer.object.size - offset;
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, left));
    transfer.piece.clear();
    const bool isRead =
        wanted == 0 || _source.read(transfer.object.number, offset, wanted, transfer.piece);
    if (isRead && transfer.piece.size() == wanted)
        return true;
    if (!isRead && _source.isGone())
        _problem = _source.problem();
    fail(transfer, isRead ? "it is shorter than the device had told" : _source.problem());
    return false;
}

/// Where a picture belongs by its date, it has to be looked into first.
bool ImportRun::begin(Transfer& transfer) {
    if (!_options.dateFolders.empty() && !readPiece(transfer, 0))
        return false;
    transfer.folder = folderFor(transfer);
    return choosePlace(transfer);
}

std::string ImportRun::folderFor(const Transfer& transfer) {
    if (_options.dateFolders.empty())
        return {};
    return dateFolder(_options.dateFolders, pictureDay(transfer.piece, transfer.object.modified));
}

bool ImportRun::choosePlace(Transfer& transfer) {
    const ImportPlace place = _places.choose(transfer.folder, transfer.object);
    if (!place.error.empty()) {
        fail(transfer, place.error);
        return false;
    }
    transfer.file.path = place.path;
    if (place.isThere)
        transfer.file.result = ImportResult::AlreadyThere;
    return !place.isThere;
}

/// Another process may give its file the name that was free: then another one is chosen.
void ImportRun::bringOver(Transfer& transfer) {
    for (bool isTaken = true; isTaken;) {
        filesystem::DurableFileOptions options{.onlyNew = true};
        if (transfer.object.modified != 0)
            options.modificationTime = transfer.object.modified;
        filesystem::DurableFile target(FastString(transfer.file.path), options);
        if (!copyBytes(transfer, target))
            return;
        if (target.commit())
            break;
        isTaken = target.exists();
        if (!isTaken)
            return fail(transfer, target.error());
        if (!choosePlace(transfer))
            return;
    }
    if (!_options.verify || isIntact(transfer))
        transfer.file.result = ImportResult::Imported;
}

bool ImportRun::copyBytes(Transfer& transfer, filesystem::DurableFile& target) {
    transfer.checksum = {};
    std::uint64_t offset = 0;
    do {
        if (_isCancelled) {
            transfer.file.path.clear();
            transfer.file.result = ImportResult::Cancelled;
            return false;
        }
        // The first piece may have been read for its date.
        const bool isRead = offset == 0 && !transfer.piece.empty();
        if (!isRead && !readPiece(transfer, offset))
            return false;
        if (_options.verify)
            transfer.checksum.add(transfer.piece);
        if (!target.write(transfer.piece)) {
            // A name that is taken shows at the end, once more.
            if (target.exists())
                return true;
            fail(transfer, target.error());
            return false;
        }
        offset += transfer.piece.size();
        transfer.piece.clear();
        tell(transfer.object, offset);
    } while (offset < transfer.object.size);
    return true;
}

bool ImportRun::isIntact(Transfer& transfer) {
    std::string error;
    const std::optional<FileChecksum> written = checksumOfFile(transfer.file.path, error);
    if (written && *written == transfer.checksum)
        return true;
    // What is wrong must not look as if it were there the next time.
    unlink(transfer.file.path.c_str());
    fail(transfer, written ? "the disk gives back something else than was written" : error);
    return false;
}

}  // namespace tav::ula
