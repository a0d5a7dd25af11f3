// SPDX-License-Identifier: MIT
#include "tests/tool/DoctorTool.h"

#include "tests/support/ChildProcess.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace tav::test {

namespace fs = std::filesystem;

namespace {

constexpr int kAttempts = 10;

}  // namespace

DoctorTool::DoctorTool() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "LANG",
                             "LOCPATH", "XDG_DATA_HOME"})
        unsetenv(name);
    fs::create_directories(home);
    fs::create_directories(place("run"));
    fs::permissions(place("run"), fs::perms::owner_all);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", place("run").c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    // Whatever else this computer has mounted.
    run({"volumes", "--mend"});
}

std::string DoctorTool::place(const std::string& name) const {
    return fs::canonical(folder.path()).string() + "/" + name;
}

std::string DoctorTool::busWithoutServices(const std::string& address) const {
    writeFile(place("bus.conf"), "<busconfig><type>session</type><listen>" + address +
                                     "</listen><policy context=\"default\">"
                                     "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                                     "<allow own=\"*\"/>"
                                     "</policy></busconfig>");
    return place("bus.conf");
}

bool DoctorTool::isSilent(const std::string& text) {
    for (const char* silence : {"does not answer", "do not answer", " in time"})
        if (text.find(silence) != std::string::npos)
            return true;
    return false;
}

DoctorTool::Finding DoctorTool::findAtOnce(const std::string& id) {
    return findIn(run({"doctor", "--json"}).output, id);
}

DoctorTool::Finding DoctorTool::find(const std::string& id) {
    Finding finding = findAtOnce(id);
    for (int attempt = 1; attempt < kAttempts && isSilent(finding.message); ++attempt)
        finding = findAtOnce(id);
    return finding;
}

ToolResult DoctorTool::examined(const std::vector<std::string>& arguments) {
    ToolResult result = run(arguments);
    for (int attempt = 1; attempt < kAttempts && isSilent(result.output); ++attempt)
        result = run(arguments);
    return result;
}

DoctorTool::Finding DoctorTool::findIn(const std::string& output, const std::string& id) {
    const nlohmann::json found = nlohmann::json::parse(output);
    for (const nlohmann::json& check : found["checks"])
        if (check["id"] == id)
            return {check["state"], check["message"], check["remedy"]};
    ADD_FAILURE() << "no check " << id << " in " << output;
    return {};
}

DoctorTool::Finding DoctorTool::findAfter(const std::string& remedy, const std::string& id,
                                          const std::string& within) const {
    Finding finding;
    for (int attempt = 0; attempt == 0 || (attempt < kAttempts && isSilent(finding.message));
         ++attempt) {
        mend(remedy + "\n" + within + " " ULA_TOOL_PATH " doctor --json > " + place("found"));
        finding = findIn(readFile(place("found")), id);
    }
    return finding;
}

int DoctorTool::mend(const std::string& remedy) {
    return ChildProcess([&] {
               execl("/bin/bash", "bash", "-c", remedy.c_str(), nullptr);
               _exit(127);
           })
        .wait();
}

}  // namespace tav::test
