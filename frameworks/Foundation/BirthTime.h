// SPDX-License-Identifier: MIT
#pragma once

#include <ctime>
#include <optional>

namespace foundation {

enum class Links { Follow, Keep };

// When the item was made. Nothing where its file system keeps no birth times or has none of the
// item, and where there is no item.
std::optional<timespec> birthTimeOf(const char* path, Links links);

}  // namespace foundation
