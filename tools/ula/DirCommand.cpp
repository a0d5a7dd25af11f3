// SPDX-License-Identifier: MIT
#include "tools/ula/DirCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/SettingsCommand.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Terminal.h"

#include <ula/Dir.h>
#include <ula/NSPathUtil.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace tav::tool {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using ula::Dir;

constexpr const char* kHelp = R"(Examples:
  ula dir                     what is in this folder, in the order of the disk
  ula dir --sort ~/Pictures   in the Finder's order: img2 before IMG10
  ula dir -a -R --json DCIM   everything below, hidden items too, for programs

Paths are shown as the library names them: /Volumes, the disk, the folder.
Exit codes: 0 done; 1 nothing is there; 3 it cannot be read.)";

struct Options {
    std::string path = ".";
    bool all = false;
    bool recursive = false;
    bool sorted = false;
    bool json = false;
};

/// The path as the library names it. Fails: throws where the start-up disk has no name.
std::string modelPath(const std::string& path) {
    const std::string absolute = fs::absolute(path).lexically_normal();
    if (absolute.compare(0, 9, "/Volumes/") == 0 || absolute == "/Volumes")
        return absolute;
    const std::string disk = "/Volumes/" + ula::NSPathUtilNameSpace::nameForRootDisk();
    std::error_code error;
    if (!fs::is_symlink(disk, error))
        throw CommandError{ExitCannotRead, "the start-up disk has no name in /Volumes",
                           "'sudo ula volumes --mend' gives it one"};
    return disk + (absolute == "/" ? "" : absolute);
}

/// A line on a terminal's standard error that tells how far a long listing has come; gone after it.
class ListingNotice {
public:
    ~ListingNotice() {
        if (_isShown)
            std::fputs("\r\x1b[K", stderr);
    }
    bool tell(std::size_t found) {
        constexpr std::size_t kWorthTelling = 20'000;
        if (found < kWorthTelling || isatty(STDERR_FILENO) == 0)
            return true;
        _isShown = true;
        std::fprintf(stderr, "\rlisting: %zu items", found);
        return true;
    }

private:
    bool _isShown = false;
};

std::vector<Dir*> childrenOf(Dir& dir, const Options& options) {
    {
        ListingNotice notice;
        dir.loadChildren(false, [&notice](std::size_t found) { return notice.tell(found); });
    }
    std::vector<Dir*> nodes = options.sorted ? dir.childrenSorted(false) : dir.children(false);
    if (!options.all)
        std::erase_if(nodes, [](const Dir* node) { return node->isHidden(); });
    return nodes;
}

const char* kindOf(const Dir& node) {
    if (node.properties().isFlagSet(ula::MountPoint))
        return "volume";
    if (node.isUnresolvedAlias())
        return "lost alias";
    if (node.isAlias())
        return "alias";
    if (node.isLink())
        return "link";
    return node.isDir() ? "folder" : "file";
}

/// The name, or the last component of a path that is no text.
std::string nameOf(const Dir& node) {
    const std::string path = node.fullPath();
    const std::string name = node.name();
    return displayText(name.empty() ? path.substr(path.rfind('/') + 1) : name);
}

void printNode(const Dir& node, std::size_t depth, const Colours& colours) {
    constexpr std::size_t kKindWidth = 12;
    std::string line = padded(kindOf(node), kKindWidth) + (node.isReadOnly() ? "ro  " : "    ") +
                       std::string(depth * 2, ' ');
    const std::string name = nameOf(node);
    const std::string title = displayText(node.title());
    line += node.isDir() ? colours.bold + name + colours.plain : name;
    if (!title.empty() && title != name)
        line += " \"" + title + "\"";
    if (node.isLink() || node.isAlias())
        line += " -> " + displayText(node.targetPath());
    if (node.isHidden())
        line += " (hidden)";
    print(line + "\n");
}

Json jsonOf(const Dir& node) {
    Json flags = Json::array();
    const std::pair<ula::FilePropertyFlags, const char*> names[] = {
        {ula::Alias, "Alias"},
        {ula::UnresolvedAlias, "UnresolvedAlias"},
        {ula::Link, "Link"},
        {ula::Hidden, "Hidden"},
        {ula::ReadOnly, "ReadOnly"},
        {ula::Directory, "Directory"},
        {ula::MountPoint, "MountPoint"}};
    for (const auto& [flag, name] : names) {
        if (node.properties().isFlagSet(flag))
            flags.push_back(name);
    }
    return {{"name", nameOf(node)},
            {"title", displayText(node.title())},
            {"path", displayText(node.fullPath())},
            {"target", displayText(node.targetPath())},
            {"flags", flags}};
}

/// The nodes below, folder by folder. Links and aliases are not followed: they may lead round.
template <typename Show>
void walk(Dir& dir, const Options& options, std::size_t depth, const Show& show) {
    for (Dir* node : childrenOf(dir, options)) {
        show(*node, depth);
        if (!options.recursive || !node->isDir())
            continue;
        // A node of its own, so that only the folders on the way are in memory.
        Dir inner(node->fullPath());
        walk(inner, options, depth + 1, show);
    }
}

void printJson(Dir& dir, const Options& options) {
    const char* separator = "[\n  ";
    walk(dir, options, 0, [&separator](const Dir& node, std::size_t) {
        print(separator + jsonOf(node).dump());
        separator = ",\n  ";
    });
    print(separator[0] == '[' ? "[]\n" : "\n]\n");
}

ExitCode run(const Options& options) {
    Dir dir(modelPath(options.path));
    if (!dir.exists())
        throw CommandError{ExitDiffers, "there is nothing at " + quotedText(options.path)};
    if (!dir.isDir() && !dir.isLink() && !dir.isAlias())
        throw CommandError{ExitCannotRead,
                           quotedText(options.path) + " is no folder, or may not be read",
                           "'ls -ld' shows who may read it"};
    if (options.json) {
        printJson(dir, options);
        return ExitOk;
    }
    const Colours colours = outputColours();
    walk(dir, options, 0,
         [&colours](const Dir& node, std::size_t depth) { printNode(node, depth, colours); });
    return ExitOk;
}

}  // namespace

void addDirCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const dir =
        program.add_subcommand("dir", "List a folder as a folder browser sees it");
    dir->add_option("PATH", options->path, "The folder; this one when not given")
        ->transform(&unprotectArgument);
    dir->add_flag("-a,--all", options->all, "Hidden items too");
    dir->add_flag("-R,--recursive", options->recursive, "What is in its folders, too");
    dir->add_flag("--sort", options->sorted, "In the Finder's order");
    dir->add_flag("--json", options->json, "As JSON");
    dir->callback([options, &result] { result = run(*options); });
    dir->footer(kHelp);
}

}  // namespace tav::tool
