// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/WorkThread.h"

#include <functional>
#include <string>

namespace lighttable {

/// The password of an account to which pictures are uploaded, in the user's keychain. The keychain
/// may have to be unlocked first: it is asked on a thread of its own.
/// Thread: main; so are the calls of the functions, unless this object has gone.
class UploadAccount {
public:
    struct Answer {
        bool isDone = false;
        bool isKept = false;  ///< there is a password
    };
    using Answered = std::function<void(const Answer&)>;

    /// Whether there is a password. It stays where it is.
    void look(const std::string& server, const std::string& account, Answered answered);
    void keep(const std::string& server, const std::string& account, const std::string& password,
              Answered answered);
    void forget(const std::string& server, const std::string& account, Answered answered);

private:
    WorkThread _thread;
};

}  // namespace lighttable
