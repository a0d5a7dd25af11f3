// SPDX-License-Identifier: MIT
#include "ula/src/Mac/ListedItemFacts.h"

namespace tav::ula {

using coreservices::ItemType;

ListedItemFacts::ListedItemFacts(coreservices::FolderListing& listing,
                                 const coreservices::FolderEntry& entry,
                                 const coreservices::EntryFacts& facts,
                                 const std::string& startupVolume)
    : _listing(listing), _entry(entry), _facts(facts), _startupVolume(startupVolume) {
}

bool ListedItemFacts::name(std::string& name) {
    name = _entry.name;
    return true;
}

bool ListedItemFacts::isReadable() {
    return _facts.isReadable;
}

bool ListedItemFacts::exists(bool& isDirectory) {
    isDirectory = _facts.isDirectory;
    return true;
}

bool ListedItemFacts::isWritable() {
    return _facts.isWritable;
}

bool ListedItemFacts::attributes(ItemAttributes& attributes) {
    attributes.displayName = _entry.name;
    attributes.isInvisible = _facts.isInvisible;
    attributes.isSymbolicLink = _facts.type == ItemType::SymbolicLink;
    attributes.isFolder = _facts.type == ItemType::Folder;
    attributes.isPackage =
        _facts.type == ItemType::Package || _facts.type == ItemType::ApplicationBundle;
    return true;
}

std::string ListedItemFacts::resolvedPath() {
    if (_facts.type == ItemType::SymbolicLink)
        return _facts.target;
    std::string path = _listing.resolvedFolder();
    if (path.back() != '/')
        path.push_back('/');
    return path.append(_entry.name);
}

bool ListedItemFacts::isAliasOfFolderOrDisk() {
    return false;
}

bool ListedItemFacts::resolveAlias(std::string&) {
    return false;
}

const std::string& ListedItemFacts::startupVolume() {
    return _startupVolume;
}

}  // namespace tav::ula
