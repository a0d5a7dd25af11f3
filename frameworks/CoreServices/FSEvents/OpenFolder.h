// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <unistd.h>

namespace fsevents {

// The descriptor of an open folder, or none.
class OpenFolder {
public:
    explicit OpenFolder(int descriptor) : _descriptor(descriptor) {}
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;
    ~OpenFolder() {
        if (_descriptor >= 0)
            close(_descriptor);
    }

    int get() const { return _descriptor; }
    explicit operator bool() const { return _descriptor >= 0; }

private:
    int _descriptor;
};

// Opens the folder that an absolute path leads to, be it longer than the kernel takes at once.
// Owner: the caller, of the descriptor. Fails: -1, with errno.
int openFolderAt(const std::string& path, bool followsLast);

}  // namespace fsevents
