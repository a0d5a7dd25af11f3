// SPDX-License-Identifier: MIT
#include "Security/Keychain/ItemTable.h"

#include "Security/Keychain/LittleEndian.h"

#include <cstring>

namespace security {

namespace {

constexpr std::size_t kLengths = 12;

std::uint8_t* append(std::uint8_t* to, std::string_view bytes) {
    if (!bytes.empty())
        std::memcpy(to, bytes.data(), bytes.size());
    return to + bytes.size();
}

}  // namespace

std::optional<ItemTable::Record> ItemTable::recordAt(std::size_t begin) const {
    const std::string_view rest = _records.view().substr(begin);
    if (rest.size() < kLengths)
        return std::nullopt;
    const std::uint8_t* const lengths = _records.data() + begin;
    const std::size_t service = readNumber(lengths);
    const std::size_t account = readNumber(lengths + 4);
    const std::size_t secret = readNumber(lengths + 8);
    const std::size_t size = kLengths + service + account + secret;
    if (size > rest.size())
        return std::nullopt;
    return Record{rest.substr(kLengths, service), rest.substr(kLengths + service, account),
                  rest.substr(kLengths + service + account, secret), begin, begin + size};
}

bool ItemTable::isWhole() const {
    std::size_t at = 0;
    while (at < _records.size()) {
        const std::optional<Record> record = recordAt(at);
        if (!record)
            return false;
        at = record->end;
    }
    return true;
}

std::optional<ItemTable::Record> ItemTable::find(const ItemKey& name) const {
    std::optional<Record> record = recordAt(0);
    while (record && (record->service != name.service || record->account != name.account))
        record = recordAt(record->end);
    return record;
}

std::vector<ItemName> ItemTable::names() const {
    std::vector<ItemName> names;
    for (std::optional<Record> record = recordAt(0); record; record = recordAt(record->end))
        names.push_back({std::string(record->service), std::string(record->account)});
    return names;
}

void ItemTable::add(const ItemKey& name, std::string_view secret) {
    const std::size_t size = kLengths + name.service.size() + name.account.size() + secret.size();
    SecretBytes grown(_records.size() + size);
    std::uint8_t* to = append(grown.data(), _records.view());
    writeNumber(to, name.service.size());
    writeNumber(to + 4, name.account.size());
    writeNumber(to + 8, secret.size());
    append(append(append(to + kLengths, name.service), name.account), secret);
    _records = std::move(grown);
}

void ItemTable::remove(const Record& record) {
    SecretBytes rest(_records.size() - (record.end - record.begin));
    append(append(rest.data(), _records.view().substr(0, record.begin)),
           _records.view().substr(record.end));
    _records = std::move(rest);
}

}  // namespace security
