// SPDX-License-Identifier: MIT
#pragma once

#include "ula/AbstractDirHelper.h"

namespace tav::ula {

/// Looks at folders through the platform. Children are listed from the target path: a link or an
/// alias lists the folder that it leads to.
class DirHelperMac : public AbstractDirHelper {
public:
    explicit DirHelperMac(const std::string& path);
    explicit DirHelperMac(FileProperties properties);

    std::vector<AbstractDirHelper*> children(bool visibleFoldersOnly) override;
    bool containsChildren(bool visibleFoldersOnly) const override;
    bool exists() const override;
    void refresh() override;
    bool childrenWithProgress(bool visibleFoldersOnly, const ListingProgress& progress,
                              std::vector<AbstractDirHelper*>& found) override;
};

}  // namespace tav::ula
