// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/SessionBusCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/BusConnection.h"
#include "tools/ula/doctor/Host.h"

namespace tav::tool::doctor {

namespace {

std::string remedy() {
    return translated("log in again, or: %1", std::string("dbus-run-session PROGRAM"));
}

std::string installing() {
    return asRoot("apt-get install dbus-user-session  # " +
                  translated("then log in again, or: %1", std::string("dbus-run-session PROGRAM")));
}

Finding examine(const Host& host) {
    const std::string address = sessionBusAddress(host);
    if (address.empty())
        return {CheckState::Problem, translated("this session has no bus"), installing()};
    const BusConnection bus(address);
    if (bus.isOpen())
        return {CheckState::Ok, translated("the session bus answers")};
    return {CheckState::Problem, translated("no bus is at %1: %2", address, bus.error()), remedy()};
}

}  // namespace

Check sessionBusCheck() {
    return {"session-bus",
            examine,
            {CheckState::Problem, translated("the session bus does not answer"), remedy()}};
}

}  // namespace tav::tool::doctor
