// SPDX-License-Identifier: MIT
// ula doctor: what is broken in the session is found, and what it says mends it.
#include "tests/tool/DoctorTool.h"

#include "tests/support/DisplayServer.h"
#include "tests/support/Mounts.h"
#include "tests/support/SecretSession.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(DoctorTool, MissingDisplayIsFound) {
    const Finding finding = find("display");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "DISPLAY is not set: no window can be shown");
}

TEST_F(DoctorTool, DisplayThatIsThereIsProposedAndIsWell) {
    const DisplayServer server("800x600x24");
    const std::string name = std::getenv("DISPLAY");
    unsetenv("DISPLAY");
    const Finding finding = find("display");
    EXPECT_EQ(finding.message, "DISPLAY is not set: no window can be shown");
    ASSERT_THAT(finding.remedy, StartsWith("export DISPLAY=:"));
    EXPECT_EQ(findAfter("export DISPLAY=" + name, "display").state, "ok");
}

TEST_F(DoctorTool, DisplayServerThatHasDiedIsFound) {
    DisplayServer server("800x600x24");
    const std::string name = std::getenv("DISPLAY");
    EXPECT_EQ(find("display").message, "the X server of " + name + " answers");
    server.kill();
    const Finding finding = find("display");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "no X server is at " + name);
}

TEST_F(DoctorTool, DisplayServerThatRefusesTheUserIsFound) {
    const DisplayServer server("800x600x24");
    const std::string name = std::getenv("DISPLAY");
    ASSERT_EQ(mend("xhost -si:localuser:root -local: >/dev/null"), 0);
    const Finding finding = find("display");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "the X server of " + name + " refuses root");
    EXPECT_EQ(finding.remedy, "xhost +si:localuser:root  # as the user whose desktop it is");
}

TEST_F(DoctorTool, SessionWithoutABusIsFound) {
    const Finding finding = find("session-bus");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "this session has no bus");
    EXPECT_EQ(find("secret-service").state, "warning");
}

TEST_F(DoctorTool, WhatMendsAMissingBusMendsIt) {
    const std::string remedy = find("session-bus").remedy;
    ASSERT_THAT(remedy, HasSubstr("or: dbus-run-session PROGRAM"));
    const std::string session = "dbus-run-session --config-file=" + busWithoutServices() + " --";
    EXPECT_EQ(findAfter("", "session-bus", session).state, "ok");
}

TEST_F(DoctorTool, BusThatHasDiedIsFound) {
    SessionBus bus(busWithoutServices());
    EXPECT_EQ(find("session-bus").state, "ok");
    bus.kill();
    const Finding finding = find("session-bus");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_THAT(finding.message, StartsWith("no bus is at unix:"));
    EXPECT_THAT(finding.message, HasSubstr("Connection refused"));
}

TEST_F(DoctorTool, BusInTheRuntimeFolderIsTheSessions) {
    const SessionBus bus(busWithoutServices("unix:path=" + place("run/bus")));
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(find("session-bus").state, "ok");
}

TEST_F(DoctorTool, SecretServiceThatDoesNotAnswerIsWarnedOf) {
    const WithoutLeakCheck answersNothing;
    const SecretSession session;
    EXPECT_EQ(find("secret-service").message, "the Secret Service answers");
    session.silence();
    const Finding finding = findAtOnce("secret-service");
    EXPECT_EQ(finding.state, "warning");
    EXPECT_EQ(finding.message,
              "the Secret Service does not answer: passwords are kept in the encrypted file");
    EXPECT_EQ(find("session-bus").state, "ok");
}

TEST_F(DoctorTool, FirstPasswordOfAUserMakesAKeyring) {
    setenv("XDG_DATA_HOME", place("data").c_str(), 1);
    SecretSession session;
    session.beginWithoutKeyring();
    const Finding finding = find("secret-service");
    EXPECT_EQ(finding.state, "ok");
    EXPECT_THAT(finding.message, HasSubstr("the first password makes a keyring"));
}

TEST_F(DoctorTool, KeyringThatIsLockedIsSaidToAsk) {
    const SecretSession session;
    session.lock();
    const Finding finding = find("secret-service");
    EXPECT_EQ(finding.state, "ok");
    EXPECT_EQ(finding.message, "the Secret Service answers; to unlock the keyring, it will ask");
}

TEST_F(DoctorTool, LocaleThatIsNotInstalledIsFoundAndMended) {
    fs::create_directory(place("locales"));
    writeFile(place("locale.gen"), "");
    const BoundFolder installed(place("locales"), "/usr/lib/locale");
    const BoundFolder chosen(place("locale.gen"), "/etc/locale.gen");
    setenv("LC_ALL", "de_AT.UTF-8", 1);
    const Finding finding = find("locale");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "LC_ALL=de_AT.UTF-8: this locale is not installed");
    EXPECT_EQ(finding.remedy, "echo 'de_AT.UTF-8 UTF-8' | tee -a /etc/locale.gen && locale-gen");
    ASSERT_EQ(mend("{ " + finding.remedy + "; } >/dev/null"), 0);
    EXPECT_EQ(find("locale").state, "ok");
}

TEST_F(DoctorTool, LocaleWithoutUtf8IsWarnedOf) {
    setenv("LC_ALL", "C", 1);
    const Finding finding = find("locale");
    EXPECT_EQ(finding.state, "warning");
    EXPECT_EQ(finding.remedy, "export LC_ALL=C.UTF-8");
    EXPECT_EQ(findAfter(finding.remedy, "locale").state, "ok");
}

}  // namespace

}  // namespace tav::test
