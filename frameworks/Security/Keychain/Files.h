// SPDX-License-Identifier: MIT
// The few files of the keychain's folder. All results are statuses of SecBase.h.
#pragma once

#include "CoreFoundation/Descriptor.h"
#include "Security/Keychain/SecretBytes.h"

#include <CoreServices/MacTypes.h>
#include <string>
#include <string_view>

namespace security {

// The status for a failed system call.
OSStatus statusOf(int errorNumber);

// A folder that only its user may use, made if need be. Fails: also when it is another user's, or
// others may write in it; logged then.
OSStatus makePrivateFolder(const std::string& folder);

// Holds the lock of that name in a folder: one holder at a time on the machine, whatever ends it.
// Waits for its turn.
class FolderLock {
public:
    FolderLock(const std::string& folder, const char* name);
    OSStatus status() const { return _status; }

private:
    cf::Descriptor _file;
    OSStatus _status;
};

// Fails: errSecItemNotFound when there is no such file; errSecAuthFailed when it may not be read;
// logged then.
OSStatus readFile(const std::string& path, std::string& content);
// The same for a file that no one but its user may touch. Fails: errSecAuthFailed when others may;
// logged.
OSStatus readPrivateFile(const std::string& path, SecretBytes& content);

// Whoever opens the path at any moment, after a crash at any moment, finds the old file or the new
// one, whole. The new one is on the disk at the end and its user's alone. To be called under a lock
// that every writer of the path holds.
OSStatus replaceFile(const std::string& path, std::string_view content);

// Gives the file a name that nothing has, "PATH.damaged-1" or a later number.
OSStatus keepAside(const std::string& path, std::string& newPath);

}  // namespace security
