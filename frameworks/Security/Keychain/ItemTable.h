// SPDX-License-Identifier: MIT
#pragma once

#include "Security/Keychain/SecretBytes.h"
#include "Security/Keychain/Store.h"

#include <optional>
#include <string_view>
#include <vector>

namespace security {

// The items of the encrypted file as they are before they are sealed: one record after the other,
// each the lengths of service, account and secret as 32-bit numbers, low byte first, and then these
// three. They are never taken apart in memory: what is not sealed stays in `SecretBytes`.
class ItemTable {
public:
    struct Record {
        std::string_view service;
        std::string_view account;
        std::string_view secret;
        std::size_t begin;
        std::size_t end;
    };

    ItemTable() = default;
    explicit ItemTable(SecretBytes records) : _records(std::move(records)) {}

    // Fails: false when the records do not fill the bytes exactly.
    bool isWhole() const;
    std::optional<Record> find(const ItemKey& name) const;
    std::vector<ItemName> names() const;

    void add(const ItemKey& name, std::string_view secret);
    void remove(const Record& record);

    const SecretBytes& bytes() const { return _records; }

private:
    std::optional<Record> recordAt(std::size_t begin) const;

    SecretBytes _records;
};

}  // namespace security
