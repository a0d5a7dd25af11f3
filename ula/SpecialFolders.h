// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"

namespace tav::ula {

class Module;

/// Where the well-known folders of the user and of the running application lie. The folders need
/// not exist; what cannot be found out is empty. A null module is the main bundle. Thread: any.
class ULA_API SpecialFolders {
public:
    /// The user's home folder.
    static FastString home();
    /// The user's folder for temporary files.
    static FastString tempPath();
    static FastString myDocuments();
    static FastString myPictures();
    static FastString myMovies();
    static FastString myMusic();
    /// The user's folder for the data of all applications.
    static FastString myApplicationSupportPath();

    /// Empty when the bundle has no such folder; so is the next.
    static FastString myApplicationResourcePath(const Module* module);
    /// Its private frameworks.
    static FastString myApplicationFrameworkPath(const Module* module);
    /// The folder that holds the bundle.
    static FastString myApplicationExecutionPath(const Module* module);
    /// "/Profiles" in that of the private frameworks.
    static FastString myProfilesPath(const Module* module);

    /// "/Library/Application Support" in the home folder.
    static FastString myApplicationData();
    /// "/Library/Preferences" in the home folder. Not to be called: logs a failed assertion.
    static FastString myPreferences();
    /// "/Library/Preferences", the machine's.
    static FastString globalPreferences();
};

}  // namespace tav::ula
