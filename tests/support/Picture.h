// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace tav::test {

/// A JPEG that every viewer shows, grey and of 8 x 8 pixels, with its shooting date as EXIF has it,
/// "2009:03:15 10:20:30"; empty: without. Filled up behind the picture to `size` bytes, differently
/// for each `seed`.
std::string picture(const std::string& date = {}, std::size_t size = 0, unsigned seed = 0);

}  // namespace tav::test
