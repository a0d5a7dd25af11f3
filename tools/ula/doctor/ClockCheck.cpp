// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/ClockCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"

#include <array>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::tool::doctor {

namespace {

// Clocks that were set to local time are up to fourteen hours early.
constexpr std::time_t kTolerance = 24 * 60 * 60;

std::string dateText(std::time_t time) {
    tm date{};
    std::array<char, 32> text{};
    gmtime_r(&time, &date);
    std::strftime(text.data(), text.size(), "%Y-%m-%d", &date);
    return text.data();
}

/// Without systemd another program has to ask the time servers.
std::string remedyFor(const Host& host) {
    const bool hasSystemd = access(host.services.c_str(), F_OK) == 0;
    return asRoot(hasSystemd ? "timedatectl set-ntp true" : "apt-get install chrony");
}

/// When the program was made, as far as its file tells; 0 else.
std::time_t dateOfProgram(const Host& host) {
    struct stat facts {};
    return stat(host.program.c_str(), &facts) == 0 ? facts.st_mtime : 0;
}

Finding examine(const Host& host) {
    const std::time_t now = host.now();
    const std::time_t made = dateOfProgram(host);
    if (now + kTolerance < made)
        return {CheckState::Problem,
                translated("the clock says %1, but this program was made on %2", dateText(now),
                           dateText(made)),
                remedyFor(host)};
    switch (host.synchronisation()) {
    case Synchronisation::Yes:
        return {CheckState::Ok, translated("the clock is kept by a time server")};
    case Synchronisation::No:
        return {CheckState::Warning, translated("no time server keeps the clock: it drifts"),
                remedyFor(host)};
    default:
        return {CheckState::Unknown,
                translated("the kernel does not tell whether the clock is kept right")};
    }
}

}  // namespace

Check clockCheck() {
    return {
        "clock", examine, {CheckState::Unknown, translated("the clock could not be read in time")}};
}

}  // namespace tav::tool::doctor
