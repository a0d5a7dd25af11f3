// SPDX-License-Identifier: MIT
#include "AppKit/DesktopEntries.h"

#include "CoreFoundation/EnvironmentVariable.h"
#include "CoreFoundation/FolderStream.h"
#include "CoreFoundation/WholeContent.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace appkit {

namespace {

constexpr std::string_view kSuffix = ".desktop";
// Far more than any entry has with all its translations.
constexpr size_t kLargestFile = 1 << 20;

std::vector<std::string> parts(const std::string& list) {
    std::vector<std::string> result;
    for (size_t begin = 0; begin <= list.size();) {
        const size_t end = std::min(list.find(':', begin), list.size());
        if (end > begin)
            result.push_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
    return result;
}

std::vector<std::string> foldersOfProcess() {
    const std::string data = cf::environmentVariable(
        "XDG_DATA_HOME", cf::environmentVariable("HOME", "/") + "/.local/share");
    std::vector<std::string> folders = {data + "/applications"};
    for (const std::string& part :
         parts(cf::environmentVariable("XDG_DATA_DIRS", "/usr/local/share:/usr/share")))
        folders.push_back(part + "/applications");
    return folders;
}

std::string beginningOf(const std::string& path, size_t largest) {
    const cf::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return file ? cf::readUpTo(file.get(), largest) : "";
}

// Empty when nothing can be run there.
std::string programAt(const std::string& path) {
    char target[PATH_MAX];
    return access(path.c_str(), X_OK) == 0 && realpath(path.c_str(), target) != nullptr ? target
                                                                                        : "";
}

timespec changeOf(const std::string& path) {
    struct stat item {};
    return stat(path.c_str(), &item) == 0 ? item.st_mtim : timespec{};
}

bool isSame(const timespec& one, const timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

}  // namespace

DesktopEntries::DesktopEntries(std::vector<std::string> folders, std::string searchPath)
    : _folders(std::move(folders)), _searchPath(std::move(searchPath)) {
}

DesktopEntries& DesktopEntries::ofProcess() {
    // Never destroyed: other threads may ask until the very end.
    static auto* entries = new DesktopEntries(
        foldersOfProcess(), cf::environmentVariable("PATH", "/usr/local/bin:/usr/bin:/bin"));
    return *entries;
}

std::vector<DesktopEntry> DesktopIndex::entriesOf(const std::string& program) const {
    std::vector<DesktopEntry> found;
    const auto [begin, end] = _byProgram.equal_range(program);
    for (auto entry = begin; entry != end; ++entry)
        found.push_back(entry->second);
    std::sort(found.begin(), found.end(), [](const DesktopEntry& one, const DesktopEntry& other) {
        return one.identifier < other.identifier;
    });
    return found;
}

// Entries are replaced by renaming a new file over the old one, which changes the folder.
std::shared_ptr<const DesktopIndex> DesktopEntries::current() {
    const std::lock_guard lock(_mutex);
    const bool isCurrent =
        _index != nullptr &&
        std::all_of(_index->_folders.begin(), _index->_folders.end(),
                    [](const auto& known) { return isSame(known.second, changeOf(known.first)); });
    if (isCurrent)
        return _index;
    auto index = std::make_shared<DesktopIndex>();
    for (const std::string& folder : _folders)
        readFolder(*index, folder, "");
    _index = index;
    return _index;
}

void DesktopEntries::readFolder(DesktopIndex& index, const std::string& folder,
                                const std::string& prefix) const {
    index._folders[folder] = changeOf(folder);
    const cf::FolderStream listing(opendir(folder.c_str()));
    while (const dirent* item = listing ? readdir(listing.get()) : nullptr) {
        const std::string name = item->d_name;
        // Links to folders are not followed, so there is no way in a circle.
        if (item->d_type == DT_DIR && name[0] != '.')
            readFolder(index, folder + "/" + name, prefix + name + "-");
        else if (name.ends_with(kSuffix))
            readEntry(index, folder + "/" + name,
                      prefix + name.substr(0, name.size() - kSuffix.size()));
    }
}

void DesktopEntries::readEntry(DesktopIndex& index, const std::string& path,
                               const std::string& identifier) const {
    if (!index._seen.insert(identifier).second)
        return;
    std::optional<DesktopEntry> entry = parseDesktopEntry(beginningOf(path, kLargestFile));
    const std::string program = entry ? locate(entry->command.front()) : "";
    if (program.empty())
        return;
    entry->identifier = identifier;
    entry->file = path;
    const std::string interpreter = interpreterOf(program);
    if (!interpreter.empty())
        index._interpreters.insert(interpreter);
    index._byProgram.emplace(program, std::move(*entry));
}

std::string DesktopEntries::locate(const std::string& name) const {
    if (name.find('/') != std::string::npos)
        return name[0] == '/' ? programAt(name) : "";
    for (const std::string& folder : parts(_searchPath))
        if (std::string path = programAt(folder + "/" + name); !path.empty())
            return path;
    return {};
}

std::string DesktopEntries::interpreterOf(const std::string& script) const {
    constexpr size_t kLongestLine = 256;
    const std::string text = beginningOf(script, kLongestLine);
    if (!text.starts_with("#!"))
        return {};
    std::vector<std::string> words = wordsOfCommand(text.substr(2, text.find('\n') - 2));
    if (words.size() > 1 && words[0].ends_with("/env"))
        return locate(words[1] == "-S" && words.size() > 2 ? words[2] : words[1]);
    return words.empty() ? "" : locate(words[0]);
}

}  // namespace appkit
