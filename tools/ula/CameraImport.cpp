// SPDX-License-Identifier: MIT
#include "tools/ula/CameraImport.h"

#include "tools/ula/ByteText.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/TransferBar.h"
#include "tools/ula/Translation.h"

#include <algorithm>
#include <csignal>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using namespace ula;

/// Ends the import at the first Ctrl-C while it lives; a second one ends the program.
class CancelledByUser {
public:
    explicit CancelledByUser(ImportSession& session) {
        running() = &session;
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            std::signal(signal, [](int received) {
                std::signal(received, SIG_DFL);
                if (ImportSession* const current = running())
                    current->cancel();
            });
    }
    ~CancelledByUser() {
        running() = nullptr;
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            std::signal(signal, SIG_DFL);
    }
    CancelledByUser(const CancelledByUser&) = delete;
    CancelledByUser& operator=(const CancelledByUser&) = delete;

private:
    static std::atomic<ImportSession*>& running() {
        static constinit std::atomic<ImportSession*> session = nullptr;
        return session;
    }
};

std::vector<ImportObject> chosenObjects(ImportSession& session, const ImportDevice& device,
                                        const std::vector<std::string>& names) {
    std::vector<ImportObject> objects = session.list();
    // What could be listed of a device that is failing is worth bringing over all the same.
    if (!session.error().empty() && objects.empty())
        throw CommandError{ExitCannotRead, device.name + ": " + session.error()};
    if (!names.empty())
        std::erase_if(objects, [&](const ImportObject& object) {
            return std::find(names.begin(), names.end(), object.name) == names.end();
        });
    return objects;
}

const char* nameOf(ImportResult result) {
    switch (result) {
    case ImportResult::Imported:
        return "imported";
    case ImportResult::AlreadyThere:
        return "already there";
    case ImportResult::Cancelled:
        return "cancelled";
    default:
        return "failed";
    }
}

void printFile(const ImportedFile& file) {
    printJsonLine({{"name", file.object.name},
                   {"folder", file.object.folder},
                   {"result", nameOf(file.result)},
                   {"path", file.path},
                   {"error", file.error}});
}

std::size_t count(const std::vector<ImportedFile>& files, ImportResult result) {
    return static_cast<std::size_t>(
        std::count_if(files.begin(), files.end(),
                      [&](const ImportedFile& file) { return file.result == result; }));
}

void printSummary(const std::vector<ImportedFile>& files) {
    std::uint64_t bytes = 0;
    for (const ImportedFile& file : files)
        bytes += file.result == ImportResult::Imported ? file.object.size : 0;
    const auto counted = [&files](ImportResult result) {
        return std::to_string(count(files, result));
    };
    std::string text =
        translated("%1 imported (%2), %3 already there", counted(ImportResult::Imported),
                   decimalByteText(bytes), counted(ImportResult::AlreadyThere));
    if (count(files, ImportResult::Failed) > 0)
        text += translated(", %1 failed", counted(ImportResult::Failed));
    if (count(files, ImportResult::Cancelled) > 0)
        text += translated(", %1 cancelled", counted(ImportResult::Cancelled));
    print(text + "\n");
}

/// The first failure says why; the others are counted.
ExitCode resultOf(const std::vector<ImportedFile>& files) {
    const auto failed = std::find_if(files.begin(), files.end(), [](const ImportedFile& file) {
        return file.result == ImportResult::Failed;
    });
    if (failed != files.end()) {
        const bool isWriting = failed->failure == ImportFailure::Target;
        throw CommandError{isWriting ? ExitCannotWrite : ExitCannotRead,
                           failed->object.name + ": " + failed->error,
                           translated("the same command brings over what is left to do")};
    }
    return count(files, ImportResult::Cancelled) > 0 ? ExitDiffers : ExitOk;
}

}  // namespace

ExitCode importFrom(const ImportDevice& device, const CameraImportOptions& options) {
    ImportSession session(device.id);
    const std::vector<ImportObject> objects = chosenObjects(session, device, options.names);
    std::vector<ImportedFile> files;
    {
        const CancelledByUser cancelling(session);
        std::uint64_t total = 0;
        for (const ImportObject& object : objects)
            total += object.size;
        TransferBar bar(total);
        files = session.import(objects, options.folder, options.options,
                               [&](const ImportProgress& progress) {
                                   bar.advance(progress.doneBytes + progress.bytes,
                                               displayText(progress.object->name));
                               });
    }
    if (options.asJson)
        for (const ImportedFile& file : files)
            printFile(file);
    else
        printSummary(files);
    if (!session.error().empty())
        throw CommandError{ExitCannotRead, device.name + ": " + session.error()};
    return resultOf(files);
}

}  // namespace tav::tool
