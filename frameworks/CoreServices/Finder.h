// SPDX-License-Identifier: MIT
// The types that alias files carry.
#pragma once

#include <CoreServices/MacTypes.h>

enum {
    kContainerFolderAliasType = 0x66647270,    // 'fdrp'
    kContainerHardDiskAliasType = 0x6864736B,  // 'hdsk'
    // Ours: 'alis', as alias files to anything else have it.
    kGenericAliasFileType = 0x616C6973,
    // The creator of every alias file, 'MACS'.
    kGenericAliasFileCreator = 0x4D414353,
};
