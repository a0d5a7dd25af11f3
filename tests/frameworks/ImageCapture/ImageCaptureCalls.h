// SPDX-License-Identifier: MIT
// The platform's calls as tests make them.
#pragma once

#import <Foundation/Foundation.h>
#include <ImageCapture/ImageCapture.h>
#include <map>
#include <string>
#include <vector>

namespace capture {

/// Nil when it fails; the code is in `error`.
inline NSDictionary* properties(ICAObject object, ICAError* error = nullptr) {
    CFDictionaryRef dictionary = nullptr;
    ICACopyObjectPropertyDictionaryPB block = {};
    block.object = object;
    block.theDict = &dictionary;
    ICAError result = ICACopyObjectPropertyDictionary(&block, nullptr);
    if (error != nullptr)
        *error = result;
    return [reinterpret_cast<NSDictionary*>(const_cast<__CFDictionary*>(dictionary)) autorelease];
}

inline NSArray* devices() {
    ICAGetDeviceListPB block = {};
    ICAGetDeviceList(&block, nullptr);
    return [properties(block.object) objectForKey:@"devices"];
}

/// 0 when there is none of this name.
inline ICAObject deviceNamed(const std::string& name) {
    for (NSDictionary* device in devices())
        if (name == [[device objectForKey:@"ICAUserAssignedDeviceNameKey"] UTF8String])
            return [[device objectForKey:@"icao"] unsignedIntValue];
    return 0;
}

inline std::map<std::string, ICAObject> files(ICAObject device) {
    std::map<std::string, ICAObject> result;
    for (NSDictionary* file in [properties(device) objectForKey:@"data"])
        result.emplace([[file objectForKey:@"ifil"] UTF8String],
                       [[file objectForKey:@"icao"] unsignedIntValue]);
    return result;
}

inline ICAError download(ICAObject file, const std::string& folder, UInt32 flags = 2) {
    FSRef reference;
    if (FSPathMakeRef(reinterpret_cast<const UInt8*>(folder.c_str()), &reference, nullptr) != 0)
        return dirNFErr;
    ICADownloadFilePB block = {};
    block.object = file;
    block.dirFSRef = &reference;
    block.flags = flags;
    return ICADownloadFile(&block, nullptr);
}

/// The bytes, or the error as a text.
inline std::string read(ICAObject file, unsigned long offset, unsigned long size) {
    CFDataRef data = nullptr;
    ICACopyObjectDataPB block = {};
    block.object = file;
    block.startByte = offset;
    block.requestedSize = size;
    block.data = &data;
    if (ICAError error = ICACopyObjectData(&block, nullptr); error != 0)
        return "error " + std::to_string(error);
    std::string bytes(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                      static_cast<size_t>(CFDataGetLength(data)));
    CFRelease(data);
    return bytes;
}

}  // namespace capture
