// SPDX-License-Identifier: MIT
#pragma once

#include "CoreFoundation/Descriptor.h"

#include <cstdint>
#include <string>

namespace imagecapture {

// A file that is made in a folder: whole and on the disk, or not there. It has no name until it is
// complete (where the file system has no such files, a hidden one), and never takes the place of
// another.
// Thread: one at a time. Fails: errno.
class NewFile {
public:
    // `name` is a plain component. EEXIST when something has it already.
    NewFile(const std::string& folder, const std::string& name);
    // Not published: nothing is left.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // 0, or why there is no new file.
    int error() const { return _error; }
    // To be written to.
    int descriptor() const { return _file.get(); }
    // Seconds since 1970.
    bool setModified(int64_t seconds);
    // Once, last. EEXIST when another one has been given the name in the meantime.
    bool publish();

private:
    bool open(const std::string& folder);
    bool createNamed();
    bool giveName();
    bool moveToName();

    std::string _name;
    std::string _hiddenName;  // empty while the file has none
    cf::Descriptor _folder;
    cf::Descriptor _file;
    int _error = 0;
};

}  // namespace imagecapture
