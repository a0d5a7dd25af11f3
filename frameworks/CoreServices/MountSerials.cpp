// SPDX-License-Identifier: MIT
#include "CoreServices/MountSerials.h"

#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace coreservices {

namespace {

// Linux 6.8; the headers of older systems lack them. The numbers are those of every architecture
// but alpha.
#ifdef SYS_statmount
constexpr long kStatMount = SYS_statmount;
constexpr long kListMount = SYS_listmount;
#else
constexpr long kStatMount = 457;
constexpr long kListMount = 458;
#endif

constexpr uint64_t kFromTheRoot = UINT64_MAX;
constexpr uint64_t kBasicFacts = 2;

struct Request {
    uint32_t size = sizeof(Request);
    uint32_t spare = 0;
    uint64_t serial;
    uint64_t parameter;  // listing: the last one of the call before; asking: what is asked for
};

struct Facts {
    uint32_t size;
    uint32_t options;
    uint64_t filled;
    uint32_t deviceMajor;
    uint32_t deviceMinor;
    uint64_t magic;
    uint32_t flags;
    uint32_t type;
    uint64_t serial;
    uint64_t parentSerial;
    uint32_t id;
    uint32_t parentId;
    uint64_t others[56];
};
static_assert(sizeof(Facts) == 512);

std::vector<uint64_t> allSerials() {
    constexpr size_t kStep = 256;
    std::vector<uint64_t> serials;
    for (long count = kStep; count == kStep;) {
        const size_t begin = serials.size();
        const Request request{.serial = kFromTheRoot,
                              .parameter = begin == 0 ? 0 : serials[begin - 1]};
        serials.resize(begin + kStep);
        count = syscall(kListMount, &request, serials.data() + begin, kStep, 0);
        serials.resize(begin + (count > 0 ? static_cast<size_t>(count) : 0));
    }
    return serials;
}

}  // namespace

std::map<uint64_t, uint64_t> mountSerials() {
    std::map<uint64_t, uint64_t> serials;
    for (uint64_t serial : allSerials()) {
        const Request request{.serial = serial, .parameter = kBasicFacts};
        Facts facts{};
        // It may have gone since.
        if (syscall(kStatMount, &request, &facts, sizeof facts, 0) == 0)
            serials[facts.id] = serial;
    }
    return serials;
}

}  // namespace coreservices
