// SPDX-License-Identifier: MIT
// Small secrets in the user's keychain: passwords, found by a name and an account, and notes, found
// by a name. The qualifier belongs to the name and may be empty; an application puts something of
// its own there, so that others do not meet its names.
//
// All are texts in UTF-8. Fails: false; the keychain's reason is logged, except that there is no
// such item. An argument that must not be empty and is gives false at once.
// Thread: any. A call may wait for the user, who is asked to unlock the keychain.
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"

#include <vector>

namespace tav::ula {

/// Replaces what there is. Not empty: name, account, password.
ULA_API bool addToKeychain(const FastString& name, FastString account, FastString password,
                           const FastString& qualifier);
/// A note. Fails: also when there is one of that name; `editKeychain` replaces it. Not empty: name,
/// note.
ULA_API bool addToKeychain(const FastString& name, FastString note, const FastString& qualifier);

/// The first 1023 bytes, up to a zero byte; `getWholeFromKeychain` gives all. Fails: `password` is
/// as it was. Not empty: name, account.
ULA_API bool getFromKeychain(const FastString& name, const FastString& account,
                             FastString& password, const FastString& qualifier);
/// A note. Not empty: name.
ULA_API bool getFromKeychain(const FastString& name, FastString& note, const FastString& qualifier);

/// Replaces what there must be. Not empty: name, account, password.
ULA_API bool editKeychain(const FastString& name, const FastString& account,
                          const FastString& password, const FastString& qualifier);
/// A note. Not empty: name, note.
ULA_API bool editKeychain(const FastString& name, const FastString& note,
                          const FastString& qualifier);

/// Not empty: name, account.
ULA_API bool deleteKeychain(const FastString& name, const FastString& account,
                            const FastString& qualifier);
/// A note. Not empty: name.
ULA_API bool deleteKeychain(const FastString& name, const FastString& qualifier);

/// As `getFromKeychain`, whatever its length, zero bytes included.
ULA_API bool getWholeFromKeychain(const FastString& name, const FastString& account,
                                  FastString& password, const FastString& qualifier);
ULA_API bool getWholeFromKeychain(const FastString& name, FastString& note,
                                  const FastString& qualifier);

enum class KeychainItemKind { Password, Note };

struct KeychainItemName {
    KeychainItemKind kind = KeychainItemKind::Password;
    FastString name;
    FastString account;  ///< empty of a note

    bool operator==(const KeychainItemName&) const = default;
};

/// What the functions above have stored with this qualifier, sorted by name; never a secret.
/// Appends nothing to `names` on failure. Nobody is asked to unlock anything. Fails: false, logged;
/// none at all is no failure.
ULA_API bool listKeychain(const FastString& qualifier, std::vector<KeychainItemName>& names);
/// The same with every qualifier: names are as they are joined, "name_qualifier".
ULA_API bool listKeychain(std::vector<KeychainItemName>& names);

/// A place in which the user's keychain items lie. All are searched; new ones go to the default.
struct KeychainStore {
    FastString path;
    bool isDefault = false;
    bool isAvailable = false;
    bool isLocked = false;
    FastString error;  ///< why it is not available, in English
};

/// The default first. Fails: none, logged.
ULA_API std::vector<KeychainStore> keychainStores();

struct KeychainMove {
    int moved = 0;
    int left = 0;  ///< what stayed where it was, the other store has another secret of that name
    FastString error;  ///< what ended it early, in English; what is not moved is where it was
};

/// Moves every item of the functions above to the store of this path, which becomes the default. At
/// any moment each item is in one of the stores, or in both. Can be repeated.
ULA_API KeychainMove moveKeychain(const FastString& path);

}  // namespace tav::ula
