// SPDX-License-Identifier: MIT
// An application of which one instance runs, to be put into a bundle. Needs an X server.
//   PROGRAM [PICTURE…]    the first instance waits; a later one hands its pictures to it
//   PROGRAM --restart     ends, and is opened anew
//   PROGRAM --quit        ends the first instance
// The first one imports each picture it is told of, with its progress on the icon: picture N
// leaves "icon-N.png" beside the bundle.
#import <AppKit/AppKit.h>

#include <CoreFoundation/CoreFoundation.h>
#include <cstdio>
#include <string>
#include <ula/ApplicationTaskProgress.h>
#include <ula/InstanceGuard.h>
#include <ula/MainThreadCaller.h>
#include <ula/ScopedARPool.h>
#include <ula/SpecialFolders.h>
#include <ula/UniqueAppInstance.h>
#include <unistd.h>

namespace {

using namespace tav::ula;
using Arguments = InstanceGuard::Arguments;

constexpr const char* kIdentifier = "com.maker.photobox";

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

std::string folder() {
    return SpecialFolders::myApplicationExecutionPath(nullptr).toStdString();
}

NSBitmapImageRep* shownIcon() {
    NSImage* const icon = [NSApp applicationIconImage];
    [icon lockFocus];
    NSBitmapImageRep* const pixels = [[[NSBitmapImageRep alloc]
        initWithFocusedViewRect:NSMakeRect(0, 0, [icon size].width, [icon size].height)]
        autorelease];
    [icon unlockFocus];
    return pixels;
}

/// How many points of the line through the bar's middle are green.
int greenPoints(NSBitmapImageRep* pixels) {
    constexpr int kMiddle = 12;
    int count = 0;
    for (NSInteger x = 0; x < [pixels pixelsWide]; ++x) {
        NSUInteger colour[4] = {};
        [pixels getPixel:colour atX:x y:[pixels pixelsHigh] - 1 - kMiddle];
        count += colour[0] == 0 && colour[1] == 255 && colour[2] == 0;
    }
    return count;
}

void showIcon(std::size_t number) {
    NSBitmapImageRep* const pixels = shownIcon();
    NSData* const picture = [pixels representationUsingType:NSPNGFileType
                                                 properties:[NSDictionary dictionary]];
    const std::string name = "icon-" + std::to_string(number) + ".png";
    [picture writeToFile:[NSString stringWithUTF8String:(folder() + "/" + name).c_str()]
              atomically:YES];
    say(name + ": a bar of " + std::to_string(greenPoints(pixels)) + " of " +
        std::to_string([pixels pixelsWide] - 10) + " points");
}

void import(const Arguments& pictures) {
    ApplicationTaskProgress* const progress = ApplicationTaskProgress::instance();
    const auto all = static_cast<double>(pictures.size());
    for (std::size_t i = 1; i <= pictures.size(); ++i) {
        say("imports " + pictures[i - 1]);
        progress->showProgress(nullptr, static_cast<double>(i) / all, TaskProgressGreen);
        showIcon(i);
    }
    progress->clearProgress();
    say(greenPoints(shownIcon()) == 0 ? "has its plain icon again" : "still has a bar");
}

/// On the main thread, what a later instance was started with.
void serve(const Arguments& arguments) {
    const ScopedARPool pool;
    if (arguments == Arguments{"--quit"})
        CFRunLoopStop(CFRunLoopGetMain());
    else
        import(arguments);
}

int runAsFirst(const Arguments& arguments) {
    say("first " + std::to_string(getpid()));
    if (arguments == Arguments{"--restart"}) {
        setRestartRequired(true);
        checkRestartApplicaiton();
        return 0;
    }
    [NSApplication sharedApplication];
    if (!arguments.empty())
        import(arguments);
    CFRunLoopRun();
    say("ends");
    return 0;
}

}  // namespace

int main(int count, char** words) {
    const ScopedARPool pool;
    MainThreadCaller::instance();
    const Arguments arguments(words + 1, words + count);
    const bool isAlone = isUniqueAppInstance(kIdentifier);
    const InstanceClaim claim =
        InstanceGuard::claim(kIdentifier, arguments,
                             [](const Arguments& later) {
                                 MainThreadCaller::instance()->callAsync([later] { serve(later); });
                             },
                             {InstanceScope::User, folder() + "/instances"});
    switch (claim.state) {
    case InstanceState::First:
        return runAsFirst(arguments);
    case InstanceState::Forwarded:
        say(isAlone ? "did not see the other one" : "another one runs, and has the arguments");
        return isAlone ? 1 : 0;
    default:
        say("cannot decide: " + claim.error);
        return 1;
    }
}
