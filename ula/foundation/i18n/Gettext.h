// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"

namespace tav::i18n {

/// The translation of a user-visible text in the program's current message locale, from the
/// catalogue `ula.mo`, or the text itself. The program chooses its locale with `setlocale`.
/// Thread: any.
TAV_FOUNDATION_API String gettext(const String& text);

/// Looks for catalogues under `folder` (`folder/LANGUAGE/LC_MESSAGES/ula.mo`) instead of where
/// they were installed. For applications that carry them along.
TAV_FOUNDATION_API void setCatalogueFolder(const String& folder);

}  // namespace tav::i18n
