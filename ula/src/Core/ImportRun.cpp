// SPDX-License-Identifier: MIT
#include "ula/src/Core/ImportRun.h"

#include "ula/FastString.h"
#include "ula/foundation/filesystem/DurableFile.h"
#include "ula/foundation/filesystem/FileChecksum.h"
#include "ula/src/Core/ImportSource.h"
#include "ula/src/Core/PictureDate.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace tav::ula {

namespace {

/// As much as one question asks for: often enough for progress, seldom enough for speed.
constexpr std::size_t kPiece = 1 << 20;
/// How much is written before it is waited for: a fraction of a second's work, and few descriptors.
constexpr std::size_t kMostWritten = 32;
constexpr std::uint64_t kMostWrittenBytes = 256 << 20;

}  // namespace

struct ImportRun::Transfer {
    Transfer(const ImportObject& chosen, std::size_t place) : object(chosen), index(place) {
        file.object = chosen;
    }

    const ImportObject& object;
    std::size_t index;
    ImportedFile file;
    std::string folder;
    std::string_view piece;  ///< what was read last, where the source has it
    filesystem::FileChecksum checksum;
    std::unique_ptr<filesystem::DurableFile> target;
};

ImportRun::ImportRun(ImportSource& source, std::string folder, const ImportOptions& options,
                     const ImportSession::Progress& progress, const std::atomic<bool>& isCancelled)
    : _source(source),
      _places(std::move(folder)),
      _options(options),
      _tellProgress(progress),
      _isCancelled(isCancelled) {
}

ImportRun::~ImportRun() = default;

std::vector<ImportedFile> ImportRun::import(const std::vector<ImportObject>& objects) {
    _progress.totalFiles = objects.size();
    for (const ImportObject& object : objects)
        _progress.totalBytes += object.size;
    _files.resize(objects.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        importOne(std::make_unique<Transfer>(objects[i], i));
        if (isFull())
            settle();
        ++_progress.files;
        _progress.doneBytes += objects[i].size;
        tell(objects[i], 0);
    }
    settle();
    return std::move(_files);
}

void ImportRun::tell(const ImportObject& object, std::uint64_t bytes) {
    _progress.object = &object;
    _progress.bytes = bytes;
    if (_tellProgress)
        _tellProgress(_progress);
}

void ImportRun::importOne(std::unique_ptr<Transfer> transfer) {
    if (_isCancelled)
        transfer->file.result = ImportResult::Cancelled;
    else if (!_problem.empty())
        fail(*transfer, ImportFailure::Source, _problem);
    else if (begin(*transfer) && write(*transfer)) {
        _writtenBytes += transfer->object.size;
        _written.push_back(std::move(transfer));
        return;
    }
    _files[transfer->index] = std::move(transfer->file);
}

bool ImportRun::isFull() const {
    return _written.size() >= kMostWritten || _writtenBytes >= kMostWrittenBytes;
}

/// Another process may have given its file the name that was free: then another one is chosen.
void ImportRun::settle() {
    while (!_written.empty()) {
        const auto written = std::exchange(_written, {});
        _writtenBytes = 0;
        std::vector<filesystem::DurableFile*> targets;
        for (const auto& transfer : written)
            targets.push_back(transfer->target.get());
        filesystem::DurableFile::commitTogether(targets);
        for (const auto& transfer : written)
            finish(*transfer);
    }
}

void ImportRun::finish(Transfer& transfer) {
    const bool isCommitted = transfer.target->isCommitted();
    if (!isCommitted && transfer.target->exists()) {
        auto again = std::make_unique<Transfer>(transfer.object, transfer.index);
        again->folder = transfer.folder;
        if (choosePlace(*again) && write(*again))
            _written.push_back(std::move(again));
        else
            _files[again->index] = std::move(again->file);
        return;
    }
    if (!isCommitted)
        fail(transfer, ImportFailure::Target, transfer.target->error());
    else if (!_options.verify || isIntact(transfer))
        transfer.file.result = ImportResult::Imported;
    _files[transfer.index] = std::move(transfer.file);
}

void ImportRun::fail(Transfer& transfer, ImportFailure failure, std::string error) {
    transfer.file.result = ImportResult::Failed;
    transfer.file.failure = failure;
    transfer.file.path.clear();
    transfer.file.error = std::move(error);
}

bool ImportRun::readPiece(Transfer& transfer, std::uint64_t offset) {
    const std::uint64_t left = transfer.object.size - offset;
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, left));
    transfer.piece = {};
    const bool isRead =
        wanted == 0 || _source.read(transfer.object.number, offset, wanted, transfer.piece);
    if (isRead && transfer.piece.size() == wanted)
        return true;
    if (!isRead && _source.isGone())
        _problem = _source.problem();
    fail(transfer, ImportFailure::Source,
         isRead ? "it is shorter than the device had told" : _source.problem());
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
        fail(transfer, ImportFailure::Target, place.error);
        return false;
    }
    transfer.file.path = place.path;
    if (place.isThere)
        transfer.file.result = ImportResult::AlreadyThere;
    return !place.isThere;
}

bool ImportRun::write(Transfer& transfer) {
    filesystem::DurableFileOptions options{.onlyNew = true};
    if (transfer.object.modified != 0)
        options.modificationTime = transfer.object.modified;
    transfer.target =
        std::make_unique<filesystem::DurableFile>(FastString(transfer.file.path), options);
    const bool isWritten = copyBytes(transfer);
    transfer.piece = {};
    return isWritten;
}

bool ImportRun::copyBytes(Transfer& transfer) {
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
        if (!transfer.target->write(transfer.piece)) {
            // A name that is taken shows at the end, once more.
            if (transfer.target->exists())
                return true;
            fail(transfer, ImportFailure::Target, transfer.target->error());
            return false;
        }
        offset += transfer.piece.size();
        tell(transfer.object, offset);
        transfer.piece = {};
    } while (offset < transfer.object.size);
    return true;
}

bool ImportRun::isIntact(Transfer& transfer) {
    std::string error;
    const auto written = filesystem::checksumOfFile(transfer.file.path, error);
    if (written && *written == transfer.checksum)
        return true;
    // What is wrong must not look as if it were there the next time.
    unlink(transfer.file.path.c_str());
    fail(transfer, ImportFailure::Target,
         written ? "the disk gives back something else than was written" : error);
    return false;
}

}  // namespace tav::ula
