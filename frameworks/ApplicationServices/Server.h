// SPDX-License-Identifier: MIT
// The display server, as far as displays are concerned. Tests put one of their own in its place.
#pragma once

#include "Display.h"

#include <memory>

namespace displays {

class Server {
public:
    enum class News {
        None,
        UsableAreas,  // those of the displays, or the scale, may have changed
        Arrangement,
        Lost,  // it has gone, and answers nothing from now on
    };

    virtual ~Server() = default;
    // Becomes readable when there is news.
    virtual int descriptor() const = 0;
    // Takes all that has come, without waiting; the most important of it.
    virtual News takeNews() = 0;
    // Asks. Empty when the server has gone, which the next news say.
    virtual Displays read() = 0;
    // In a forked child: closes without a word, since the connection is the parent's.
    virtual void abandon() = 0;
};

// The one that the environment names. Null when none is named, or it does not answer.
std::unique_ptr<Server> connectToServer();

}  // namespace displays
