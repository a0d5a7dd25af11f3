// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsCommands.h"
#include "tools/ula/SettingsJsonReader.h"
#include "tools/ula/SettingsStore.h"
#include "tools/ula/Translation.h"
#include "ula/foundation/xml/XmlDocumentRapid.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace tav::tool {

namespace {

/// What the library would refuse to read back is not worth taking in.
constexpr std::size_t kLargestText = xml::XmlDocumentRapid::kLargestText;

std::string readAll(std::FILE* file, const std::string& name) {
    std::string text;
    const auto piece = std::make_unique<char[]>(1 << 16);
    errno = 0;
    while (const std::size_t count = std::fread(piece.get(), 1, 1 << 16, file)) {
        text.append(piece.get(), count);
        if (text.size() > kLargestText)
            throw CommandError{ExitCannotRead, translated("%1: larger than 256 MB", name),
                               translated("import it in pieces: keys of several imports add up")};
    }
    if (std::ferror(file))
        throw CommandError{ExitCannotRead, name + ": " + std::strerror(errno)};
    return text;
}

std::string readSource(const std::string& source, std::string& name) {
    name = source == "-" ? translated("standard input") : source;
    if (source == "-")
        return readAll(stdin, name);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(source.c_str(), "rb"),
                                                               std::fclose);
    if (!file)
        throw CommandError{ExitCannotRead, name + ": " + std::strerror(errno),
                           translated("name a JSON file, or - for standard input")};
    return readAll(file.get(), name);
}

void merge(GroupMap& groups, const FastString& name, KeyMap& keys, bool replaceGroup) {
    KeyMap& target = groups[name];
    if (replaceGroup) {
        target.swap(keys);
        return;
    }
    for (auto& [key, setting] : keys)
        target.insert_or_assign(key, std::move(setting));
}

}  // namespace

ExitCode runImport(const SettingsFile& file, const ImportOptions& options) {
    std::string name;
    const std::string text = readSource(options.source, name);
    GroupMap groups = readJson(text, name);
    const auto store = openStore(file, IfMissing::Start);
    for (auto& [group, keys] : groups)
        merge(store->groups(), group, keys, options.replaceGroups);
    writeStore(*store, file, options.keepBackup);
    return ExitOk;
}

}  // namespace tav::tool
