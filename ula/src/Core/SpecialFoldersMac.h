// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FastString.h"

namespace tav::ula {

class Module;

/// What the platform says of the well-known folders, for `SpecialFolders`.
class SpecialFoldersMac {
public:
    static FastString home();
    static FastString tempPath();
    static FastString myDocuments();
    static FastString myPictures();
    static FastString myMovies();
    static FastString myMusic();
    static FastString applicationSupportPath();
    static FastString myApplicationResourcePath(const Module* module);
    static FastString myApplicationFrameworkPath(const Module* module);
    static FastString myApplicationExecutionPath(const Module* module);
};

}  // namespace tav::ula
