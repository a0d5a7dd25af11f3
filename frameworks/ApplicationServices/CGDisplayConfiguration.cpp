// SPDX-License-Identifier: MIT
#include "ApplicationServices/CGDisplayConfiguration.h"

#include "DisplayList.h"

using displays::DisplayList;

CGError CGDisplayRegisterReconfigurationCallback(CGDisplayReconfigurationCallBack callback,
                                                 void* userInfo) {
    if (callback == nullptr)
        return kCGErrorIllegalArgument;
    DisplayList::ofProcess().add(callback, userInfo);
    return kCGErrorSuccess;
}

CGError CGDisplayRemoveReconfigurationCallback(CGDisplayReconfigurationCallBack callback,
                                               void* userInfo) {
    return DisplayList::ofProcess().remove(callback, userInfo) ? kCGErrorSuccess
                                                               : kCGErrorIllegalArgument;
}
