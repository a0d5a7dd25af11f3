// SPDX-License-Identifier: MIT
// An application that moves, to be copied into bundles. What happens is written to the pipe that
// MOVE_REPORT names, a line each: alerts as they are on the screen, lines of the platform's log,
// tasks and privileged commands before they are run.
//
// Each alert is answered with the next word of MOVE_ANSWERS: the number of a button, "box" and such
// a number, "escape", or "late" and a number, for which the file MOVE_LATE appears first. What
// answers is the events of a mouse and a keyboard. MOVE_APPKIT is the version of AppKit.
#import <AppKit/AppKit.h>

#include "ula/MoveToApplicationsFolder.h"
#include "ula/foundation/i18n/Gettext.h"

#include <Security/Security.h>
#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <objc/runtime.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Exported by GNUstep, and documented, but declared in none of its headers.
typedef void NSLog_printf_handler(NSString* message);
extern "C" NSLog_printf_handler* _NSLog_printf_handler;

namespace {

using RunModal = NSInteger (*)(id, SEL, NSWindow*);
using Launch = void (*)(id, SEL);

RunModal runModalBefore = nullptr;
Launch launchBefore = nullptr;

std::string variable(const char* name) {
    const char* const text = std::getenv(name);
    return text == nullptr ? "" : text;
}

void report(const std::string& text) {
    static const int pipe = open(variable("MOVE_REPORT").c_str(), O_WRONLY | O_CLOEXEC);
    const std::string line = std::to_string(getpid()) + " " + text + "\n";
    if (write(pipe, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        _exit(99);
}

std::string textOf(NSString* text) {
    return text == nil ? "nothing" : [text UTF8String];
}

// Behind the time and the process.
void reportLog(NSString* message) {
    const std::string text = textOf(message);
    const size_t begin = text.find("] ");
    std::string line = begin == std::string::npos ? text : text.substr(begin + 2);
    while (!line.empty() && line.back() == '\n')
        line.pop_back();
    report("log: " + line);
}

bool isBox(NSView* view) {
    return
        [view isKindOfClass:[NSButton class]] && [[static_cast<NSButton*>(view) cell] showsStateBy];
}

template <class Order>
std::vector<NSView*> subviews(NSWindow* window, Class type, Order order) {
    std::vector<NSView*> views;
    for (NSView* view in [[window contentView] subviews])
        if ([view isKindOfClass:type] && !isBox(view))
            views.push_back(view);
    std::sort(views.begin(), views.end(), order);
    return views;
}

std::vector<NSView*> textsOf(NSWindow* window) {
    return subviews(window, [NSTextField class], [](NSView* one, NSView* two) {
        return NSMaxY([one frame]) > NSMaxY([two frame]);
    });
}

std::vector<NSView*> buttonsOf(NSWindow* window) {
    return subviews(window, [NSButton class], [](NSView* one, NSView* two) {
        return NSMaxX([one frame]) > NSMaxX([two frame]);
    });
}

NSButton* boxOf(NSWindow* window) {
    for (NSView* view in [[window contentView] subviews])
        if (isBox(view))
            return static_cast<NSButton*>(view);
    return nil;
}

std::string keyOf(NSButton* button) {
    NSString* const key = [button keyEquivalent];
    if ([key isEqualToString:@"\r"])
        return " (Return)";
    return [key isEqualToString:@"\033"] ? " (Escape)" : "";
}

// Whether all of it can be seen.
bool fits(NSTextField* field) {
    const NSSize size = [[field stringValue]
        sizeWithAttributes:[NSDictionary dictionaryWithObject:[field font]
                                                       forKey:NSFontAttributeName]];
    const double lines = std::ceil(size.width / NSWidth([field frame]));
    return NSHeight([field frame]) >= lines * size.height;
}

std::string descriptionOf(NSWindow* window) {
    std::string text = "alert:";
    for (NSView* view : textsOf(window)) {
        NSTextField* const field = static_cast<NSTextField*>(view);
        text += " \"" + textOf([field stringValue]) + "\"" + (fits(field) ? "" : " (cut)");
    }
    for (NSView* view : buttonsOf(window)) {
        NSButton* const button = static_cast<NSButton*>(view);
        text += " [" + textOf([button title]) + keyOf(button) + "]";
    }
    if (NSButton* const box = boxOf(window)) {
        const bool isSmall = [[box cell] controlSize] == NSSmallControlSize &&
                             [[[box cell] font] pointSize] == [NSFont smallSystemFontSize];
        text += std::string([box state] == NSOnState ? " <x" : " <") + (isSmall ? " small" : "") +
                " " + textOf([box title]) + ">";
    }
    return text;
}

void takePicture(NSWindow* window) {
    const std::string folder = variable("ULA_PICTURES");
    // Other users may not be allowed to.
    if (access(folder.c_str(), W_OK) != 0)
        return;
    static int number = 0;
    NSView* const view = [window contentView];
    [view lockFocus];
    NSBitmapImageRep* const pixels =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    const std::string path =
        folder + "/" + variable("MOVE_NAME") + "-" + std::to_string(++number) + ".png";
    [[pixels representationUsingType:NSPNGFileType properties:[NSDictionary dictionary]]
        writeToFile:[NSString stringWithUTF8String:path.c_str()]
         atomically:NO];
}

void postMouse(NSWindow* window, NSEventType type, NSPoint point) {
    [NSApp postEvent:[NSEvent mouseEventWithType:type
                                        location:point
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:[window windowNumber]
                                         context:nil
                                     eventNumber:0
                                      clickCount:1
                                        pressure:1]
             atStart:NO];
}

void click(NSView* view) {
    const NSRect frame = [view frame];
    const NSPoint middle = NSMakePoint(NSMidX(frame), NSMidY(frame));
    postMouse([view window], NSLeftMouseDown, middle);
    postMouse([view window], NSLeftMouseUp, middle);
}

void pressEscape(NSWindow* window) {
    for (const NSEventType type : {NSKeyDown, NSKeyUp})
        [NSApp postEvent:[NSEvent keyEventWithType:type
                                                location:NSZeroPoint
                                           modifierFlags:0
                                               timestamp:0
                                            windowNumber:[window windowNumber]
                                                 context:nil
                                              characters:@"\033"
                             charactersIgnoringModifiers:@"\033"
                                               isARepeat:NO
                                                 keyCode:0]
                 atStart:NO];
}

// What appears where the application wants to go while the user thinks.
void appear() {
    std::filesystem::create_directories(variable("MOVE_LATE"));
}

void answer(NSWindow* window) {
    static std::istringstream answers(variable("MOVE_ANSWERS"));
    std::string word;
    if (!(answers >> word)) {
        report("no answer for this alert");
        _exit(98);
    }
    if (word == "escape")
        return pressEscape(window);
    if (word == "late")
        appear();
    if (word == "box")
        click(boxOf(window));
    if (word == "box" || word == "late")
        answers >> word;
    click(buttonsOf(window).at(std::stoul(word)));
}

NSInteger runModal(id self, SEL selector, NSWindow* window) {
    [window orderFront:nil];
    [window display];
    report(descriptionOf(window));
    takePicture(window);
    answer(window);
    return runModalBefore(self, selector, window);
}

void launch(id task, SEL selector) {
    std::string line = "task: " + textOf([task launchPath]);
    for (NSString* word in [task arguments])
        line += " | " + textOf(word);
    // GNUstep also starts daemons and tools of its own.
    if ([[task launchPath] isEqualToString:@"/bin/sh"] ||
        [[task launchPath] isEqualToString:@"/usr/bin/open"])
        report(line);
    launchBefore(task, selector);
}

template <class Function>
Function replaceMethod(const char* type, SEL selector, Function function) {
    const Method method = class_getInstanceMethod(objc_getClass(type), selector);
    return reinterpret_cast<Function>(
        method_setImplementation(method, reinterpret_cast<IMP>(function)));
}

// Nobody draws frames around windows here, and GNUstep would wait for it.
void doWithoutWindowManager() {
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:[NSDictionary dictionaryWithObject:@"NO"
                                                     forKey:@"GSX11HandlesWindowDecorations"]];
}

void observe() {
    _NSLog_printf_handler = reportLog;
    runModalBefore = replaceMethod("NSApplication", @selector(runModalForWindow:), runModal);
    launchBefore = replaceMethod("NSConcreteUnixTask", @selector(launch), launch);
}

}  // namespace

// In place of the library's: the names of a program come before those of its libraries.
__attribute__((visibility("default"))) double ULAAppKitVersionNumber() {
    const std::string version = variable("MOVE_APPKIT");
    return version.empty() ? 1038 : std::stod(version);
}

extern "C" {

__attribute__((visibility("default"))) OSStatus
AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights* rights,
                        const AuthorizationEnvironment* environment, AuthorizationFlags flags,
                        AuthorizationRights** granted) {
    report("rights: " + std::string(rights->items[0].name) + ", flags " + std::to_string(flags));
    const auto next = reinterpret_cast<decltype(&AuthorizationCopyRights)>(
        dlsym(RTLD_NEXT, "AuthorizationCopyRights"));
    return next(authorization, rights, environment, flags, granted);
}

__attribute__((visibility("default"))) OSStatus
AuthorizationExecuteWithPrivileges(AuthorizationRef authorization, const char* program,
                                   AuthorizationFlags options, char* const* arguments,
                                   FILE** pipe) {
    std::string line = "privileged: " + std::string(program);
    for (char* const* word = arguments; *word != nullptr; ++word)
        line += " | " + std::string(*word);
    report(line);
    const auto next = reinterpret_cast<decltype(&AuthorizationExecuteWithPrivileges)>(
        dlsym(RTLD_NEXT, "AuthorizationExecuteWithPrivileges"));
    return next(authorization, program, options, arguments, pipe);
}
}

int main() {
    setlocale(LC_ALL, "");
    if (!variable("MOVE_CATALOGUES").empty())
        tav::i18n::setCatalogueFolder(tav::String(variable("MOVE_CATALOGUES")));
    observe();
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    doWithoutWindowManager();
    [NSApplication sharedApplication];
    report("started " + textOf([[NSBundle mainBundle] bundlePath]));
    tav::ula::moveToApplicationsFolder();
    report("returned");
    [pool release];
    return 7;
}
