// SPDX-License-Identifier: MIT
#include "ula/src/Mac/ImportSourceMac.h"

#include "ula/ImportSession.h"
#include "ula/ScopedARPool.h"
#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/ObjectProperties.h"

#import <Foundation/Foundation.h>
#include <cstdlib>

namespace tav::ula {

namespace {

ImportDevice deviceOf(NSDictionary* facts) {
    ImportDevice device;
    device.id = std::to_string([[facts objectForKey:@"icao"] intValue]);
    device.name = textOf([facts objectForKey:@"ICAUserAssignedDeviceNameKey"]);
    device.isCard = [[facts objectForKey:@"ICADeviceTypeKey"] isEqual:@"ICADeviceTypeCardReader"];
    // Where the platform says it.
    device.problem = textOf([facts objectForKey:@"ULAProblem"]);
    return device;
}

std::vector<ImportDevice> devicesOf(ICAObject list) {
    std::vector<ImportDevice> devices;
    ObjectProperties properties;
    copyProperties(list, properties);
    if (properties)
        for (NSDictionary* facts in [bridged(properties.get()) objectForKey:@"devices"])
            devices.push_back(deviceOf(facts));
    return devices;
}

std::string describe(ICAError error) {
    switch (error) {
    case -43:
        return "it is no longer there";
    case -5000:
        return "it may not be read";
    case kICACommunicationErr:
        return "the device does not answer";
    case kICAInvalidObjectErr:
    case kICADeviceNotFoundErr:
        return "the device is no longer connected";
    case kICAFileCorruptedErr:
        return "not all of it could be read";
    case kICACannotYieldDevice:
        return "another program uses the device";
    default:
        return "it cannot be read (error " + std::to_string(error) + ")";
    }
}

}  // namespace

std::unique_ptr<ImportSource> createImportSource(const std::string& deviceId) {
    return std::make_unique<ImportSourceMac>(static_cast<ICAObject>(std::atoi(deviceId.c_str())));
}

std::vector<ImportDevice> ImportSession::devices() {
    const ScopedARPool pool;
    ICAGetDeviceListPB block = {};
    if (ICAGetDeviceList(&block, nullptr) != noErr)
        return {};
    return devicesOf(block.object);
}

ImportSourceMac::ImportSourceMac(ICAObject device) : _device(device) {
    const ScopedARPool pool;
    ICAGetDeviceListPB block = {};
    if (ICAGetDeviceList(&block, nullptr) == noErr)
        _deviceList = block.object;
}

bool ImportSourceMac::succeeded(ICAError error) {
    _error = error;
    return error == noErr;
}

bool ImportSourceMac::count(std::uint32_t folder, std::uint32_t& result) {
    const ScopedARPool pool;
    ICAGetChildCountPB block = {};
    block.object = folder;
    if (!succeeded(ICAGetChildCount(&block, nullptr)))
        return false;
    result = block.count;
    return true;
}

bool ImportSourceMac::item(std::uint32_t folder, std::uint32_t index, ImportSourceItem& result) {
    const ScopedARPool pool;
    ICAGetNthChildPB block = {};
    block.parentObject = folder;
    block.index = index + 1;
    ObjectProperties properties;
    if (!succeeded(ICAGetNthChild(&block, nullptr)) ||
        !succeeded(copyProperties(block.childObject, properties)))
        return false;
    NSDictionary* const facts = bridged(properties.get());
    result.number = block.childObject;
    result.name = textOf([facts objectForKey:@"ifil"]);
    result.isFolder = block.childInfo.objectType == kICADirectory;
    result.size = [[facts objectForKey:@"isiz"] unsignedLongLongValue];
    result.modified = [[facts objectForKey:@"ULAModificationTime"] longLongValue];
    return true;
}

bool ImportSourceMac::read(std::uint32_t file, std::uint64_t offset, std::size_t size,
                           std::string_view& bytes) {
    const ScopedARPool pool;
    ICACopyObjectDataPB block = {};
    block.object = file;
    block.startByte = offset;
    block.requestedSize = size;
    block.data = _data.receive();
    if (!succeeded(ICACopyObjectData(&block, nullptr)))
        return false;
    bytes = {reinterpret_cast<const char*>(CFDataGetBytePtr(_data.get())),
             static_cast<std::size_t>(CFDataGetLength(_data.get()))};
    return true;
}

std::string ImportSourceMac::problem() {
    const ScopedARPool pool;
    for (const ImportDevice& device : devicesOf(_deviceList))
        if (device.id == std::to_string(static_cast<int>(_device)) && !device.problem.empty())
            return device.problem;
    return describe(_error);
}

bool ImportSourceMac::isGone() {
    return _error == kICACommunicationErr || _error == kICAInvalidObjectErr ||
           _error == kICADeviceNotFoundErr || _error == kICACannotYieldDevice;
}

}  // namespace tav::ula
