// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

/// What XML 1.0 (fifth edition, sections 2.2, 2.3 and 4.1) allows in a text. Not installed: for
/// readers and writers of this library. Positions and lengths count bytes of UTF-8.
namespace tav::xml {

/// The length of the character at the begin of a text that is not empty; 0 when its bytes are not
/// UTF-8 or it is a character that XML does not have.
std::size_t characterLength(std::string_view text);

/// The position of the first byte that is not part of an XML character; npos when all are.
TAV_FOUNDATION_API std::size_t findInvalidCharacter(std::string_view text);

/// The length of the reference that begins with the "&" at the begin of `text`, and the code of
/// the character that it stands for; 0 when it is none that XML defines.
TAV_FOUNDATION_API std::size_t decodeReference(std::string_view text, std::uint32_t& code);
/// Writes a character (up to four bytes); returns the end of what was written.
TAV_FOUNDATION_API char* encodeCharacter(std::uint32_t code, char* out);

/// The position of the first "&" that begins neither a reference to one of the five predefined
/// entities nor one to an XML character, comments, CDATA sections, processing instructions and
/// the document type left out; npos when there is none.
std::size_t findInvalidReference(std::string_view text);

bool isName(std::string_view text);

}  // namespace tav::xml
