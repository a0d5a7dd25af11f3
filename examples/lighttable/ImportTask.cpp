// SPDX-License-Identifier: MIT
#include "examples/lighttable/ImportTask.h"

#include "examples/lighttable/PictureFile.h"

#include <algorithm>
#include <ula/MainThreadCaller.h>
#include <ula/ScopedARPool.h>
#include <utility>
#include <vector>

namespace lighttable {

using namespace tav::ula;

namespace {

/// Parts of a file are told less often than they come.
constexpr auto kBetweenParts = std::chrono::milliseconds(100);

ImportOutcome outcomeOf(const std::vector<ImportedFile>& files) {
    ImportOutcome outcome;
    for (const ImportedFile& file : files) {
        outcome.imported += file.result == ImportResult::Imported;
        outcome.alreadyThere += file.result == ImportResult::AlreadyThere;
        outcome.failed += file.result == ImportResult::Failed;
        outcome.isCancelled |= file.result == ImportResult::Cancelled;
        if (file.result == ImportResult::Failed && outcome.error.empty())
            outcome.error = file.object.name + ": " + file.error;
    }
    return outcome;
}

}  // namespace

ImportTask::ImportTask(const ImportDevice& device, std::string folder, ImportOptions options,
                       Events events)
    : _folder(std::move(folder)),
      _options(std::move(options)),
      _events(std::move(events)),
      _session(device.id),
      _thread([this] { work(); }) {
}

ImportTask::~ImportTask() {
    cancel();
    _thread.join();
}

void ImportTask::work() {
    const ScopedARPool pool;
    std::vector<ImportObject> objects = _session.list();
    std::erase_if(objects, [](const ImportObject& object) { return !isPictureName(object.name); });
    const std::string listingError = _session.error();
    ImportOutcome outcome = outcomeOf(_session.import(
        objects, _folder, _options, [this](const ImportProgress& progress) { tell(progress); }));
    if (outcome.error.empty())
        outcome.error = listingError;
    MainThreadCaller::instance()->callAsyncOwned(_owner,
                                                 [this, outcome] { _events.finished(outcome); });
}

void ImportTask::tell(const ImportProgress& progress) {
    const auto now = std::chrono::steady_clock::now();
    if (progress.files == _filesTold && now - _toldAt < kBetweenParts)
        return;
    _filesTold = progress.files;
    _toldAt = now;
    ImportState state;
    state.name = progress.object == nullptr ? "" : progress.object->name;
    state.files = progress.files;
    state.totalFiles = progress.totalFiles;
    const auto all = static_cast<double>(std::max<std::uint64_t>(1, progress.totalBytes));
    state.fraction = static_cast<double>(progress.doneBytes + progress.bytes) / all;
    MainThreadCaller::instance()->callAsyncOwned(_owner,
                                                 [this, state] { _events.progress(state); });
}

}  // namespace lighttable
