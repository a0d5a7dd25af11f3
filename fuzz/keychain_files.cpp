// SPDX-License-Identifier: MIT
// The encrypted keychain file, its key, and the items within, which a right key may have sealed.
#include "Security/Keychain/ItemTable.h"
#include "Security/Keychain/SealedFile.h"
#include "fuzz/Expect.h"

#include <sodium.h>

namespace {

using namespace security;

void readItems(std::string_view bytes) {
    ItemTable table{SecretBytes(bytes)};
    table.find({"service", "account"});
    const std::size_t count = table.names().size();
    if (!table.isWhole())
        return;
    const ItemName name{"fuzzed", std::string(bytes.substr(0, 3))};
    const auto before = table.find(name);
    table.add(name, bytes);
    expect(table.isWhole() && table.names().size() == count + 1);
    if (!before)
        expect(table.find(name)->secret == bytes);
    table.remove(*table.find(name));
    expect(table.isWhole() && table.names().size() == count);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isStarted = sodium_init() >= 0;
    static const SecretBytes key = makeKey();
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    expect(isStarted);
    SecretBytes plain;
    expect(unseal(bytes, key, plain) != SealState::Intact);
    examineKey(bytes);
    readItems(bytes);
    expect(unseal(seal(SecretBytes(bytes), key), key, plain) == SealState::Intact);
    expect(plain.view() == bytes);
    return 0;
}
