// SPDX-License-Identifier: MIT
#pragma once

#include "ula/ImportSession.h"
#include "ula/src/Core/ImportPlaces.h"

#include <memory>

namespace tav::ula {

/// One import under way.
class ImportRun {
public:
    ImportRun(ImportSource& source, std::string folder, const ImportOptions& options,
              const ImportSession::Progress& progress, const std::atomic<bool>& isCancelled);
    ~ImportRun();
    ImportRun(const ImportRun&) = delete;
    ImportRun& operator=(const ImportRun&) = delete;

    std::vector<ImportedFile> import(const std::vector<ImportObject>& objects);

private:
    /// What is known of a file while it is brought over.
    struct Transfer;

    void importOne(std::unique_ptr<Transfer> transfer);
    bool begin(Transfer& transfer);
    std::string folderFor(const Transfer& transfer);
    /// Decides what it is called. False: it is there already, or has failed.
    bool choosePlace(Transfer& transfer);
    /// False: it was cancelled, or has failed.
    bool write(Transfer& transfer);
    bool copyBytes(Transfer& transfer);
    bool readPiece(Transfer& transfer, std::uint64_t offset);
    bool isFull() const;
    /// Has all that was written put in place.
    void settle();
    void finish(Transfer& transfer);
    bool isIntact(Transfer& transfer);
    void fail(Transfer& transfer, ImportFailure failure, std::string error);
    void tell(const ImportObject& object, std::uint64_t bytes);

    ImportSource& _source;
    ImportPlaces _places;
    const ImportOptions _options;
    const ImportSession::Progress& _tellProgress;
    const std::atomic<bool>& _isCancelled;
    ImportProgress _progress;
    std::string _problem;  ///< of the device that has gone
    std::vector<ImportedFile> _files;
    std::vector<std::unique_ptr<Transfer>> _written;  ///< but not in place yet
    std::uint64_t _writtenBytes = 0;
};

}  // namespace tav::ula
