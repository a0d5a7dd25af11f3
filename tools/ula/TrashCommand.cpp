// SPDX-License-Identifier: MIT
#include "tools/ula/TrashCommand.h"

#include "tools/ula/AbsolutePath.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Translation.h"
#include "ula/RecycleBin.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using ula::FastString;
using ula::RecycleBinReceipt;
using ula::RecycleBinResult;

constexpr const char* kHelp = translatable(R"(Examples:
  ula trash old.jpg "old folder"          says where each is now
  ula trash old.jpg --json > gone.json    keeps the receipts
  ula trash --restore gone.json           puts everything back where it was
  ula trash --restore-path old.jpg        puts back what was trashed last from there,
                                          whichever program did it

A symbolic link goes itself, not what it leads to. Nothing is ever replaced.
Exit codes: 0 done; 1 something stayed where it was; 2 wrong usage; 3 the receipts
cannot be read.)");

struct Options {
    std::vector<std::string> files;
    std::string receipts;
    std::vector<std::string> paths;
    bool asJson = false;
};

std::string textOf(const FastString& text) {
    return displayText(text.view());
}

void report(const RecycleBinResult& result, const FastString& item) {
    printError(item.toStdString() + ": " + result.error.toStdString());
}

Json jsonOf(const RecycleBinResult& result) {
    const RecycleBinReceipt& receipt = result.receipt;
    Json json{{"original", receipt.originalPath.toStdString()}};
    if (!result.done) {
        json["error"] = result.error.toStdString();
        return json;
    }
    json["trashed"] = receipt.trashedPath.toStdString();
    json["identity"] = receipt.identity.toStdString();
    return json;
}

ExitCode put(const Options& options) {
    std::vector<FastString> paths;
    for (const std::string& file : options.files)
        paths.emplace_back(absolutePath(file));
    std::vector<RecycleBinResult> results;
    const bool all = ula::moveToRecycleBin(paths, results);
    Json list = Json::array();
    for (const RecycleBinResult& result : results) {
        list.push_back(jsonOf(result));
        if (!result.done)
            report(result, result.receipt.originalPath);
        else if (!options.asJson)
            print(textOf(result.receipt.originalPath) + " -> " +
                  textOf(result.receipt.trashedPath) + "\n");
    }
    if (options.asJson)
        printJson("receipts", std::move(list));
    return all ? ExitOk : ExitDiffers;
}

std::string readAll(const std::string& path) {
    if (path == "-")
        return {std::istreambuf_iterator<char>(std::cin), {}};
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw CommandError{ExitCannotRead, translated("%1: the receipts cannot be read", path),
                           translated("'ula trash FILE --json > receipts.json' makes such a file")};
    return {std::istreambuf_iterator<char>(file), {}};
}

const Json& listOf(const Json& receipts, const std::string& path) {
    if (receipts.at("version") != kJsonVersion)
        throw CommandError{ExitCannotRead,
                           translated("%1: the version of these receipts is not known", path),
                           translated("restore them with the ula that wrote them")};
    return receipts.at("receipts");
}

std::vector<RecycleBinReceipt> readReceipts(const std::string& path) {
    std::vector<RecycleBinReceipt> receipts;
    try {
        const Json document = Json::parse(readAll(path));
        for (const Json& json : listOf(document, path)) {
            // What stayed where it was has no receipt.
            if (!json.at("original").is_string() || !json.contains("trashed"))
                continue;
            receipts.push_back({FastString(json["original"].get<std::string>()),
                                FastString(json["trashed"].get<std::string>()),
                                FastString(json.at("identity").get<std::string>())});
        }
    } catch (const Json::exception& error) {
        throw CommandError{
            ExitCannotRead,
            translated("%1: these are no receipts: %2", path, std::string(error.what())),
            translated("'ula trash FILE --json > receipts.json' makes such a file")};
    }
    return receipts;
}

/// What came last from each path. Where nothing did, a receipt that cannot be restored.
std::vector<RecycleBinReceipt> findReceipts(const std::vector<std::string>& paths) {
    std::vector<RecycleBinReceipt> receipts;
    for (const std::string& path : paths) {
        const FastString original(absolutePath(path));
        const std::vector<RecycleBinReceipt> found = ula::findInRecycleBin(original);
        receipts.push_back(found.empty() ? RecycleBinReceipt{original, {}, {}} : found.front());
    }
    return receipts;
}

RecycleBinResult restoreOne(const RecycleBinReceipt& receipt) {
    if (receipt.trashedPath.empty())
        return {false, receipt, FastString(translated("nothing in the trash came from there"))};
    return ula::restoreFromRecycleBin(receipt);
}

ExitCode restore(const std::vector<RecycleBinReceipt>& receipts, bool asJson) {
    ExitCode code = ExitOk;
    Json list = Json::array();
    for (const RecycleBinReceipt& receipt : receipts) {
        const RecycleBinResult result = restoreOne(receipt);
        list.push_back(jsonOf(result));
        if (!result.done) {
            report(result, receipt.originalPath);
            code = ExitDiffers;
        } else if (!asJson) {
            print(textOf(receipt.originalPath) + "\n");
        }
    }
    if (asJson)
        printJson("receipts", std::move(list));
    return code;
}

ExitCode run(const Options& options) {
    if (!options.receipts.empty())
        return restore(readReceipts(options.receipts), options.asJson);
    if (!options.paths.empty())
        return restore(findReceipts(options.paths), options.asJson);
    if (options.files.empty())
        throw CLI::RequiredError("FILE");
    return put(options);
}

}  // namespace

void addTrashCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const trash = program.add_subcommand(
        "trash", translated("Move files and folders to the trash, and back"));
    CLI::Option* const files =
        trash->add_option("FILE", options->files, translated("What is to go"));
    trash->add_flag("--json", options->asJson, translated("Print receipts, as JSON"));
    CLI::Option* const receipts =
        trash
            ->add_option("--restore", options->receipts,
                         translated("Put back what these receipts tell of"))
            ->type_name("RECEIPTS")
            ->excludes(files);
    trash
        ->add_option("--restore-path", options->paths,
                     translated("Put back what was trashed last from these paths"))
        ->type_name("PATH")
        ->excludes(files)
        ->excludes(receipts);
    trash->callback([options, &result] { result = run(*options); });
    trash->footer(translated(kHelp));
}

}  // namespace tav::tool
