// SPDX-License-Identifier: MIT
// GNUstep's alerts do not wrap their texts, have no box for not being asked again, and forget the
// key equivalents that their buttons are given. Those made by messages to NSAlert are of a class of
// our own here, with a window of our own when they run modally.
#import "AppKit/AppKit.h"

#import "AppKit/AlertPanel.h"

#include <cstdarg>
#include <libintl.h>
#include <objc/runtime.h>

@interface ULAAlert : NSAlert {
    NSButton* _box;
    BOOL _showsBox;
    int _answersAsPanel;  // 0: no; 2: with an alternate button
}
@end

namespace {

// The texts of the system are in the catalogue of the library that is built on it.
NSString* boxTitle() {
    return [NSString stringWithUTF8String:dgettext("ula", "Do not show this message again")];
}

NSString* okTitle() {
    return [NSString stringWithUTF8String:dgettext("ula", "OK")];
}

id allocateAlert(id self, SEL, NSZone* zone) {
    Class const type = self == [NSAlert class] ? [ULAAlert class] : self;
    return NSAllocateObject(type, 0, zone);
}

// Their answers are those of the alert panels that came before.
NSInteger panelAnswer(NSInteger number, bool hasAlternate) {
    if (number == 1 && hasAlternate)
        return NSAlertAlternateReturn;
    return number == 0 ? NSAlertDefaultReturn : NSAlertOtherReturn;
}

}  // namespace

@implementation ULAAlert

+ (void)load {
    Class const type = object_getClass(objc_getClass("NSAlert"));
    class_addMethod(type, @selector(allocWithZone:), reinterpret_cast<IMP>(allocateAlert), "@@:^v");
    // Taken over below, as its answers are.
    const SEL maker = @selector
        (alertWithMessageText:defaultButton:alternateButton:otherButton:informativeTextWithFormat:);
    method_setImplementation(class_getClassMethod(objc_getClass("NSAlert"), maker),
                             method_getImplementation(class_getClassMethod(self, maker)));
}

+ (NSAlert*)alertWithMessageText:(NSString*)message
                   defaultButton:(NSString*)defaultButton
                 alternateButton:(NSString*)alternateButton
                     otherButton:(NSString*)otherButton
       informativeTextWithFormat:(NSString*)format, ... {
    ULAAlert* const alert = [[[ULAAlert alloc] init] autorelease];
    va_list values;
    va_start(values, format);
    if (format != nil)
        [alert setInformativeText:[[[NSString alloc] initWithFormat:format
                                                          arguments:values] autorelease]];
    va_end(values);
    [alert setMessageText:message];
    [alert addButtonWithTitle:defaultButton != nil ? defaultButton : okTitle()];
    // Escape is for the one that leaves all as it is.
    if (alternateButton != nil)
        [[alert addButtonWithTitle:alternateButton] setKeyEquivalent:@"\033"];
    if (otherButton != nil)
        [alert addButtonWithTitle:otherButton];
    alert->_answersAsPanel = alternateButton != nil ? 2 : 1;
    return alert;
}

- (void)dealloc {
    [_box release];
    [super dealloc];
}

- (BOOL)showsSuppressionButton {
    return _showsBox;
}

- (void)setShowsSuppressionButton:(BOOL)shows {
    _showsBox = shows;
}

- (NSButton*)suppressionButton {
    if (_box == nil) {
        _box = [[NSButton alloc] init];
        [_box setButtonType:NSSwitchButton];
        [_box setTitle:boxTitle()];
    }
    return _box;
}

- (NSInteger)runModal {
    if ([[self buttons] count] == 0)
        [self addButtonWithTitle:okTitle()];
    NSButton* const box = _showsBox ? [self suppressionButton] : nil;
    ULAAlertPanel* const panel = [[[ULAAlertPanel alloc] initWithAlert:self box:box] autorelease];
    const NSInteger answer = [panel runUntilAnswered];
    if (_answersAsPanel != 0)
        return answer < 0 ? NSAlertErrorReturn : panelAnswer(answer, _answersAsPanel == 2);
    return answer < 0 ? NSAlertErrorReturn : NSAlertFirstButtonReturn + answer;
}

@end
