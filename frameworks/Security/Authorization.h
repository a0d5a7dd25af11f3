// SPDX-License-Identifier: MIT
// The rights of an administrator, and programs that are run with them. The rights are polkit's: it
// asks for the password in the desktop's own dialog.
#pragma once

#include <CoreServices/MacTypes.h>
#include <Security/SecBase.h>
#include <stddef.h>
#include <stdio.h>

CF_EXTERN_C_BEGIN

typedef const struct AuthorizationOpaqueRef* AuthorizationRef;
typedef UInt32 AuthorizationFlags;
typedef const char* AuthorizationString;

enum {
    kAuthorizationFlagDefaults = 0,
    kAuthorizationFlagInteractionAllowed = 1,
    kAuthorizationFlagExtendRights = 2,
    kAuthorizationFlagPartialRights = 4,
    kAuthorizationFlagDestroyRights = 8,
    kAuthorizationFlagPreAuthorize = 16,
};

enum {
    errAuthorizationSuccess = 0,
    errAuthorizationInvalidRef = -60002,
    errAuthorizationInvalidPointer = -60004,
    errAuthorizationDenied = -60005,   /* also where nobody is there to ask for the password */
    errAuthorizationCanceled = -60006, /* the dialog was dismissed */
    errAuthorizationInteractionNotAllowed = -60007,
    errAuthorizationInternal = -60008,
    errAuthorizationToolExecuteFailure = -60031,
};

typedef struct {
    AuthorizationString name;
    size_t valueLength;
    void* value;
    UInt32 flags;
} AuthorizationItem;

typedef struct {
    UInt32 count;
    AuthorizationItem* items;
} AuthorizationItemSet;

typedef AuthorizationItemSet AuthorizationRights;
typedef AuthorizationItemSet AuthorizationEnvironment;

#define kAuthorizationEmptyEnvironment NULL
#define kAuthorizationRightExecute "system.privilege.admin"

/// Without rights at first. `rights` and `environment` must be null and the flags 0.
/// Owner: the caller, until AuthorizationFree. Fails: errAuthorizationInvalidPointer,
/// errAuthorizationDenied.
CF_EXPORT OSStatus AuthorizationCreate(const AuthorizationRights* rights,
                                       const AuthorizationEnvironment* environment,
                                       AuthorizationFlags flags, AuthorizationRef* authorization);

/// Gives the rights back.
CF_EXPORT OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags);

/// Has the user asked for an administrator's password, once for the life of the authorization, and
/// waits for the answer. kAuthorizationRightExecute is the only right there is; it is only to be
/// had where interaction is allowed and rights may be extended. `granted` must be null.
CF_EXPORT OSStatus AuthorizationCopyRights(AuthorizationRef authorization,
                                           const AuthorizationRights* rights,
                                           const AuthorizationEnvironment* environment,
                                           AuthorizationFlags flags, AuthorizationRights** granted);

/// Starts a program as root, its working folder "/" and its standard streams closed. The arguments
/// end with a null. It is a child of this process that ends as the program does. The library above
/// waits for that child and for no other; two are not to run at once.
/// `communicationsPipe` must be null. Asks for the rights where they have not been given.
CF_EXPORT OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization,
                                                      const char* pathToTool,
                                                      AuthorizationFlags options,
                                                      char* const* arguments,
                                                      FILE** communicationsPipe);

CF_EXTERN_C_END
