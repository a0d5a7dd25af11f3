// SPDX-License-Identifier: MIT
#pragma once

#include "Security/Keychain/ItemTable.h"
#include "Security/Keychain/Store.h"

namespace security {

// The encrypted file: in its folder "items", whose key is in "key", and "lock" for those who change
// it. Every read opens both: nothing of them stays in memory.
//
// A damaged file is kept aside under another name by the call that finds it, which fails with
// errSecInvalidKeychain; the next ones find an empty keychain. One that belongs to another key, or
// to a later version, stays where it is.
class FileStore : public Store {
public:
    explicit FileStore(std::string folder) : _folder(std::move(folder)) {}

    OSStatus find(const ItemKey& name) override;
    OSStatus read(const ItemKey& name, SecretBytes& secret) override;
    OSStatus add(const ItemKey& name, std::string_view secret) override;
    OSStatus remove(const ItemKey& name) override;
    OSStatus list(std::vector<ItemName>& names) override;
    OSStatus examine(bool& isLocked) override;
    std::string path() const override { return _folder + "/items"; }

private:
    std::string keyPath() const { return _folder + "/key"; }
    OSStatus load(ItemTable& table);
    OSStatus loadForChange(ItemTable& table, SecretBytes& key);
    OSStatus open(ItemTable& table, SecretBytes& key) const;
    OSStatus readKey(SecretBytes& key) const;
    OSStatus makeKeyFile(SecretBytes& key) const;
    OSStatus keepDamagedAside() const;
    OSStatus save(const ItemTable& table, const SecretBytes& key) const;

    std::string _folder;
};

}  // namespace security
