// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"

#include <vector>

namespace tav::ula {

/// Moves a file or folder to the user's trash; of a symbolic link to one the link itself goes. The
/// other arguments are accepted and ignored on this platform.
/// Fails: false, with the item where it was, when it is neither file nor folder or may not go.
/// Thread: any.
ULA_API bool moveToRecycleBin(const FastString& path, bool = false, bool = false, void* = nullptr);
/// Moves each in order, whatever became of the one before. True when all have gone, or there were
/// none.
ULA_API bool moveToRecycleBin(const std::vector<FastString>& paths, bool = false, bool = false,
                              void* = nullptr);

/// Where an item went. Texts only, so that a receipt can be kept in a file; it holds good as long
/// as the item is in the trash, also after a restart.
struct RecycleBinReceipt {
    FastString originalPath;  ///< absolute
    FastString trashedPath;
    FastString identity;  ///< tells the item from another that takes its name in the trash later
};

struct RecycleBinResult {
    bool done = false;
    RecycleBinReceipt receipt;  ///< of what was not done only `originalPath`, as it was given
    FastString error;           ///< why not, in English; empty when done
};

/// As above, and tells for each path, in order, what became of it. `results` is filled anew.
/// Thread: any.
ULA_API bool moveToRecycleBin(const std::vector<FastString>& paths,
                              std::vector<RecycleBinResult>& results);

/// Receipts for the items of the trash that came from a place, whoever trashed them; the last one
/// trashed comes first. Empty when there are none.
/// Thread: any.
ULA_API std::vector<RecycleBinReceipt> findInRecycleBin(const FastString& originalPath);

/// Puts an item back where it was, making the folders that have gone since. What has taken its
/// place stays, and so does what has taken its name in the trash.
/// Fails: a result that is not done; the item is in the trash as it was.
/// Thread: any.
ULA_API RecycleBinResult restoreFromRecycleBin(const RecycleBinReceipt& receipt);

}  // namespace tav::ula
