// SPDX-License-Identifier: MIT
#include "SpecialFoldersMac.h"

#import "ula/NSPathUtil.h"
#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/SpecialFolders.h"

#import <Foundation/HomeDirectory.h>

namespace tav::ula {

FastString SpecialFoldersMac::home() {
    const ScopedARPool pool;
    return NSPathUtilNameSpace::normalizeMacPathToRoot([NSHomeDirectory() toStdString]);
}

FastString SpecialFolders::home() {
    return SpecialFoldersMac::home();
}

}  // namespace tav::ula
