// SPDX-License-Identifier: MIT
#include "tools/ula/DirCommand.h"

#include "tools/ula/AbsolutePath.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Terminal.h"
#include "tools/ula/Translation.h"

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
using ula::Dir;

constexpr const char* kHelp = translatable(R"(Examples:
  ula dir                     what is in this folder, in the order of the disk
  ula dir --sort ~/Pictures   in the Finder's order: img2 before IMG10
  ula dir -a -R --json DCIM   everything below, hidden items too, for programs

Paths are shown as the library names them: /Volumes, the disk, the folder.
Exit codes: 0 done; 1 nothing is there; 3 it cannot be read.)");

struct Options {
    std::string path = ".";
    bool all = false;
    bool recursive = false;
    bool sorted = false;
    bool json = false;
};

/// The path as the library names it. Fails: throws where the start-up disk has no name.
std::string modelPath(const std::string& path) {
    const std::string absolute = fs::path(absolutePath(path)).lexically_normal();
    if (absolute.compare(0, 9, "/Volumes/") == 0 || absolute == "/Volumes")
        return absolute;
    const std::string disk = "/Volumes/" + ula::NSPathUtilNameSpace::nameForRootDisk();
    std::error_code error;
    if (!fs::is_symlink(disk, error))
        throw CommandError{ExitCannotRead, translated("the start-up disk has no name in /Volumes"),
                           translated("'sudo ula volumes --mend' gives it one")};
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
        if (found < kWorthTelling || !isTerminal(STDERR_FILENO))
            return true;
        _isShown = true;
        const std::string text = translated("listing: %1 items", std::to_string(found));
        std::fprintf(stderr, "\r%s", text.c_str());
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

constexpr const char* kVolume = translatable("volume");
constexpr const char* kLostAlias = translatable("lost alias");
constexpr const char* kAlias = translatable("alias");
constexpr const char* kLink = translatable("link");
constexpr const char* kFolder = translatable("folder");
constexpr const char* kFile = translatable("file");

const char* kindOf(const Dir& node) {
    if (node.properties().isFlagSet(ula::MountPoint))
        return kVolume;
    if (node.isUnresolvedAlias())
        return kLostAlias;
    if (node.isAlias())
        return kAlias;
    if (node.isLink())
        return kLink;
    return node.isDir() ? kFolder : kFile;
}

/// Of any kind, as lines are printed before the others are known.
std::size_t kindWidth() {
    constexpr const char* kKinds[] = {kVolume, kLostAlias, kAlias, kLink, kFolder, kFile};
    constexpr std::size_t kLeast = 10;
    return std::max(kLeast, widestOf(kKinds, [](auto kind) { return translated(kind); })) + 2;
}

/// The name, or the last component of a path that is no text.
std::string nameOf(const Dir& node) {
    const std::string path = node.fullPath();
    const std::string name = node.name();
    return name.empty() ? path.substr(path.rfind('/') + 1) : name;
}

void printNode(const Dir& node, std::size_t depth, const Colours& colours) {
    std::string line = padded(translated(kindOf(node)), kindWidth()) +
                       (node.isReadOnly() ? "ro  " : "    ") + std::string(depth * 2, ' ');
    const std::string name = displayText(nameOf(node));
    const std::string title = displayText(node.title());
    line += node.isDir() ? colours.bold + name + colours.plain : name;
    if (!title.empty() && title != name)
        line += " \"" + title + "\"";
    if (node.isLink() || node.isAlias())
        line += " -> " + displayText(node.targetPath());
    if (node.isHidden())
        line += " (" + translated("hidden") + ")";
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
            {"title", node.title()},
            {"path", node.fullPath()},
            {"target", node.targetPath()},
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
    JsonList items("items");
    walk(dir, options, 0, [&items](const Dir& node, std::size_t) { items.add(jsonOf(node)); });
    items.end();
}

ExitCode run(const Options& options) {
    Dir dir(modelPath(options.path));
    if (!dir.exists())
        throw CommandError{ExitDiffers,
                           translated("there is nothing at %1", quotedText(options.path))};
    if (!dir.isDir() && !dir.isLink() && !dir.isAlias())
        throw CommandError{
            ExitCannotRead,
            translated("%1 is no folder, or may not be read", quotedText(options.path)),
            translated("'ls -ld' shows who may read it")};
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
        program.add_subcommand("dir", translated("List a folder as a folder browser sees it"));
    dir->add_option("PATH", options->path, translated("The folder; this one when not given"));
    dir->add_flag("-a,--all", options->all, translated("Hidden items too"));
    dir->add_flag("-R,--recursive", options->recursive, translated("What is in its folders, too"));
    dir->add_flag("--sort", options->sorted, translated("In the Finder's order"));
    dir->add_flag("--json", options->json, translated("As JSON"));
    dir->callback([options, &result] { result = run(*options); });
    dir->footer(translated(kHelp));
}

}  // namespace tav::tool
