// SPDX-License-Identifier: MIT
#include "ula/src/Mac/MoveAlerts.h"

#import "ula/ObjCHelper.h"
#include "ula/foundation/i18n/Gettext.h"
#include "ula/src/Mac/AppKitVersion.h"

namespace tav::ula {

namespace {

NSString* const kSuppression = @"moveToApplicationsFolderAlertSuppress";
NSString* const kEscape = @"\033";

NSString* translated(const char* text) {
    return [NSString fromUTF8String:i18n::gettext(text)];
}

NSString* question(const MovePlan& plan) {
    return plan.isHomeFolder ? translated("Move to Applications folder in your Home folder?")
                             : translated("Move to Applications folder?");
}

/// At most one of the notes.
NSString* explanation(const MovePlan& plan) {
    NSString* const text = translated(
        "This version of the application is being run from a location other than the Applications "
        "folder. Would you like to move this version to the Applications folder?");
    NSString* note = nil;
    if (plan.needsAuthorization)
        note = translated("Note that this will require an administrator password.");
    else if (isInDownloadsFolder(plan.source))
        note = translated("This will keep your Downloads folder uncluttered.");
    return note == nil ? text : [NSString stringWithFormat:@"%@ %@", text, note];
}

void showSuppressionBox(NSAlert* alert) {
    [alert setShowsSuppressionButton:YES];
    NSCell* const cell = [[alert suppressionButton] cell];
    [cell setControlSize:NSSmallControlSize];
    [cell setFont:[NSFont systemFontOfSize:[NSFont smallSystemFontSize]]];
}

NSAlert* moveAlert(const MovePlan& plan) {
    NSAlert* const alert = [[[NSAlert alloc] init] autorelease];
    [alert setMessageText:question(plan)];
    [alert setInformativeText:explanation(plan)];
    [alert addButtonWithTitle:translated("Move to Applications Folder")];
    [[alert addButtonWithTitle:translated("Do Not Move")] setKeyEquivalent:kEscape];
    if (isAppKitNewerThan(kAppKit10_4))
        showSuppressionBox(alert);
    return alert;
}

/// Without a box to check, one no is a no for good.
bool isNoForGood(NSAlert* alert) {
    return !isAppKitNewerThan(kAppKit10_4) || [[alert suppressionButton] state] == NSOnState;
}

void suppress() {
    NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
    [defaults setBool:YES forKey:kSuppression];
    [defaults synchronize];
}

}  // namespace

bool isMoveSuppressed() {
    return [[NSUserDefaults standardUserDefaults] boolForKey:kSuppression];
}

bool askToMove(const MovePlan& plan) {
    NSApplication* const application = [NSApplication sharedApplication];
    NSAlert* const alert = moveAlert(plan);
    if (![application isActive])
        [application activateIgnoringOtherApps:YES];
    if ([alert runModal] == NSAlertFirstButtonReturn)
        return true;
    if (isNoForGood(alert))
        suppress();
    return false;
}

bool askToReplace() {
    NSString* const text = translated(
        "An application with the same name already exists in the Applications folder. Do you want "
        "to continue and move the existing application to the Trash?");
    NSAlert* const alert = [NSAlert alertWithMessageText:translated("Application already exists")
                                           defaultButton:translated("Continue")
                                         alternateButton:translated("Cancel")
                                             otherButton:nil
                               informativeTextWithFormat:@"%@", text];
    return [alert runModal] == NSAlertDefaultReturn;
}

void tellThatMoveFailed() {
    NSAlert* const alert = [[[NSAlert alloc] init] autorelease];
    [alert setMessageText:translated("Could not move to Applications folder")];
    [alert runModal];
}

}  // namespace tav::ula
