// SPDX-License-Identifier: MIT
#include "ImageCapture/PropertyDictionaries.h"

#include "ImageCapture/ICAApplication.h"
#include "ImageCapture/SafeName.h"

#import <Foundation/Foundation.h>
#include <ctime>

const CFStringRef kICAUserAssignedDeviceNameKey = CFSTR("ICAUserAssignedDeviceNameKey");
const CFStringRef kICADeviceTypeKey = CFSTR("ICADeviceTypeKey");
const CFStringRef kICADeviceTypeCamera = CFSTR("ICADeviceTypeCamera");
const CFStringRef kICADeviceTypeCardReader = CFSTR("ICADeviceTypeCardReader");
const CFStringRef kICANumberOfDownloadableObjectsKey = CFSTR("ICANumberOfDownloadableObjectsKey");
const CFStringRef kULAProblemKey = CFSTR("ULAProblem");
const CFStringRef kULAModificationTimeKey = CFSTR("ULAModificationTime");

namespace imagecapture {

namespace {

NSString* key(CFStringRef reference) {
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(reference));
}

// Names are safe, and texts with it; what others say need not be.
NSString* textOf(const std::string& bytes) {
    NSString* text = [NSString stringWithUTF8String:bytes.c_str()];
    return text != nil ? text : [NSString stringWithUTF8String:safeName(bytes).c_str()];
}

// As EXIF has it, in local time. Nil where the device does not tell.
NSString* dateOf(int64_t seconds) {
    const time_t time = static_cast<time_t>(seconds);
    tm parts{};
    char text[32];
    if (seconds == 0 || localtime_r(&time, &parts) == nullptr ||
        strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &parts) == 0)
        return nil;
    return [NSString stringWithUTF8String:text];
}

NSMutableDictionary* describeDevice(const DeviceFacts& device) {
    NSString* name = textOf(device.name);
    NSMutableDictionary* result = [NSMutableDictionary dictionary];
    [result setObject:[NSNumber numberWithUnsignedInt:device.number] forKey:@"icao"];
    [result setObject:name forKey:@"ifil"];
    [result setObject:name forKey:key(kICAUserAssignedDeviceNameKey)];
    [result setObject:key(device.kind == Kind::CameraDevice ? kICADeviceTypeCamera
                                                            : kICADeviceTypeCardReader)
               forKey:key(kICADeviceTypeKey)];
    if (!device.problem.empty())
        [result setObject:textOf(device.problem) forKey:key(kULAProblemKey)];
    return result;
}

// Owner: the caller, since there may be very many.
NSMutableDictionary* newDescription(const ObjectFacts& object) {
    NSMutableDictionary* result = [[NSMutableDictionary alloc] initWithCapacity:5];
    NSNumber* number = [[NSNumber alloc] initWithUnsignedInt:object.number];
    [result setObject:number forKey:@"icao"];
    [number release];
    [result setObject:textOf(object.name) forKey:@"ifil"];
    if (object.item.isFolder)
        return result;
    [result setObject:[NSNumber numberWithUnsignedLongLong:object.item.size] forKey:@"isiz"];
    if (NSString* date = dateOf(object.item.modified)) {
        [result setObject:date forKey:@"9003"];
        [result setObject:[NSNumber numberWithLongLong:object.item.modified]
                   forKey:key(kULAModificationTimeKey)];
    }
    return result;
}

CFDictionaryRef copyOf(NSDictionary* dictionary) {
    return reinterpret_cast<CFDictionaryRef>([dictionary retain]);
}

}  // namespace

CFDictionaryRef copyListProperties(const std::vector<DeviceFacts>& devices) {
    NSMutableArray* entries = [NSMutableArray array];
    for (const DeviceFacts& device : devices)
        [entries addObject:describeDevice(device)];
    return copyOf([NSDictionary dictionaryWithObject:entries forKey:@"devices"]);
}

CFDictionaryRef copyDeviceProperties(const DeviceFacts& device,
                                     const std::vector<ObjectFacts>& files) {
    NSMutableArray* data = [NSMutableArray arrayWithCapacity:files.size()];
    for (const ObjectFacts& file : files) {
        NSMutableDictionary* description = newDescription(file);
        [data addObject:description];
        [description release];
    }
    NSMutableDictionary* result = describeDevice(device);
    [result setObject:[NSNumber numberWithUnsignedLong:files.size()]
               forKey:key(kICANumberOfDownloadableObjectsKey)];
    [result setObject:data forKey:@"data"];
    return copyOf(result);
}

CFDictionaryRef copyObjectProperties(const ObjectFacts& object) {
    NSDictionary* description = newDescription(object);
    return reinterpret_cast<CFDictionaryRef>(description);
}

}  // namespace imagecapture
