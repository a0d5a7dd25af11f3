// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/SecretServiceCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/BusConnection.h"
#include "tools/ula/doctor/Host.h"

namespace tav::tool::doctor {

namespace {

constexpr const char* kService = "org.freedesktop.secrets";
constexpr BusCall kDefaultKeyring = {kService, "/org/freedesktop/secrets",
                                     "org.freedesktop.Secret.Service", "ReadAlias", "default"};
constexpr BusProperty kLocked = {kService, "org.freedesktop.Secret.Collection", "Locked"};

std::string withConsequence(const std::string& complaint) {
    return translated("%1: passwords are kept in the encrypted file", complaint);
}

Finding withoutAnswer(const std::string& error) {
    if (error.empty())
        return {CheckState::Warning, withConsequence(translated("there is no Secret Service")),
                asRoot("apt-get install gnome-keyring  # " + translated("then log in again"))};
    return {CheckState::Warning,
            withConsequence(translated("the Secret Service fails (%1)", error)),
            translated("log in again")};
}

Finding examine(const Host& host) {
    const std::string address = sessionBusAddress(host);
    BusConnection bus(address);
    if (!bus.isOpen())
        return {CheckState::Warning,
                withConsequence(translated("no Secret Service without a session bus")),
                translated("mend the session bus")};
    const auto keyring = bus.askForPath(kDefaultKeyring);
    if (!keyring)
        return withoutAnswer(bus.error());
    // No such collection.
    if (*keyring == "/")
        return {CheckState::Ok,
                translated("the Secret Service answers; the first password makes a keyring")};
    // On desktops without a password at login that is usual.
    if (bus.isSet(*keyring, kLocked))
        return {CheckState::Ok,
                translated("the Secret Service answers; to unlock the keyring, it will ask")};
    return {CheckState::Ok, translated("the Secret Service answers")};
}

}  // namespace

Check secretServiceCheck() {
    return {"secret-service",
            examine,
            {CheckState::Warning, withConsequence(translated("the Secret Service does not answer")),
             translated("log in again")}};
}

}  // namespace tav::tool::doctor
