// SPDX-License-Identifier: MIT
// The choice among localizations.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/// Those of the localizations that serve the first preference that any of them serves, the best
/// one first: the same identifier, then its language with fewer subtags. With null preferences the
/// user's languages decide, and after them English. When none is served, the first localization
/// alone.
CF_EXPORT CFArrayRef CFBundleCopyLocalizationsForPreferences(CFArrayRef localizations,
                                                             CFArrayRef preferences);

CF_EXTERN_C_END
