// SPDX-License-Identifier: MIT
#include "tools/ula/FoldersCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"

#include <ula/SpecialFolders.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using ula::SpecialFolders;

constexpr const char* kHelp = R"(Examples:
  ula folders             where documents, pictures and the rest lie for this user
  ula folders --json      the same for programs

Documents, pictures, movies and music are where the desktop has them (user-dirs.dirs). The folders
need not exist, and none is made.)";

struct Folder {
    const char* name;
    const char* key;
    ula::FastString (*path)();
};

constexpr Folder kFolders[] = {
    {"home", "home", SpecialFolders::home},
    {"documents", "documents", SpecialFolders::myDocuments},
    {"pictures", "pictures", SpecialFolders::myPictures},
    {"movies", "movies", SpecialFolders::myMovies},
    {"music", "music", SpecialFolders::myMusic},
    {"application support", "applicationSupport", SpecialFolders::myApplicationSupportPath},
    {"application data", "applicationData", SpecialFolders::myApplicationData},
    {"temporary", "temporary", SpecialFolders::tempPath},
    {"global preferences", "globalPreferences", SpecialFolders::globalPreferences},
};

constexpr std::size_t kNameWidth = 21;

ExitCode run(bool asJson) {
    nlohmann::ordered_json list;
    for (const Folder& folder : kFolders) {
        const std::string path = displayText(folder.path().toStdString());
        if (asJson)
            list[folder.key] = path;
        else
            print(padded(folder.name, kNameWidth) + path + "\n");
    }
    if (asJson)
        print(list.dump(2) + "\n");
    return ExitOk;
}

}  // namespace

void addFoldersCommand(CLI::App& program, ExitCode& result) {
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* const folders =
        program.add_subcommand("folders", "Show where the user's well-known folders lie");
    folders->add_flag("--json", *asJson, "As JSON");
    folders->callback([asJson, &result] { result = run(*asJson); });
    folders->footer(kHelp);
}

}  // namespace tav::tool
