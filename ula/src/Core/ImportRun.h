// SPDX-License-Identifier: MIT
#pragma once

#include "ula/ImportSession.h"
#include "ula/foundation/filesystem/DurableFile.h"
#include "ula/src/Core/ImportPlaces.h"

#include <optional>

namespace tav::ula {

/// One import under way.
class ImportRun {
public:
    ImportRun(ImportSource& source, std::string folder, const ImportOptions& options,
              const ImportSession::Progress& progress, const std::atomic<bool>& isCancelled);

    std::vector<ImportedFile> import(const std::vector<ImportObject>& objects);

private:
    /// What is known of a file while it is brought over.
    struct Transfer;

    ImportedFile importOne(const ImportObject& object);
    bool begin(Transfer& transfer);
    std::string folderFor(const Transfer& transfer);
    /// Decides what it is called. False: it is there already, or has failed.
    bool choosePlace(Transfer& transfer);
    void bringOver(Transfer& transfer);
    bool copyBytes(Transfer& transfer, filesystem::DurableFile& target);
    bool readPiece(Transfer& transfer, std::uint64_t offset);
    bool isIntact(Transfer& transfer);
    void fail(Transfer& transfer, std::string error);
    void tell(const ImportObject& object, std::uint64_t bytes);

    ImportSource& _source;
    ImportPlaces _places;
    const ImportOptions _options;
    const ImportSession::Progress& _tellProgress;
    const std::atomic<bool>& _isCancelled;
    ImportProgress _progress;
    std::string _problem;  ///< of the device that has gone
};

}  // namespace tav::ula
