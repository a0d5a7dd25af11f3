// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

/// What XML 1.0 (fifth edition, sections 2.2, 2.3 and 4.1) allows in a text. Internal to the
/// foundation. Positions and lengths count bytes of UTF-8.
namespace tav::xml {

/// The length of the character at the begin of a text that is not empty; 0 when its bytes are not
/// UTF-8 or it is a character that XML does not have.
std::size_t characterLength(std::string_view text);

/// The position of the first byte that is not part of an XML character; npos when all are.
std::size_t findInvalidCharacter(std::string_view text);

/// The position of the first "&" that begins neither a reference to one of the five predefined
/// entities nor one to an XML character, comments, CDATA sections, processing instructions and
/// the document type left out; npos when there is none.
std::size_t findInvalidReference(std::string_view text);

bool isName(std::string_view text);

}  // namespace tav::xml
