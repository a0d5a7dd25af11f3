// SPDX-License-Identifier: MIT
#include "Security/Keychain/FileStore.h"

#include "Security/Keychain/Files.h"
#include "Security/Keychain/Note.h"
#include "Security/Keychain/SealedFile.h"
#include "Security/SecBase.h"

namespace security {

namespace {

constexpr const char* kLock = "lock";
// Each change writes the whole file.
constexpr std::size_t kMostBytes = std::size_t(16) << 20;

OSStatus tell(const std::string& path, const char* what, OSStatus status) {
    note("keychain: " + path + " " + what);
    return status;
}

}  // namespace

OSStatus FileStore::readKey(SecretBytes& key) const {
    const OSStatus status = readPrivateFile(keyPath(), key);
    if (status != errSecSuccess)
        return status;
    if (examineKey(key.view()) != SealState::Intact)
        return tell(keyPath(), "is damaged, or of a later version", errSecAuthFailed);
    return errSecSuccess;
}

// Fails: errSecItemNotFound when there is no file, and nothing is wrong.
OSStatus FileStore::open(ItemTable& table, SecretBytes& key) const {
    std::string sealed;
    const OSStatus found = readFile(path(), sealed);
    const OSStatus status = readKey(key);
    if (found != errSecSuccess)
        return status == errSecSuccess || status == errSecItemNotFound ? found : status;
    if (status == errSecItemNotFound)
        return tell(keyPath(), "is missing, the key of the keychain beside it", errSecAuthFailed);
    if (status != errSecSuccess)
        return status;
    SecretBytes plain;
    const SealState state = unseal(sealed, key, plain);
    if (state == SealState::OtherKey)
        return tell(path(), "belongs to another key than the one beside it", errSecAuthFailed);
    if (state == SealState::LaterVersion)
        return tell(path(), "is of a later version", errSecIncompatibleVersion);
    table = ItemTable(std::move(plain));
    return state == SealState::Intact && table.isWhole() ? errSecSuccess : errSecInvalidKeychain;
}

// Under the lock: another one may have replaced it meanwhile.
OSStatus FileStore::keepDamagedAside() const {
    ItemTable table;
    SecretBytes key;
    if (open(table, key) != errSecInvalidKeychain)
        return errSecInvalidKeychain;
    std::string newPath;
    if (keepAside(path(), newPath) == errSecSuccess)
        note("keychain: " + path() + " is damaged; kept aside as " + newPath);
    else
        note("keychain: " + path() + " is damaged, and cannot be kept aside");
    return errSecInvalidKeychain;
}

OSStatus FileStore::load(ItemTable& table) {
    SecretBytes key;
    const OSStatus status = open(table, key);
    if (status != errSecInvalidKeychain)
        return status;
    const FolderLock lock(_folder, kLock);
    if (lock.status() == errSecSuccess)
        return keepDamagedAside();
    return tell(path(), "is damaged, and cannot be kept aside", errSecInvalidKeychain);
}

OSStatus FileStore::loadForChange(ItemTable& table, SecretBytes& key) {
    const OSStatus status = open(table, key);
    if (status == errSecInvalidKeychain)
        return keepDamagedAside();
    if (status != errSecItemNotFound)
        return status;
    return key.size() == 0 ? makeKeyFile(key) : errSecSuccess;
}

OSStatus FileStore::makeKeyFile(SecretBytes& key) const {
    key = makeKey();
    return replaceFile(keyPath(), key.view());
}

OSStatus FileStore::save(const ItemTable& table, const SecretBytes& key) const {
    return replaceFile(path(), seal(table.bytes(), key));
}

OSStatus FileStore::find(const ItemKey& name) {
    ItemTable table;
    const OSStatus status = load(table);
    if (status != errSecSuccess)
        return status;
    return table.find(name) ? errSecSuccess : errSecItemNotFound;
}

OSStatus FileStore::read(const ItemKey& name, SecretBytes& secret) {
    ItemTable table;
    const OSStatus status = load(table);
    if (status != errSecSuccess)
        return status;
    const auto record = table.find(name);
    if (!record)
        return errSecItemNotFound;
    secret = SecretBytes(record->secret);
    return errSecSuccess;
}

OSStatus FileStore::add(const ItemKey& name, std::string_view secret) {
    const std::size_t size = name.service.size() + name.account.size() + secret.size();
    if (size > kMostBytes)
        return errSecDataTooLarge;
    const FolderLock lock(_folder, kLock);
    if (lock.status() != errSecSuccess)
        return lock.status();
    ItemTable table;
    SecretBytes key;
    const OSStatus status = loadForChange(table, key);
    if (status != errSecSuccess)
        return status;
    if (table.find(name))
        return errSecDuplicateItem;
    if (table.bytes().size() + size > kMostBytes)
        return errSecDataTooLarge;
    table.add(name, secret);
    return save(table, key);
}

OSStatus FileStore::remove(const ItemKey& name) {
    const FolderLock lock(_folder, kLock);
    if (lock.status() != errSecSuccess)
        return lock.status();
    ItemTable table;
    SecretBytes key;
    const OSStatus status = open(table, key);
    if (status == errSecInvalidKeychain)
        return keepDamagedAside();
    if (status != errSecSuccess)
        return status;
    const auto record = table.find(name);
    if (!record)
        return errSecItemNotFound;
    table.remove(*record);
    return save(table, key);
}

OSStatus FileStore::list(std::vector<ItemName>& names) {
    ItemTable table;
    const OSStatus status = load(table);
    if (status == errSecItemNotFound)
        return errSecSuccess;
    for (ItemName& name : table.names())
        names.push_back(std::move(name));
    return status;
}

OSStatus FileStore::examine(bool& isLocked) {
    isLocked = false;
    ItemTable table;
    const OSStatus status = load(table);
    return status == errSecItemNotFound ? errSecSuccess : status;
}

}  // namespace security
