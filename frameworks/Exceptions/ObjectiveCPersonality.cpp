// SPDX-License-Identifier: MIT
// Gives the Objective-C++ code of one program or library the exception behaviour of C++.
//
// clang names __gnu_objc_personality_v0 as the personality of every function in a .mm file. The
// runtime's version of it knows Objective-C handlers only: it walks past C++ catch clauses and
// past noexcept. Where such a function is an inline one that .cpp files share, the linker may
// keep the .mm copy and so take the handlers away from C++ code as well.
//
// A hidden definition wins over the runtime's inside the binary that links it, and nowhere else:
// the runtime's own libraries keep theirs. @catch does not work in a binary that has this object;
// see ObjectiveCTry.h for where it belongs.
#include <unwind.h>

extern "C" {

_Unwind_Reason_Code __gxx_personality_v0(int version, _Unwind_Action actions,
                                         _Unwind_Exception_Class exceptionClass,
                                         _Unwind_Exception* exception, _Unwind_Context* context);

__attribute__((visibility("hidden"))) _Unwind_Reason_Code
__gnu_objc_personality_v0(int version, _Unwind_Action actions,
                          _Unwind_Exception_Class exceptionClass, _Unwind_Exception* exception,
                          _Unwind_Context* context) {
    return __gxx_personality_v0(version, actions, exceptionClass, exception, context);
}
}
