// SPDX-License-Identifier: MIT
#include "ula/ImportSession.h"

#include "ula/src/Core/ImportRun.h"
#include "ula/src/Core/ImportSource.h"

#include <utility>

namespace tav::ula {

namespace {

/// How many are told at once.
constexpr std::size_t kPart = 256;
constexpr int kDeepest = 16;

std::string joined(const std::string& folder, const std::string& name) {
    return folder.empty() ? name : folder + "/" + name;
}

}  // namespace

ImportSession::ImportSession(const std::string& deviceId)
    : ImportSession(createImportSource(deviceId)) {
}

ImportSession::ImportSession(std::unique_ptr<ImportSource> source) : _source(std::move(source)) {
}

ImportSession::~ImportSession() = default;

bool ImportSession::list(const Listed& listed) {
    _error.clear();
    listFolder(_source->top(), "", 0, listed);
    return _error.empty();
}

std::vector<ImportObject> ImportSession::list() {
    std::vector<ImportObject> objects;
    list([&](const std::vector<ImportObject>& part) {
        objects.insert(objects.end(), part.begin(), part.end());
        return true;
    });
    return objects;
}

/// The files of a folder before those of the folders in it. False: enough.
bool ImportSession::listFolder(std::uint32_t number, const std::string& path, int depth,
                               const Listed& listed) {
    std::uint32_t count = 0;
    if (!_source->count(number, count)) {
        _error = _source->problem();
        return !_source->isGone();
    }
    std::vector<ImportSourceItem> folders;
    std::vector<ImportObject> part;
    for (std::uint32_t i = 0; i < count; ++i) {
        ImportSourceItem item;
        if (!_source->item(number, i, item))
            continue;
        if (item.isFolder)
            folders.push_back(std::move(item));
        else
            part.push_back({item.number, std::move(item.name), path, item.size, item.modified});
        if (part.size() == kPart && !listed(std::exchange(part, {})))
            return false;
    }
    if (!part.empty() && !listed(part))
        return false;
    for (const ImportSourceItem& folder : folders)
        if (depth < kDeepest &&
            !listFolder(folder.number, joined(path, folder.name), depth + 1, listed))
            return false;
    return true;
}

std::vector<ImportedFile> ImportSession::import(const std::vector<ImportObject>& objects,
                                                const std::string& folder,
                                                const ImportOptions& options,
                                                const Progress& progress) {
    return ImportRun(*_source, folder, options, progress, _isCancelled).import(objects);
}

}  // namespace tav::ula
