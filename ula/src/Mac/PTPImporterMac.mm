// SPDX-License-Identifier: MIT
#include "ula/src/Mac/PTPImporterMac.h"

#include "ula/ScopedARPool.h"
#include "ula/src/Mac/Bridge.h"

#include <ImageCapture/ImageCapture.h>
#include <cstdlib>
#include <iostream>

namespace tav::ula {

namespace {

/// What the platform answers when the folder has a file of the name.
constexpr ICAError kFileExists = -48;
constexpr UInt32 kDownloadFlags = 2;

bool isOneOf(CFStringRef type, CFStringRef first, CFStringRef second) {
    return [bridged(type) isEqualToString:bridged(first)] ||
           [bridged(type) isEqualToString:bridged(second)];
}

/// A camera and its cards are told each for itself, and handled alike.
void handleNotification(CFStringRef type, CFDictionaryRef notification) {
    const ScopedARPool pool;
    NSDictionary* const facts = bridged(notification);
    const int device = static_cast<int>(
        [[facts objectForKey:bridged(kICANotificationDeviceICAObjectKey)] integerValue]);
    const bool isAdded =
        isOneOf(type, kICANotificationTypeDeviceAdded, kICANotificationTypeStoreAdded);
    if (!isAdded &&
        !isOneOf(type, kICANotificationTypeDeviceRemoved, kICANotificationTypeStoreRemoved))
        return;
    auto* const importer = static_cast<PTPImporterMac*>(PTPImporter::getInstance());
    if (isAdded)
        importer->handleAdded(device);
    else
        importer->handleRemoved(device);
}

void registerForNotifications() {
    NSArray* const types =
        [NSArray arrayWithObjects:bridged(kICANotificationTypeDeviceAdded),
                                  bridged(kICANotificationTypeDeviceRemoved),
                                  bridged(kICANotificationTypeStoreAdded),
                                  bridged(kICANotificationTypeStoreRemoved), nil];
    ICARegisterForEventNotificationPB block = {};
    block.eventsOfInterest = bridged(types);
    block.notificationProc = handleNotification;
    if (ICARegisterForEventNotification(&block, nullptr) != noErr)
        NSLog(@"could not register with ICA notifications!");
}

void download(NSString* name, NSDictionary* file, FSRef& folder) {
    ICADownloadFilePB block = {};
    block.object = [[file objectForKey:@"icao"] unsignedIntValue];
    block.dirFSRef = &folder;
    block.flags = kDownloadFlags;
    const ICAError error = ICADownloadFile(&block, nullptr);
    if (error == kFileExists)
        NSLog(@"%@ already exists", name);
    else if (error != noErr)
        NSLog(@"trying to download %@ returned error %d", name, error);
}

/// Without names that are no text: no device has one.
NSArray* textsOf(const std::vector<std::string>& names) {
    std::vector<std::string> texts;
    for (const std::string& name : names)
        if ([NSString fromStdString:name] != nil)
            texts.push_back(name);
    return [NSArray fromStdStringArray:texts];
}

}  // namespace

PTPImporter* PTPImporter::getInstance() {
    static PTPImporter* instance = nullptr;
    if (instance == nullptr)
        instance = new PTPImporterMac;
    return instance;
}

PTPImporterMac::PTPImporterMac() {
    const ScopedARPool pool;
    _importer = [[objcImporter alloc] init];
    registerForNotifications();
}

PTPImporterMac::~PTPImporterMac() = default;

void PTPImporterMac::downloadFiles(const std::string& deviceId,
                                   const std::vector<std::string>& fileNames,
                                   const std::string& location) {
    const ScopedARPool pool;
    std::cout << "download location: " << location << std::endl;
    FSRef folder;
    if (FSPathMakeRef(reinterpret_cast<const UInt8*>(location.c_str()), &folder, nullptr) !=
        noErr) {
        NSLog(@"could not create FSRef from location string!");
        return;
    }
    NSNumber* const device = [NSNumber numberWithInt:std::atoi(deviceId.c_str())];
    NSDictionary* const selected = [_importer getSelectedFilesDictFromDevice:device
                                                                       files:textsOf(fileNames)];
    for (NSString* name in selected)
        download(name, [selected objectForKey:name], folder);
}

std::vector<std::string> PTPImporterMac::getDevices() {
    const ScopedARPool pool;
    std::vector<std::string> devices;
    for (NSNumber* device in [[_importer getDevices] allKeys])
        devices.push_back([[device stringValue] toStdString]);
    return devices;
}

void PTPImporterMac::handleAdded(int device) {
    NSNumber* const number = [NSNumber numberWithInt:device];
    if ([_importer addDeviceDictionary:number])
        deviceAdded(std::to_string(device), [_importer getFileNamesFromDevice:number]);
}

void PTPImporterMac::handleRemoved(int device) {
    [_importer removeDeviceDictionary:[NSNumber numberWithInt:device]];
    deviceRemoved(std::to_string(device));
}

}  // namespace tav::ula
