// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/DurableFile.h"

#include "ula/foundation/filesystem/Replacement.h"

#include <cerrno>
#include <map>
#include <utility>

namespace tav::filesystem {

DurableFile::DurableFile(const String& path, DurableFileOptions options)
    : _replacement(std::make_unique<Replacement>(path, std::move(options))) {
}

DurableFile::~DurableFile() = default;

bool DurableFile::write(std::string_view bytes) {
    return _replacement->write(bytes);
}

bool DurableFile::commit() {
    if (!_replacement->isOnlyNew())
        return _replacement->commit();
    commitTogether({this});
    return isCommitted();
}

/// The first file's sync takes what is known of the others along, where the system keeps a journal.
void DurableFile::commitTogether(const std::vector<DurableFile*>& files) {
    std::vector<Replacement*> synced;
    for (const DurableFile* file : files)
        if (file->_replacement->syncNew())
            synced.push_back(file->_replacement.get());
    std::map<std::string, std::vector<Replacement*>> folders;
    for (Replacement* file : synced)
        if (file->nameSyncedFile())
            folders[file->folderPath()].push_back(file);
    for (const auto& [folder, named] : folders) {
        if (named.front()->syncFolder())
            continue;
        const int reason = errno;
        for (Replacement* file : named)
            file->giveUp(reason);
    }
}

bool DurableFile::isCommitted() const {
    return _replacement->isCommitted();
}

bool DurableFile::exists() const {
    return _replacement->exists();
}

const std::string& DurableFile::error() const {
    return _replacement->error();
}

bool replaceFileDurably(const String& path, std::string_view bytes,
                        const DurableFileOptions& options, std::string* error) {
    DurableFile file(path, options);
    if (file.write(bytes) && file.commit())
        return true;
    if (error)
        *error = file.error();
    return false;
}

}  // namespace tav::filesystem
