// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

typedef struct _GDBusConnection GDBusConnection;

namespace tav::tool::doctor {

struct Host;

/// Where the session's bus is; empty for a session without.
std::string sessionBusAddress(const Host& host);

struct BusCall {
    const char* destination;
    const char* path;
    const char* interface;
    const char* method;
    const char* argument;  ///< its only one, a text
};

struct BusProperty {
    const char* destination;
    const char* interface;
    const char* name;
};

/// A connection of its own to a bus. Thread: one.
class BusConnection {
public:
    /// Waits for the bus's greeting.
    explicit BusConnection(const std::string& address);
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    bool isOpen() const { return _connection != nullptr; }
    /// Waits for the answer, and gives the path of an object that it is.
    /// Fails: none, and `error` says why.
    std::optional<std::string> askForPath(const BusCall& call);
    /// Waits for the answer. False, too, where there is none.
    bool isSet(const std::string& path, const BusProperty& property);
    /// What went wrong last: "Connection refused". Empty when nobody provides what was called.
    const std::string& error() const { return _error; }

private:
    GDBusConnection* _connection = nullptr;
    std::string _error;
};

}  // namespace tav::tool::doctor
