// SPDX-License-Identifier: MIT
#include "ula/SecureData.h"

#include "ula/src/Mac/KeychainItem.h"

namespace tav::ula {

namespace {

FastString joined(const FastString& name, const FastString& qualifier) {
    return name + FastString::literal("_") + qualifier;
}

KeychainItem passwordItem(const FastString& name, const FastString& account,
                          const FastString& qualifier) {
    return {joined(name, qualifier), FastString::literal("Password"), account};
}

/// The account is part of no note, but some look for one with it.
KeychainItem noteItem(const FastString& name, const FastString& qualifier,
                      const FastString& account = FastString()) {
    return {joined(name, qualifier), FastString::literal("Secure note"), account};
}

bool replace(const KeychainItem& item, const FastString& secret) {
    return item.remove() && item.store(secret);
}

}  // namespace

bool addToKeychain(const FastString& name, FastString account, FastString password,
                   const FastString& qualifier) {
    if (name.empty() || account.empty() || password.empty())
        return false;
    const KeychainItem item = passwordItem(name, account, qualifier);
    return item.exists() ? replace(item, password) : item.store(password);
}

bool addToKeychain(const FastString& name, FastString note, const FastString& qualifier) {
    if (name.empty() || note.empty())
        return false;
    const KeychainItem item = noteItem(name, qualifier);
    // The note as the account on purpose: callers depend on a second note being refused.
    return noteItem(name, qualifier, note).exists() ? replace(item, note) : item.store(note);
}

bool getFromKeychain(const FastString& name, const FastString& account, FastString& password,
                     const FastString& qualifier) {
    if (name.empty() || account.empty())
        return false;
    const KeychainItem item = passwordItem(name, account, qualifier);
    return item.exists() && item.read(password);
}

bool getFromKeychain(const FastString& name, FastString& note, const FastString& qualifier) {
    if (name.empty())
        return false;
    const KeychainItem item = noteItem(name, qualifier);
    return item.exists() && item.read(note);
}

bool editKeychain(const FastString& name, const FastString& account, const FastString& password,
                  const FastString& qualifier) {
    if (name.empty() || account.empty() || password.empty())
        return false;
    const KeychainItem item = passwordItem(name, account, qualifier);
    return item.exists() && replace(item, password);
}

bool editKeychain(const FastString& name, const FastString& note, const FastString& qualifier) {
    if (name.empty() || note.empty())
        return false;
    const KeychainItem item = noteItem(name, qualifier);
    return item.exists() && replace(item, note);
}

bool deleteKeychain(const FastString& name, const FastString& account,
                    const FastString& qualifier) {
    if (name.empty() || account.empty())
        return false;
    const KeychainItem item = passwordItem(name, account, qualifier);
    return item.exists() && item.remove();
}

bool deleteKeychain(const FastString& name, const FastString& qualifier) {
    if (name.empty())
        return false;
    const KeychainItem item = noteItem(name, qualifier);
    return item.exists() && item.remove();
}

bool getWholeFromKeychain(const FastString& name, const FastString& account, FastString& password,
                          const FastString& qualifier) {
    if (name.empty() || account.empty())
        return false;
    const KeychainItem item = passwordItem(name, account, qualifier);
    return item.exists() && item.readWhole(password);
}

bool getWholeFromKeychain(const FastString& name, FastString& note, const FastString& qualifier) {
    if (name.empty())
        return false;
    const KeychainItem item = noteItem(name, qualifier);
    return item.exists() && item.readWhole(note);
}

}  // namespace tav::ula
