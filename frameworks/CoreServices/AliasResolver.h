// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/AliasFile.h"
#include "CoreServices/AliasPlaces.h"

#include <string>

namespace coreservices {

enum class Resolution {
    Found,
    NotAnAlias,  // the path names some other file, a folder, ...
    Missing,
    TooLong,  // a chain without an end, or with more places than anybody would make
    NotMounted,
    NoAnswer,  // the disk or the server did not answer in time
    NoPermission,
};

// Where an alias file, or a symbolic link, leads. For what is neither, isFolder is its own.
struct ResolvedAlias {
    Resolution resolution = Resolution::Missing;
    AliasKind kind = AliasKind::File;  // as far as it is known; also of what was not found
    bool wasAliased = false;           // whether the path named an alias file or a link
    bool isFolder = false;             // when it was found
    std::string path;                  // when it was found
};

enum class Chains { Follow, OneStep };
enum class Mounting { Never, IfNeeded };

// Follows the alias file at an absolute path. What lies on the way is looked at with a time limit.
// Thread: any.
ResolvedAlias resolveAlias(const std::string& path, Chains chains, Mounting mounting,
                           const AliasPlaces& places);

}  // namespace coreservices
