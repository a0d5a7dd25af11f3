// SPDX-License-Identifier: MIT
#include "ula/src/Mac/HardwareReport.h"

#import "ula/ObjCHelper.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace tav::ula {

namespace {

NSString* const kReportProgram = @"/usr/sbin/system_profiler";

/// A name in the folder for temporary files. A library that insists on placeholders refuses it, and
/// each report gets a name of its own; with others the descriptor is left open.
/// Fails: nil when the name is taken, refused, or no text.
NSString* fixedName() {
    std::string name =
        [[NSTemporaryDirectory() stringByAppendingPathComponent:@"hardInfo.xml"] toStdString];
    return mkstemp(name.data()) == -1 ? nil : [NSString fromStdString:name];
}

NSString* outputName() {
    if (NSString* const name = fixedName())
        return name;
    char name[L_tmpnam];
    return tmpnam(name) == nullptr ? nil : [NSString stringWithUTF8String:name];
}

NSFileHandle* makeOutput(NSString* path) {
    [[NSFileManager defaultManager] createFileAtPath:path contents:nil attributes:nil];
    return [NSFileHandle fileHandleForWritingAtPath:path];
}

/// Fails: nothing, when the program cannot be started.
void launchReport(NSString* dataType, NSFileHandle* output) {
    NSTask* const task = [[[NSTask alloc] init] autorelease];
    [task setLaunchPath:kReportProgram];
    [task setArguments:@[ @"-xml", dataType ]];
    [task setStandardOutput:output];
    try {
        [task launch];
    } catch (...) {
        // The platform throws for a program that is not there; the output stays empty.
    }
}

NSArray* reportOf(NSString* dataType) {
    NSString* const path = [outputName() stringByExpandingTildeInPath];
    NSFileHandle* const output = path == nil ? nil : makeOutput(path);
    if (output == nil)
        return nil;
    launchReport(dataType, output);
    NSArray* const report = [NSArray arrayWithContentsOfFile:path];
    [[NSFileManager defaultManager] removeFileAtPath:path handler:nil];
    return report;
}

/// Nil for an empty list, and when it begins with something of another class.
id first(NSArray* list, Class type) {
    id const element = [list count] == 0 ? nil : [list objectAtIndex:0];
    return [element isKindOfClass:type] ? element : nil;
}

}  // namespace

NSDictionary* hardwareReport(NSString* dataType) {
    NSDictionary* const section = first(reportOf(dataType), [NSDictionary class]);
    id const items = [section objectForKey:@"_items"];
    if (![items isKindOfClass:[NSArray class]])
        return nil;
    NSDictionary* const item = first(items, [NSDictionary class]);
    return item == nil ? nil : [NSDictionary dictionaryWithDictionary:item];
}

}  // namespace tav::ula
