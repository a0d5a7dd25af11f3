// SPDX-License-Identifier: MIT
#include "CoreFoundation/AutoreleasePool.h"
#include "ImageCapture/ImageCapture.h"
#include "ImageCapture/PropertyDictionaries.h"
#include "ImageCapture/Service.h"

#import <Foundation/Foundation.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

using imagecapture::DeviceFacts;
using imagecapture::Devices;
using imagecapture::kDeviceList;
using imagecapture::ObjectFacts;
using imagecapture::ObjectNumber;
using imagecapture::Service;

const CFStringRef kICANotificationTypeDeviceAdded = CFSTR("ICANotificationTypeDeviceAdded");
const CFStringRef kICANotificationTypeDeviceRemoved = CFSTR("ICANotificationTypeDeviceRemoved");
const CFStringRef kICANotificationTypeStoreAdded = CFSTR("ICANotificationTypeStoreAdded");
const CFStringRef kICANotificationTypeStoreRemoved = CFSTR("ICANotificationTypeStoreRemoved");
const CFStringRef kICANotificationDeviceICAObjectKey = CFSTR("ICANotificationDeviceICAObjectKey");

namespace {

// More at once is of no use, and takes memory that may not be there.
constexpr size_t kMostBytes = 1 << 26;

struct FreeMemory {
    void operator()(char* memory) const { std::free(memory); }
};

NSString* text(CFStringRef reference) {
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(reference));
}

template <typename Work>
int guarded(Work work) {
    try {
        const cf::AutoreleasePool pool;
        return work();
    } catch (const std::bad_alloc&) {
        return memFullErr;
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "ImageCapture: %s\n", exception.what());
        return ioErr;
    } catch (...) {
        return ioErr;
    }
}

// What every call does with its block of arguments.
template <typename Block, typename Work>
ICAError perform(Block* block, ICACompletion completion, Work work) {
    if (block == nullptr)
        return paramErr;
    block->header.err = static_cast<ICAError>(guarded(work));
    if (completion != nullptr)
        completion(&block->header);
    return block->header.err;
}

Devices& devices() {
    return Service::instance().devices();
}

// A failure is told by its text once: the code alone helps nobody.
int told(int error, ObjectNumber number) {
    const auto facts = devices().device(number);
    if (error != 0 && facts && !facts->problem.empty())
        std::fprintf(stderr, "ImageCapture: %s: %s\n", facts->name.c_str(), facts->problem.c_str());
    return error;
}

int copyDevice(const DeviceFacts& device, CFDictionaryRef* result) {
    std::vector<ObjectFacts> files;
    if (int error = devices().allFiles(device.number, files); error != 0)
        return told(error, device.number);
    *result = imagecapture::copyDeviceProperties(device, files);
    return 0;
}

int copyProperties(ObjectNumber number, CFDictionaryRef* result) {
    if (result == nullptr)
        return paramErr;
    *result = nullptr;
    if (number == kDeviceList) {
        *result = imagecapture::copyListProperties(Service::instance().listed());
        return 0;
    }
    if (const auto device = devices().device(number))
        return copyDevice(*device, result);
    const auto object = devices().object(number);
    if (!object)
        return kICAInvalidObjectErr;
    *result = imagecapture::copyObjectProperties(*object);
    return 0;
}

int copyData(const ICACopyObjectDataPB& block) {
    if (block.data == nullptr)
        return paramErr;
    *block.data = nullptr;
    // Read where they stay: pictures are large.
    const size_t size = std::min<size_t>(block.requestedSize, kMostBytes);
    std::unique_ptr<char, FreeMemory> memory(static_cast<char*>(std::malloc(size + 1)));
    if (!memory)
        return memFullErr;
    std::span<char> bytes(memory.get(), size);
    if (int error = devices().read(block.object, block.startByte, bytes); error != 0)
        return error;
    NSData* data = [[NSData alloc] initWithBytesNoCopy:memory.release()
                                                length:bytes.size()
                                          freeWhenDone:YES];
    *block.data = reinterpret_cast<CFDataRef>(data);
    return data == nil ? memFullErr : 0;
}

int download(const ICADownloadFilePB& block) {
    if (block.dirFSRef == nullptr)
        return paramErr;
    std::string path;
    const bool keepsDate = (block.flags & kAdjustCreationDate) != 0;
    const int error =
        devices().download(block.object, coreservices::pathOf(*block.dirFSRef), keepsDate, path);
    if (error == 0 && block.fileFSRef != nullptr)
        coreservices::setPath(*block.fileFSRef, path);
    return error;
}

void tell(ICANotification procedure, NSSet* events, ObjectNumber device, bool isAdded) {
    const cf::AutoreleasePool pool;
    CFStringRef type =
        isAdded ? kICANotificationTypeDeviceAdded : kICANotificationTypeDeviceRemoved;
    if (![events containsObject:text(type)])
        return;
    NSDictionary* dictionary =
        [NSDictionary dictionaryWithObject:[NSNumber numberWithUnsignedInt:device]
                                    forKey:text(kICANotificationDeviceICAObjectKey)];
    procedure(type, reinterpret_cast<CFDictionaryRef>(dictionary));
}

int listen(const ICARegisterForEventNotificationPB& block) {
    if (block.notificationProc == nullptr || block.objectOfInterest != 0)
        return paramErr;
    NSArray* wanted = reinterpret_cast<NSArray*>(const_cast<__CFArray*>(block.eventsOfInterest));
    // For ever, as the registration is.
    NSSet* events = [[NSSet alloc] initWithArray:wanted == nil ? [NSArray array] : wanted];
    const ICANotification procedure = block.notificationProc;
    const bool listens =
        Service::instance().listen([procedure, events](ObjectNumber device, bool isAdded) {
            tell(procedure, events, device, isAdded);
        });
    if (!listens)
        [events release];
    return listens ? 0 : ioErr;
}

int countChildren(ICAGetChildCountPB& block) {
    std::vector<ObjectFacts> children;
    int error = devices().children(block.object, children);
    block.count = static_cast<UInt32>(children.size());
    return told(error, block.object);
}

int nthChild(ICAGetNthChildPB& block) {
    ObjectFacts child;
    if (int error = devices().nthListed(block.parentObject, block.index, child); error != 0)
        return error;
    block.childObject = child.number;
    block.childInfo = {static_cast<OSType>(child.item.isFolder ? kICADirectory : kICAFile), 0};
    return 0;
}

// Empty for what is none.
std::string addressOf(CFStringRef address) {
    const char* const utf8 = address == nullptr ? nullptr : [text(address) UTF8String];
    return imagecapture::networkAddress(utf8 == nullptr ? "" : utf8);
}

}  // namespace

ICAError ICAGetDeviceList(ICAGetDeviceListPB* pb, ICACompletion completion) {
    return perform(pb, completion, [pb] {
        Service::instance().list();
        pb->object = kDeviceList;
        return 0;
    });
}

ICAError ICACopyObjectPropertyDictionary(ICACopyObjectPropertyDictionaryPB* pb,
                                         ICACompletion completion) {
    return perform(pb, completion, [pb] { return copyProperties(pb->object, pb->theDict); });
}

ICAError ICAGetChildCount(ICAGetChildCountPB* pb, ICACompletion completion) {
    return perform(pb, completion, [pb] { return countChildren(*pb); });
}

ICAError ICAGetNthChild(ICAGetNthChildPB* pb, ICACompletion completion) {
    return perform(pb, completion, [pb] { return nthChild(*pb); });
}

ICAError ICACopyObjectData(ICACopyObjectDataPB* pb, ICACompletion completion) {
    return perform(pb, completion, [pb] { return copyData(*pb); });
}

ICAError ICADownloadFile(ICADownloadFilePB* pb, ICACompletion completion) {
    return perform(pb, completion, [pb] { return download(*pb); });
}

ICAError ICARegisterForEventNotification(ICARegisterForEventNotificationPB* pb,
                                         ICACompletion completion) {
    return perform(pb, completion, [pb] { return listen(*pb); });
}

Boolean ULANetworkCameraAdd(CFStringRef address) {
    bool isAdded = false;
    guarded([&] {
        const std::string place = addressOf(address);
        if (!place.empty() && Service::instance().networkCameras().add(place))
            Service::instance().lookAgain();
        isAdded = !place.empty();
        return 0;
    });
    return isAdded;
}

Boolean ULANetworkCameraRemove(CFStringRef address) {
    bool wasThere = false;
    guarded([&] {
        wasThere = Service::instance().networkCameras().remove(addressOf(address));
        if (wasThere)
            Service::instance().lookAgain();
        return 0;
    });
    return wasThere;
}
