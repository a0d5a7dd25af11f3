// SPDX-License-Identifier: MIT
// The platform's report of its hardware is a program. Where the system has none by its name, this
// process writes the report itself, and whole before the launch returns: a reader that does not
// wait for the program's end finds it.
#include "CoreFoundation/WholeContent.h"
#include "Foundation/ReplaceMethod.h"
#include "SystemProfiler/HardwareReport.h"

#import <Foundation/Foundation.h>
#include <objc/runtime.h>
#include <unistd.h>

namespace {

using Launch = void (*)(id, SEL);

NSString* const kReportProgram = @"/usr/sbin/system_profiler";
Launch launchOfGNUstep = nullptr;

bool isReport(NSTask* task) {
    return [[task launchPath] isEqualToString:kReportProgram] &&
           access([kReportProgram fileSystemRepresentation], X_OK) != 0;
}

std::string reportOf(NSArray* arguments) {
    std::vector<std::string> dataTypes;
    for (NSString* argument in arguments)
        if (![argument hasPrefix:@"-"])
            dataTypes.emplace_back([argument UTF8String]);
    return systemprofiler::hardwareReport(dataTypes);
}

// Where the output goes; a pipe has a handle for it.
NSFileHandle* handleOf(id output) {
    return [output isKindOfClass:[NSPipe class]] ? [output fileHandleForWriting] : output;
}

}  // namespace

@interface NSTask (ULASystemProfiler)
- (void)ula_writeReport;
@end

@implementation NSTask (ULASystemProfiler)

- (void)ula_writeReport {
    if (_hasLaunched)
        [NSException raise:NSInvalidArgumentException format:@"the task has been launched before"];
    const std::string report = reportOf([self arguments]);
    NSFileHandle* const handle = handleOf([self standardOutput]);
    _hasLaunched = YES;
    // As a program whose disk is full, it ends and leaves what could be written.
    cf::writeAll([handle fileDescriptor], report);
    // The reader of a pipe waits for its end.
    if ([[self standardOutput] isKindOfClass:[NSPipe class]])
        [handle closeFile];
    _hasTerminated = YES;
    _hasCollected = YES;
    _hasNotified = YES;
    _terminationStatus = 0;
    _terminationReason = NSTaskTerminationReasonExit;
    [[NSNotificationCenter defaultCenter] postNotificationName:NSTaskDidTerminateNotification
                                                        object:self];
}

@end

namespace {

void launch(id task, SEL selector) {
    if (isReport(task))
        [task ula_writeReport];
    else
        launchOfGNUstep(task, selector);
}

}  // namespace

@interface ULAReportTask : NSObject
@end

@implementation ULAReportTask

// Tasks are made of a class below the public one.
+ (void)load {
    Class const concrete = objc_getClass("NSConcreteUnixTask");
    const Method method = class_getInstanceMethod(
        concrete != Nil ? concrete : objc_getClass("NSTask"), @selector(launch));
    launchOfGNUstep = foundation::replaceMethod(method, launch);
}

@end
