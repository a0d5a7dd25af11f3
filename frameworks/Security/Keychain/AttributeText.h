// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace security {

// Names are bytes, attributes of the Secret Service are text in UTF-8 without zeros: what is not,
// and the percent sign, is written as "%" and two digits. Different names give different
// attributes.
std::string attributeText(std::string_view name);
std::string nameOfAttribute(std::string_view attribute);

}  // namespace security
