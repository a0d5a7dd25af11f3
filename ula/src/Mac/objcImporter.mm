// SPDX-License-Identifier: MIT
#include "ula/src/Mac/objcImporter.h"

#include "ula/ScopedARPool.h"
#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/ObjectProperties.h"

using tav::ula::ObjectProperties;
using tav::ula::ScopedARPool;
using tav::ula::bridged;

namespace {

/// The first file of each name.
NSDictionary* filesByName(NSArray* files) {
    NSMutableDictionary* const result = [NSMutableDictionary dictionaryWithCapacity:[files count]];
    for (NSDictionary* file in files) {
        NSString* const name = [file objectForKey:@"ifil"];
        if (name != nil && [result objectForKey:name] == nil)
            [result setObject:file forKey:name];
    }
    return result;
}

}  // namespace

@implementation objcImporter

- (id)init {
    self = [super init];
    if (self == nil)
        return nil;
    _devices = [[NSMutableDictionary alloc] init];
    [self enumerateDevices];
    return self;
}

- (void)dealloc {
    [_devices release];
    [super dealloc];
}

- (void)enumerateDevices {
    const ScopedARPool pool;
    ICAGetDeviceListPB list = {};
    if (ICAGetDeviceList(&list, nullptr) != noErr)
        return;
    ObjectProperties properties;
    copyProperties(list.object, properties);
    if (!properties) {
        NSLog(@"could not obtain device list dictionary!");
        return;
    }
    for (NSDictionary* device in [bridged(properties.get()) objectForKey:@"devices"])
        [self
            addDeviceDictionary:[NSNumber numberWithInt:[[device objectForKey:@"icao"] intValue]]];
}

- (BOOL)addDeviceDictionary:(NSNumber*)number {
    const ScopedARPool pool;
    ObjectProperties properties;
    copyProperties(static_cast<ICAObject>([number intValue]), properties);
    if (!properties) {
        NSLog(@"could not obtain device dictionary of current device!");
        return NO;
    }
    NSDictionary* const device = bridged(properties.get());
    NSNumber* const count = [device objectForKey:@"ICANumberOfDownloadableObjectsKey"];
    if ([count intValue] == 0)
        return NO;
    // A value that the platform does not give ends the list, on purpose: what would follow is
    // missing, too.
    NSMutableDictionary* const entry = [NSMutableDictionary
        dictionaryWithObjectsAndKeys:[device objectForKey:@"ICAUserAssignedDeviceNameKey"],
                                     @"deviceName", [device objectForKey:@"ICADeviceTypeKey"],
                                     @"deviceType", count, @"nrOfDownloadableObjects",
                                     [device objectForKey:@"data"], @"data", nil];
    [_devices setObject:entry forKey:number];
    return YES;
}

- (void)removeDeviceDictionary:(NSNumber*)number {
    [_devices removeObjectForKey:number];
}

- (NSMutableDictionary*)getDevices {
    return _devices;
}

- (void)dumpDevices {
    NSLog(@"_devices description:%@", _devices);
}

- (std::vector<std::string>)getFileNamesFromDevice:(NSNumber*)number {
    const ScopedARPool pool;
    std::vector<std::string> names;
    for (NSDictionary* file in [[_devices objectForKey:number] objectForKey:@"data"])
        if (NSString* const name = [file objectForKey:@"ifil"])
            names.push_back([name toStdString]);
    return names;
}

- (NSMutableDictionary*)getSelectedFilesDictFromDevice:(NSNumber*)number files:(NSArray*)names {
    NSMutableDictionary* const selected = [NSMutableDictionary dictionary];
    NSDictionary* const files = filesByName([[_devices objectForKey:number] objectForKey:@"data"]);
    for (NSString* name in names)
        if (NSDictionary* const file = [files objectForKey:name])
            [selected setObject:file forKey:name];
    return selected;
}

@end
