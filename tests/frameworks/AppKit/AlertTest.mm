// SPDX-License-Identifier: MIT
// Alerts, answered with the events of a mouse and a keyboard. Needs an X server.
#import <AppKit/AppKit.h>

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <objc/runtime.h>

@interface PlainSubclass : NSAlert
@end

@implementation PlainSubclass
@end

namespace {

using RunModal = NSInteger (*)(id, SEL, NSWindow*);

RunModal runModalBefore = nullptr;
std::function<void(NSWindow*)> answerer;

NSInteger runModal(id self, SEL selector, NSWindow* window) {
    [window orderFront:nil];
    [window display];
    answerer(window);
    return runModalBefore(self, selector, window);
}

void press(NSWindow* window, NSString* key) {
    for (const NSEventType type : {NSKeyDown, NSKeyUp})
        [NSApp postEvent:[NSEvent keyEventWithType:type
                                                location:NSZeroPoint
                                           modifierFlags:0
                                               timestamp:0
                                            windowNumber:[window windowNumber]
                                                 context:nil
                                              characters:key
                             charactersIgnoringModifiers:key
                                               isARepeat:NO
                                                 keyCode:0]
                 atStart:NO];
}

void click(NSView* view) {
    const NSRect frame = [view frame];
    for (const NSEventType type : {NSLeftMouseDown, NSLeftMouseUp})
        [NSApp postEvent:[NSEvent mouseEventWithType:type
                                            location:NSMakePoint(NSMidX(frame), NSMidY(frame))
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[[view window] windowNumber]
                                             context:nil
                                         eventNumber:0
                                          clickCount:1
                                            pressure:1]
                 atStart:NO];
}

class Alert : public testing::Test {
protected:
    Alert() : _pool([[NSAutoreleasePool alloc] init]) {
        [[NSUserDefaults standardUserDefaults]
            registerDefaults:[NSDictionary dictionaryWithObject:@"NO"
                                                         forKey:@"GSX11HandlesWindowDecorations"]];
        [NSApplication sharedApplication];
        if (runModalBefore != nullptr)
            return;
        const Method method =
            class_getInstanceMethod([NSApplication class], @selector(runModalForWindow:));
        runModalBefore = reinterpret_cast<RunModal>(
            method_setImplementation(method, reinterpret_cast<IMP>(runModal)));
    }
    ~Alert() override { [_pool release]; }

    static NSAlert* make(std::initializer_list<NSString*> titles) {
        NSAlert* const alert = [[[NSAlert alloc] init] autorelease];
        [alert setMessageText:@"Message"];
        [alert setInformativeText:@"Explanation"];
        for (NSString* title : titles)
            [alert addButtonWithTitle:title];
        return alert;
    }
    static NSInteger answerTo(NSAlert* alert, unsigned button) {
        answerer = [=](NSWindow*) { click([[alert buttons] objectAtIndex:button]); };
        return [alert runModal];
    }

private:
    NSAutoreleasePool* _pool;
};

TEST_F(Alert, AnswersWithTheNumberOfTheButton) {
    for (unsigned i = 0; i < 4; ++i)
        EXPECT_EQ(answerTo(make({@"One", @"Two", @"Three", @"Four"}), i),
                  NSAlertFirstButtonReturn + static_cast<NSInteger>(i));
}

TEST_F(Alert, ReturnAndTheGivenKeysPressTheirButtons) {
    NSAlert* const alert = make({@"One", @"Two"});
    [[[alert buttons] objectAtIndex:1] setKeyEquivalent:@"\033"];
    answerer = [](NSWindow* window) { press(window, @"\r"); };
    EXPECT_EQ([alert runModal], NSAlertFirstButtonReturn);
    answerer = [](NSWindow* window) { press(window, @"\033"); };
    EXPECT_EQ([alert runModal], NSAlertSecondButtonReturn);
}

TEST_F(Alert, WithoutAButtonThereIsOne) {
    NSAlert* const alert = make({});
    answerer = [](NSWindow* window) { press(window, @"\r"); };
    EXPECT_EQ([alert runModal], NSAlertFirstButtonReturn);
    EXPECT_TRUE([[[[alert buttons] objectAtIndex:0] title] isEqualToString:@"OK"]);
}

TEST_F(Alert, TheBoxKeepsWhatWasClicked) {
    NSAlert* const alert = make({@"One"});
    EXPECT_FALSE([alert showsSuppressionButton]);
    [alert setShowsSuppressionButton:YES];
    EXPECT_EQ([[alert suppressionButton] state], NSOffState);
    answerer = [=](NSWindow*) {
        click([alert suppressionButton]);
        click([[alert buttons] objectAtIndex:0]);
    };
    [alert runModal];
    EXPECT_EQ([[alert suppressionButton] state], NSOnState);
    [alert runModal];
    EXPECT_EQ([[alert suppressionButton] state], NSOffState);
}

TEST_F(Alert, WithoutBeingShownTheBoxIsNotInTheWindow) {
    NSAlert* const alert = make({@"One"});
    NSButton* const box = [alert suppressionButton];
    answerer = [=](NSWindow*) {
        EXPECT_EQ([box superview], nil);
        click([[alert buttons] objectAtIndex:0]);
    };
    [alert runModal];
}

TEST_F(Alert, ThoseWithThreeButtonsAtOnceAnswerAsPanels) {
    const NSInteger answers[] = {NSAlertDefaultReturn, NSAlertAlternateReturn, NSAlertOtherReturn};
    for (unsigned i = 0; i < 3; ++i) {
        NSAlert* const alert = [NSAlert alertWithMessageText:@"Message"
                                               defaultButton:@"Yes"
                                             alternateButton:@"No"
                                                 otherButton:@"Perhaps"
                                   informativeTextWithFormat:@"%d of %@", 4, @"five"];
        EXPECT_TRUE([[alert informativeText] isEqualToString:@"4 of five"]);
        EXPECT_EQ(answerTo(alert, i), answers[i]);
    }
    NSAlert* const two = [NSAlert alertWithMessageText:@"Message"
                                         defaultButton:nil
                                       alternateButton:nil
                                           otherButton:@"Perhaps"
                             informativeTextWithFormat:@""];
    EXPECT_TRUE([[[[two buttons] objectAtIndex:0] title] isEqualToString:@"OK"]);
    EXPECT_EQ(answerTo(two, 1), NSAlertOtherReturn);
}

TEST_F(Alert, LongTextsWrap) {
    NSAlert* const alert = make({@"One"});
    NSMutableString* const text = [NSMutableString string];
    for (int i = 0; i < 60; ++i)
        [text appendString:@"many words "];
    [alert setInformativeText:text];
    answerer = [=](NSWindow* window) {
        EXPECT_LT(NSWidth([window frame]), 600);
        EXPECT_GT(NSHeight([window frame]), 200);
        click([[alert buttons] objectAtIndex:0]);
    };
    [alert runModal];
}

TEST_F(Alert, SubclassesAreLeftAlone) {
    NSAlert* const alert = [[[PlainSubclass alloc] init] autorelease];
    EXPECT_EQ([alert class], [PlainSubclass class]);
    EXPECT_FALSE([alert respondsToSelector:@selector(suppressionButton)]);
}

TEST_F(Alert, TheVersionIsYoungerThanWhatProgramsAskFor) {
    EXPECT_GT(std::floor(NSAppKitVersionNumber), 949);
}

}  // namespace
