// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tav::ula {

enum class InstanceState {
    First,      ///< this process is the one instance, as long as the guard lives
    Forwarded,  ///< another one is, and has taken the arguments
    Running,    ///< another one is: another user's, or one that does not answer
    Failed      ///< it cannot be known
};

enum class InstanceScope {
    User,    ///< one instance for each user
    Machine  ///< one for all of them
};

struct InstanceGuardOptions {
    InstanceScope scope = InstanceScope::User;
    /// Where the guard's files lie; empty for the usual place. Instances find each other only in
    /// the same folder. It must be the user's own, or for the whole machine writable by all.
    std::string folder;
};

class InstanceGuard;

struct InstanceClaim {
    InstanceState state = InstanceState::Failed;
    std::unique_ptr<InstanceGuard> guard;  ///< of the first one only
    std::string error;                     ///< why Running was not Forwarded, or it Failed
};

/// One instance of an application, decided by a lock that ends with its process, however that ends:
/// of two that start together exactly one is the first, and a crash leaves nothing to clean up. A
/// child made by fork(2) has no part in it.
/// Thread: any.
class ULA_API InstanceGuard {
public:
    using Arguments = std::vector<std::string>;
    /// What a later instance was started with. Thread: the guard's own; see MainThreadCaller for
    /// the way to the main one. It may not destroy the guard. What it throws is dropped.
    using Listener = std::function<void(const Arguments&)>;

    /// Becomes the first instance, or hands the arguments to it. Waits for other claims of the same
    /// moment, and for the first instance's answer no longer than five seconds.
    static InstanceClaim claim(const FastString& appID, const Arguments& arguments,
                               Listener listener, const InstanceGuardOptions& options = {});

    /// The next claim is the first again. Waits for the listener to return.
    ~InstanceGuard();
    InstanceGuard(const InstanceGuard&) = delete;
    InstanceGuard& operator=(const InstanceGuard&) = delete;

private:
    class ULA_LOCAL Body;

    explicit InstanceGuard(std::unique_ptr<Body> body);

    std::unique_ptr<Body> _body;
};

}  // namespace tav::ula
