// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

struct statx;

namespace coreservices {

// Answers what access(2) would answer for the items of one folder, without a system call where the
// item's own mode settles it: it belongs to the user, its owner's bits grant the right, it lies on
// a file system that judges by these bits alone, and nothing else can refuse.
class AccessRights {
public:
    // `folder` is a descriptor, borrowed for the object's life.
    explicit AccessRights(int folder);

    // `item` was read with the folder's descriptor; it is no link and lies on the folder's mount.
    bool isReadable(const char* name, const struct statx& item) const;
    bool isWritable(const char* name, const struct statx& item) const;

private:
    bool isGrantedByMode(const struct statx& item, unsigned int ownersBit) const;

    int _folder;
    uint32_t _user;
    bool _modesDecide;
    bool _isReadOnly;
};

}  // namespace coreservices
