// SPDX-License-Identifier: MIT
#import "NSFileManager+Trash.h"

#include "AppKit/Trash.h"

#include <cerrno>
#include <fcntl.h>

namespace {

std::string pathOf(NSURL* url) {
    const char* path = [[url path] UTF8String];
    return path != nullptr ? path : "";
}

NSURL* urlOf(const std::string& path) {
    return [NSURL fileURLWithPath:[NSString stringWithUTF8String:path.c_str()]];
}

// YES, or NO with the error told.
BOOL answer(const appkit::TrashOutcome& outcome, NSError** error) {
    if (outcome.done())
        return YES;
    if (error != nullptr) {
        NSString* why = [NSString stringWithUTF8String:outcome.explanation().c_str()];
        *error = [NSError errorWithDomain:NSPOSIXErrorDomain
                                     code:outcome.systemError
                                 userInfo:@{NSLocalizedDescriptionKey : why}];
    }
    return NO;
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

- (BOOL)restoreTrashedItemAtURL:(NSURL*)trashedURL toURL:(NSURL*)url error:(NSError**)error {
    appkit::TrashReceipt receipt{
        pathOf(url), pathOf(trashedURL), infoPathOf(pathOf(trashedURL)), {}};
    if (!appkit::readIdentity(AT_FDCWD, receipt.trashedPath, &receipt.identity))
        return answer({appkit::TrashStatus::Missing, errno, receipt}, error);
    return answer(appkit::restoreFromTrash(receipt), error);
}

@end
