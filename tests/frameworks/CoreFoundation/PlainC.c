// SPDX-License-Identifier: MIT
// That the headers are C. Compiled, linked and called by HeadersTest.
#include <CoreFoundation/CoreFoundation.h>
#include <CoreFoundation/RunLoopIntegration.h>

CFIndex lengthFromC(void) {
    CFStringRef string = CFSTR("from C");
    return CFStringGetLength(string) + (CFRunLoopGetCurrent() == CFRunLoopGetMain() ? 0 : 1000);
}
