// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/Host.h"

#include "tools/ula/doctor/ShellWord.h"

#include <AppKit/Trash.h>
#include <array>
#include <filesystem>
#include <pwd.h>
#include <string_view>
#include <sys/timex.h>
#include <unistd.h>

namespace tav::tool::doctor {

namespace {

std::map<std::string, std::string> processEnvironment() {
    std::map<std::string, std::string> variables;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::size_t end = text.find('=');
        if (end != std::string_view::npos)
            variables.emplace(text.substr(0, end), text.substr(end + 1));
    }
    return variables;
}

Synchronisation kernelSynchronisation() {
    timex clock{};
    // In containers it is often forbidden.
    if (adjtimex(&clock) < 0)
        return Synchronisation::Unknown;
    return (clock.status & STA_UNSYNC) != 0 ? Synchronisation::No : Synchronisation::Yes;
}

}  // namespace

Host Host::ofProcess() {
    Host host;
    host.environment = processEnvironment();
    host.homeTrash = [] { return appkit::TrashPlaces::ofProcess().homeTrash; };
    host.now = [] { return std::time(nullptr); };
    host.synchronisation = kernelSynchronisation;
    return host;
}

std::string Host::variable(const std::string& name) const {
    const auto found = environment.find(name);
    return found == environment.end() ? std::string() : found->second;
}

std::string Host::ownCommand() const {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::read_symlink(program, error);
    const std::filesystem::path place = path.parent_path();
    const bool isInstalled = error || place == "/usr/bin" || place == "/usr/local/bin";
    return isInstalled ? "ula" : shellWord(path.string());
}

std::string userName() {
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 4096> text;
    if (getpwuid_r(geteuid(), &entry, text.data(), text.size(), &found) == 0 && found != nullptr)
        return found->pw_name;
    return std::to_string(geteuid());
}

std::string asRoot(const std::string& command) {
    return geteuid() == 0 ? command : "sudo " + command;
}

}  // namespace tav::tool::doctor
