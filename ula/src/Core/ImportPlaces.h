// SPDX-License-Identifier: MIT
#pragma once

#include "ula/ImportSession.h"

#include <set>

namespace tav::ula {

struct ImportPlace {
    std::string path;
    bool isThere = false;  ///< the file itself, from an import before
    std::string error;
};

/// Where files of an import go: each to a name of its own.
class ImportPlaces {
public:
    explicit ImportPlaces(std::string folder) : _folder(std::move(folder)) {}

    /// `subfolder` is relative and may be empty; it is made. "a.jpg", then "a-2.jpg" and so on: the
    /// first that is this very file already, or free. No two files of an import share one.
    ImportPlace choose(const std::string& subfolder, const ImportObject& object);

private:
    std::string _folder;
    std::set<std::string> _taken;
};

/// Whether a name from a device is a plain one, that leads nowhere else.
bool isPlainName(const std::string& name);

/// Whether a file's date is the one that the device told, as far as disks keep them: cards to two
/// seconds and in local time, by which they are hours off after the clocks have changed.
bool isSameDate(std::int64_t date, std::int64_t told);

}  // namespace tav::ula
