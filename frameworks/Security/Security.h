// SPDX-License-Identifier: MIT
#pragma once

#include <Security/Authorization.h>
#include <Security/SecBase.h>
#include <Security/SecItem.h>
#include <Security/SecKeychain.h>
#include <Security/SecKeychainItem.h>
