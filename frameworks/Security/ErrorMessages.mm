// SPDX-License-Identifier: MIT
#include <Security/SecBase.h>

#import <Foundation/Foundation.h>

namespace {

struct Message {
    OSStatus status;
    const char* text;
};

constexpr Message kMessages[] = {
    {errSecSuccess, "No error."},
    {errSecUnimplemented, "Function or operation not implemented."},
    {errSecDiskFull, "The disk is full."},
    {errSecIO, "I/O error."},
    {errSecParam, "One or more parameters passed to a function were not valid."},
    {errSecAllocate, "Failed to allocate memory."},
    {errSecUserCanceled, "User canceled the operation."},
    {errSecInternalComponent, "An internal component experienced an error."},
    {errSecNotAvailable, "No keychain is available. You may need to restart your computer."},
    {errSecReadOnly, "This keychain cannot be modified."},
    {errSecAuthFailed, "The user name or passphrase you entered is not correct."},
    {errSecNoSuchKeychain, "The specified keychain could not be found."},
    {errSecInvalidKeychain, "The specified keychain is not a valid keychain file."},
    {errSecDuplicateItem, "The specified item already exists in the keychain."},
    {errSecItemNotFound, "The specified item could not be found in the keychain."},
    {errSecDataTooLarge, "This item contains information which is too large or in a format that "
                         "cannot be displayed."},
    {errSecInvalidItemRef,
     "The specified item is no longer valid. It may have been deleted from the keychain."},
    {errSecInteractionNotAllowed, "User interaction is not allowed."},
    {errSecIncompatibleVersion, "An incompatible version was encountered."},
};

}  // namespace

CFStringRef SecCopyErrorMessageString(OSStatus status, void*) {
    for (const Message& message : kMessages) {
        if (message.status == status)
            return CFStringCreateWithCString(kCFAllocatorDefault, message.text,
                                             kCFStringEncodingUTF8);
    }
    return reinterpret_cast<CFStringRef>(
        [[NSString alloc] initWithFormat:@"OSStatus %d", static_cast<int>(status)]);
}
