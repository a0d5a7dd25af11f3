// SPDX-License-Identifier: MIT
#pragma once

namespace tav::test {

/// What dlsym gives for "AuthorizationExecuteWithPrivileges", in programs that are linked with
/// --wrap=dlsym; null for nothing.
extern void* privilegedExecution;

}  // namespace tav::test
