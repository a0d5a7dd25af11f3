// SPDX-License-Identifier: MIT
#include "tools/ula/FoldersCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Translation.h"

#include <ula/SpecialFolders.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using ula::SpecialFolders;

constexpr const char* kHelp = translatable(R"(Examples:
  ula folders             where documents, pictures and the rest lie for this user
  ula folders --json      the same for programs

Documents, pictures, movies and music are where the desktop has them (user-dirs.dirs). The folders
need not exist, and none is made.)");

struct Folder {
    const char* name;
    const char* key;
    ula::FastString (*path)();
};

constexpr Folder kFolders[] = {
    {translatable("home"), "home", SpecialFolders::home},
    {translatable("documents"), "documents", SpecialFolders::myDocuments},
    {translatable("pictures"), "pictures", SpecialFolders::myPictures},
    {translatable("movies"), "movies", SpecialFolders::myMovies},
    {translatable("music"), "music", SpecialFolders::myMusic},
    {translatable("application support"), "applicationSupport",
     SpecialFolders::myApplicationSupportPath},
    {translatable("application data"), "applicationData", SpecialFolders::myApplicationData},
    {translatable("temporary"), "temporary", SpecialFolders::tempPath},
    {translatable("global preferences"), "globalPreferences", SpecialFolders::globalPreferences},
};

std::size_t nameWidth() {
    return widestOf(kFolders, [](const Folder& folder) { return translated(folder.name); }) + 2;
}

ExitCode run(bool asJson) {
    Json list;
    for (const Folder& folder : kFolders) {
        const std::string path = folder.path().toStdString();
        if (asJson)
            list[folder.key] = path;
        else
            print(padded(translated(folder.name), nameWidth()) + displayText(path) + "\n");
    }
    if (asJson)
        printJson("folders", std::move(list));
    return ExitOk;
}

}  // namespace

void addFoldersCommand(CLI::App& program, ExitCode& result) {
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* const folders = program.add_subcommand(
        "folders", translated("Show where the user's well-known folders lie"));
    folders->add_flag("--json", *asJson, translated("As JSON"));
    folders->callback([asJson, &result] { result = run(*asJson); });
    folders->footer(translated(kHelp));
}

}  // namespace tav::tool
