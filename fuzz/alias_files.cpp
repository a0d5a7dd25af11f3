// SPDX-License-Identifier: MIT
// Reads the text as everything an alias file can be. What is found must lie within the text, and
// lead nowhere but downwards.
#include "CoreServices/AliasRecord.h"
#include "CoreServices/BookmarkData.h"
#include "CoreServices/DesktopLink.h"
#include "CoreServices/ResourceFork.h"
#include "fuzz/Expect.h"

#include <cstdint>

namespace {

using namespace coreservices;

void check(const std::optional<MacAlias>& alias) {
    if (!alias)
        return;
    for (const std::string& name : alias->components)
        expect(isPlainComponent(name));
    expect(!alias->components.empty() || alias->kind == AliasKind::Disk);
}

void check(const std::optional<DesktopLink>& link) {
    if (!link)
        return;
    expect(link->path.empty() != link->url.empty());
    expect(link->path.empty() || link->path[0] == '/');
    expect(link->path.find('\0') == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    check(parseBookmark(bytes));
    check(parseAliasRecord(bytes));
    check(parseDesktopLink(bytes));
    isOtherDesktopEntry(bytes);
    if (auto companion = parseCompanion(bytes))
        if (auto record = firstResource(companion->resourceFork, 0x616C6973))
            check(parseAliasRecord(*record));
    return 0;
}
