// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <vector>

/// Knows the devices with files to bring over: by its number each one's "deviceName", "deviceType",
/// "nrOfDownloadableObjects" and "data", the platform's dictionaries of its files.
@interface objcImporter : NSObject {
    NSMutableDictionary* _devices;
}

/// With all devices that are connected.
- (id)init;
- (void)enumerateDevices;
/// Takes in a device as it is now, in place of what was known of it.
/// Fails: NO for a device that cannot be read (logged), and for one without files.
- (BOOL)addDeviceDictionary:(NSNumber*)number;
- (void)removeDeviceDictionary:(NSNumber*)number;
/// Owner: this object.
- (NSMutableDictionary*)getDevices;
- (void)dumpDevices;
- (std::vector<std::string>)getFileNamesFromDevice:(NSNumber*)number;
/// By name the first file that has it; names that none has are left out.
- (NSMutableDictionary*)getSelectedFilesDictFromDevice:(NSNumber*)number files:(NSArray*)names;

@end
