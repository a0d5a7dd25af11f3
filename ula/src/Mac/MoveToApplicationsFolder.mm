// SPDX-License-Identifier: MIT
#include "ula/MoveToApplicationsFolder.h"

#include "ula/ScopedARPool.h"
#include "ula/src/Mac/AppKitVersion.h"
#include "ula/src/Mac/MoveAlerts.h"
#include "ula/src/Mac/MoveCommands.h"
#include "ula/src/Mac/MovePaths.h"
#include "ula/src/Mac/MovePlan.h"
#include "ula/src/Mac/PrivilegedCopy.h"

#include <cstdlib>

namespace tav::ula {

namespace {

enum class Outcome { Copied, Cancelled, Failed };

NSTask* run(NSString* program, NSArray* arguments) {
    return [NSTask launchedTaskWithLaunchPath:program arguments:arguments];
}

NSTask* runShell(NSString* command) {
    return run(@"/bin/sh", [NSArray arrayWithObjects:@"-c", command, nil]);
}

bool isRunning(NSString* bundle) {
    if (!isAppKitNewerThan(kAppKit10_5)) {
        NSTask* const search = runShell(runningCommand(bundle));
        [search waitUntilExit];
        return [search terminationStatus] == 0;
    }
    for (NSRunningApplication* application in [[NSWorkspace sharedWorkspace] runningApplications])
        if ([[[application executableURL] path] hasPrefix:bundle])
            return true;
    return false;
}

[[noreturn]] void switchToRunning(NSString* bundle) {
    NSLog(@"INFO -- Switching to an already running version");
    [run(@"/usr/bin/open", [NSArray arrayWithObject:bundle]) waitUntilExit];
    std::exit(0);
}

/// Makes room for the copy. Fails: false when what is there cannot be moved away.
bool clearDestination(NSString* destination) {
    if (![[NSFileManager defaultManager] fileExistsAtPath:destination])
        return true;
    if (!askToReplace())
        std::exit(0);
    if (isRunning(destination))
        switchToRunning(destination);
    return trashPath(destination);
}

bool copyBundle(const MovePlan& plan) {
    // Older ones cannot copy and tell what went wrong.
    if (!isAppKitNewerThan(kAppKit10_4))
        return false;
    NSError* error = nil;
    if ([[NSFileManager defaultManager] copyItemAtPath:plan.source
                                                toPath:plan.destination
                                                 error:&error])
        return true;
    NSLog(@"ERROR -- Could not copy '%@' to '%@' (%@)", plan.source, plan.destination, error);
    return false;
}

Outcome copyAsUser(const MovePlan& plan) {
    if (!clearDestination(plan.destination))
        return Outcome::Failed;
    if (copyBundle(plan))
        return Outcome::Copied;
    NSLog(@"ERROR -- Could not copy myself to %@", plan.destination);
    return Outcome::Failed;
}

Outcome copyAsAdministrator(const MovePlan& plan) {
    switch (copyWithPrivileges(plan.source, plan.destination)) {
    case PrivilegedCopy::Done:
        return Outcome::Copied;
    case PrivilegedCopy::Cancelled:
        NSLog(@"INFO -- Not moving because user canceled authorization");
        return Outcome::Cancelled;
    case PrivilegedCopy::Failed:
        break;
    }
    // The text names this folder whichever was chosen: support staff search for it.
    NSLog(@"ERROR -- Could not copy myself to /Applications with authorization");
    return Outcome::Failed;
}

[[noreturn]] void relaunch(const MovePlan& plan) {
    if (!plan.isFromReadOnlyImage() && !trashPath(plan.source))
        NSLog(@"WARNING -- Could not delete application after moving it to Applications folder");
    runShell(relaunchCommand([[NSProcessInfo processInfo] processIdentifier], plan.destination));
    if (plan.isFromReadOnlyImage())
        runShell(detachCommand([plan.source stringByDeletingLastPathComponent]));
    std::exit(0);
}

void move() {
    const ScopedARPool pool;
    if (isMoveSuppressed())
        return;
    NSString* const source = [[NSBundle mainBundle] bundlePath];
    if (isInApplicationsFolder(source))
        return;
    const MovePlan plan = makeMovePlan(source);
    if (!askToMove(plan))
        return;
    NSLog(@"INFO -- Moving myself to the Applications folder");
    const Outcome outcome = plan.needsAuthorization ? copyAsAdministrator(plan) : copyAsUser(plan);
    if (outcome == Outcome::Copied)
        relaunch(plan);
    if (outcome == Outcome::Failed)
        tellThatMoveFailed();
}

}  // namespace

void moveToApplicationsFolder() {
    try {
        move();
    } catch (...) {
        // What the platform throws where it has no display, or no memory.
        NSLog(@"ERROR -- Could not move to Applications folder");
    }
}

}  // namespace tav::ula
