// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <memory>

namespace displays {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

// An answer of the X server. Null when there is none: the window has gone, or the server has.
template <class Reply>
using XReply = std::unique_ptr<Reply, FreeReply>;

// For the replies of XCB's functions, which the caller frees.
template <class Reply>
XReply<Reply> adopt(Reply* reply) {
    return XReply<Reply>(reply);
}

}  // namespace displays
