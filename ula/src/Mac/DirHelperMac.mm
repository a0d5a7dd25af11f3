// SPDX-License-Identifier: MIT
#include "ula/src/Mac/DirHelperMac.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/src/Mac/FolderChildren.h"

#import <Foundation/Foundation.h>

namespace tav::ula {

namespace {

/// How many children are found between two reports of progress.
constexpr std::size_t kReportEvery = 1000;

}  // namespace

AbstractDirHelper* AbstractDirHelper::create(const std::string& path) {
    return new DirHelperMac(path);
}

DirHelperMac::DirHelperMac(const std::string& path) : AbstractDirHelper(path) {
    refresh();
}

DirHelperMac::DirHelperMac(FileProperties properties) : AbstractDirHelper(std::move(properties)) {
}

std::vector<AbstractDirHelper*> DirHelperMac::children(bool visibleFoldersOnly) {
    std::vector<AbstractDirHelper*> found;
    childrenWithProgress(
        visibleFoldersOnly, [](std::size_t) { return true; }, found);
    return found;
}

bool DirHelperMac::childrenWithProgress(bool visibleFoldersOnly, const ListingProgress& progress,
                                        std::vector<AbstractDirHelper*>& found) {
    const ScopedARPool pool;
    FolderChildren children(properties(), visibleFoldersOnly);
    FileProperties child;
    while (children.next(child)) {
        found.push_back(new DirHelperMac(std::move(child)));
        if (found.size() % kReportEvery == 0 && !progress(found.size()))
            return false;
    }
    return progress(found.size());
}

bool DirHelperMac::containsChildren(bool visibleFoldersOnly) const {
    const ScopedARPool pool;
    FolderChildren children(properties(), visibleFoldersOnly);
    FileProperties child;
    return visibleFoldersOnly ? children.next(child) : children.skip();
}

bool DirHelperMac::exists() const {
    const ScopedARPool pool;
    NSString* const path = [NSString fromStdString:properties().fullPath()];
    return path != nil && [[NSFileManager defaultManager] fileExistsAtPath:path];
}

void DirHelperMac::refresh() {
    setProperties(FileProperties::create(properties().fullPath()));
}

}  // namespace tav::ula
