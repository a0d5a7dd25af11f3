// SPDX-License-Identifier: MIT
// Light Table: browses the pictures of disks and imports from cameras. Needs a display.
#import <AppKit/AppKit.h>

#import "examples/lighttable/ApplicationDelegate.h"
#import "examples/lighttable/ApplicationIcon.h"
#import "examples/lighttable/MainMenu.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <ula/InstanceGuard.h>
#include <ula/MainThreadCaller.h>
#include <ula/MoveToApplicationsFolder.h>
#include <ula/NSPathUtil.h>
#include <ula/ScopedARPool.h>
#include <ula/SystemInformation.h>
#include <vector>

namespace {

using namespace lighttable;
using namespace tav::ula;

constexpr const char* kIdentifier = "org.example.lighttable";

int complain(const std::string& text, int exitCode) {
    std::fprintf(stderr, "lighttable: %s\n", text.c_str());
    return exitCode;
}

/// Menus in the window and scrollers at the right, as desktops on Linux have them. Nobody may be
/// there to draw frames around the window while a script takes pictures of it.
void chooseStyle(bool isScene) {
    NSMutableDictionary* const defaults = [NSMutableDictionary dictionary];
    [defaults setObject:@"NSWindows95InterfaceStyle" forKey:@"NSInterfaceStyleDefault"];
    [defaults setObject:@"NSWindows95InterfaceStyle" forKey:@"NSMenuInterfaceStyle"];
    // The theme's grey ones, as light as the window.
    [defaults setObject:@"0.957 0.961 0.969" forKey:@"windowBackgroundColor"];
    [defaults setObject:@"0.957 0.961 0.969" forKey:@"controlBackgroundColor"];
    [defaults setObject:@"0.835 0.89 0.984" forKey:@"selectedTextBackgroundColor"];
    if (isScene)
        [defaults setObject:@"NO" forKey:@"GSX11HandlesWindowDecorations"];
    [[NSUserDefaults standardUserDefaults] registerDefaults:defaults];
}

/// Packages make the link; in a tree that was only built nobody may have.
bool isStartupDiskInVolumes() {
    std::error_code error;
    return std::filesystem::equivalent("/Volumes/" + NSPathUtilNameSpace::nameForRootDisk(), "/",
                                       error);
}

int run(const Options& options) {
    if (SystemInformation::getDisplayInfo().empty())
        return complain("there is no display: set DISPLAY to a running X server", 1);
    if (!isStartupDiskInVolumes())
        return complain("the disks are not in /Volumes: run scripts/make-volumes as root", 1);
    const bool isScene = !options.screenshot.empty();
    chooseStyle(isScene);
    [NSApplication sharedApplication];
    [NSApp setApplicationIconImage:makeApplicationIcon()];
    if (options.mayMove && !isScene)
        moveToApplicationsFolder();
    [NSApp setMainMenu:makeMainMenu()];
    ApplicationDelegate* const delegate = [[ApplicationDelegate alloc] initWithOptions:options];
    [NSApp setDelegate:delegate];
    [NSApp run];
    const int exitCode = [delegate exitCode];
    [delegate finish];
    return exitCode;
}

/// On the guard's thread.
void passOn(const InstanceGuard::Arguments& arguments) {
    MainThreadCaller::instance()->callAsync([arguments] {
        const ScopedARPool pool;
        [static_cast<ApplicationDelegate*>([NSApp delegate]) serve:arguments];
    });
}

int runAsOnlyOne(const Options& options) {
    InstanceGuard::Arguments arguments;
    if (options.isQuitWanted)
        arguments = {"--quit"};
    else if (!options.folder.empty())
        arguments = {options.folder};
    const InstanceClaim claim = InstanceGuard::claim(kIdentifier, arguments, passOn);
    if (claim.state == InstanceState::Forwarded)
        return 0;
    if (claim.state == InstanceState::Running)
        return complain("it runs already: " + claim.error, 1);
    if (options.isQuitWanted)
        return complain("it does not run", 1);
    if (claim.state == InstanceState::Failed)
        complain("cannot tell whether it runs already: " + claim.error, 0);
    return run(options);
}

}  // namespace

int main(int count, char** words) {
    const ScopedARPool pool;
    MainThreadCaller::instance();
    const Options options = Options::parse({words + 1, words + count});
    if (options.isHelpWanted)
        return std::fputs(Options::usage(), stdout) < 0;
    if (!options.problem.empty())
        return complain(options.problem + "; --help tells more", 2);
    return options.screenshot.empty() ? runAsOnlyOne(options) : run(options);
}
