// SPDX-License-Identifier: MIT
#import "NSFileManager+Trash.h"

#include "AppKit/Trash.h"

#include <cerrno>
#include <fcntl.h>
#include <string>

namespace {

std::string pathOf(NSURL* url) {
    const char* path = [[url path] UTF8String];
    return path != nullptr ? path : "";
}

// Nil for bytes that are no text.
NSURL* urlOf(const std::string& path) {
    NSString* text = [NSString stringWithUTF8String:path.c_str()];
    return text == nil ? nil : [NSURL fileURLWithPath:text];
}

NSInteger codeOf(const appkit::TrashOutcome& outcome) {
    using appkit::TrashStatus;
    switch (outcome.status) {
    case TrashStatus::Missing:
    case TrashStatus::ItemChanged:
        return NSFileNoSuchFileError;
    case TrashStatus::NotPermitted:
        return NSFileWriteNoPermissionError;
    case TrashStatus::ReadOnly:
        return NSFileWriteVolumeReadOnlyError;
    case TrashStatus::PlaceTaken:
        return NSFileWriteFileExistsError;
    case TrashStatus::InTrash:
    case TrashStatus::NoTrash:
        return NSFeatureUnsupportedError;
    default:
        return outcome.systemError == ENOSPC ? NSFileWriteOutOfSpaceError : NSFileWriteUnknownError;
    }
}

NSError* errorOf(const appkit::TrashOutcome& outcome) {
    NSMutableDictionary* details = [NSMutableDictionary dictionary];
    [details setObject:[NSString stringWithUTF8String:outcome.explanation().c_str()]
                forKey:NSLocalizedDescriptionKey];
    if (outcome.systemError != 0)
        [details setObject:[NSError errorWithDomain:NSPOSIXErrorDomain
                                               code:outcome.systemError
                                           userInfo:nil]
                    forKey:NSUnderlyingErrorKey];
    return [NSError errorWithDomain:NSCocoaErrorDomain code:codeOf(outcome) userInfo:details];
}

// YES, or NO with the error told.
BOOL answer(const appkit::TrashOutcome& outcome, NSError** error) {
    if (!outcome.done() && error != nullptr)
        *error = errorOf(outcome);
    return outcome.done();
}

std::string textOf(const appkit::ItemIdentity& identity) {
    return std::to_string(identity.inode) + "-" + std::to_string(identity.birthTimeNs);
}

bool isItem(const appkit::ItemIdentity& identity, NSString* text) {
    const char* bytes = [text UTF8String];
    return bytes != nullptr && textOf(identity) == bytes;
}

// ".../info/NAME.trashinfo" for ".../files/NAME": the two folders of every trash. Empty for a path
// that is none of a trash.
std::string infoPathOf(const std::string& trashedPath) {
    const std::string files = "/files";
    const size_t slash = trashedPath.rfind('/');
    if (slash == std::string::npos || slash < files.size() ||
        trashedPath.compare(slash - files.size(), files.size(), files) != 0)
        return {};
    return trashedPath.substr(0, slash - files.size()) + "/info" + trashedPath.substr(slash) +
           ".trashinfo";
}

}  // namespace

@implementation NSFileManager (ULATrash)

- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)resultingURL error:(NSError**)error {
    const appkit::TrashOutcome outcome =
        appkit::moveToTrash(pathOf(url), appkit::TrashPlaces::ofProcess());
    if (resultingURL != nullptr && outcome.done())
        *resultingURL = urlOf(outcome.receipt.trashedPath);
    return answer(outcome, error);
}

- (NSString*)identityOfItemAtURL:(NSURL*)url {
    appkit::ItemIdentity identity;
    if (!appkit::readIdentity(AT_FDCWD, pathOf(url), &identity))
        return nil;
    return [NSString stringWithUTF8String:textOf(identity).c_str()];
}

- (NSArray*)trashedItemURLsOfURL:(NSURL*)url {
    NSMutableArray* urls = [NSMutableArray array];
    for (const appkit::TrashReceipt& receipt :
         appkit::findInTrash(pathOf(url), appkit::TrashPlaces::ofProcess()))
        if (NSURL* trashed = urlOf(receipt.trashedPath))
            [urls addObject:trashed];
    return urls;
}

- (BOOL)restoreTrashedItemAtURL:(NSURL*)trashedURL
                       identity:(NSString*)identity
                          toURL:(NSURL*)url
                          error:(NSError**)error {
    using appkit::TrashStatus;
    const std::string trashedPath = pathOf(trashedURL);
    appkit::TrashReceipt receipt{pathOf(url), trashedPath, infoPathOf(trashedPath), {}};
    if (!appkit::readIdentity(AT_FDCWD, trashedPath, &receipt.identity))
        return answer({TrashStatus::Missing, errno, receipt}, error);
    if (!isItem(receipt.identity, identity))
        return answer({TrashStatus::ItemChanged, 0, receipt}, error);
    return answer(appkit::restoreFromTrash(receipt), error);
}

@end
