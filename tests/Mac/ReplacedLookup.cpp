// SPDX-License-Identifier: MIT
// Apart, without a sanitizer: one that is linked with the program looks its own functions up before
// it can do anything else, even call the C library.
#include "tests/Mac/ReplacedLookup.h"

namespace tav::test {

void* privilegedExecution = nullptr;

}  // namespace tav::test

extern "C" {

void* __real_dlsym(void* handle, const char* name);

void* __wrap_dlsym(void* handle, const char* name) {
    const char* wanted = "AuthorizationExecuteWithPrivileges";
    const char* next = name;
    for (; *wanted != '\0' && *wanted == *next; ++wanted)
        ++next;
    if (*wanted == *next)
        return tav::test::privilegedExecution;
    return __real_dlsym(handle, name);
}
}
