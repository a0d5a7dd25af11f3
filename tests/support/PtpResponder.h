// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/PtpObjects.h"

#include <condition_variable>
#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace tav::test {

/// What a camera does that is broken, or means harm.
struct PtpFaults {
    bool refuses = false;                ///< says no to whoever connects: somebody else has it
    std::int64_t hangsUpAfter = -1;      ///< so many bytes of a file, then the connection is gone
    std::int64_t fallsSilentAfter = -1;  ///< the same, but the connection stays
    std::int64_t toldSize = -1;          ///< of every file, whatever it has
    std::int64_t toldHandles = -1;       ///< how many a list of handles says it has
    std::int64_t packetLength = -1;      ///< what the packets of lists say their length is
    bool hasNoParts = false;             ///< gives files only whole
};

/// A camera on the network, on this computer's own: the responder of PTP/IP with the operations of
/// ISO 15740 that reading takes, for as long as it lives. Its files are those of a folder.
class PtpResponder {
public:
    explicit PtpResponder(const std::string& folder, PtpFaults faults = {});
    ~PtpResponder();
    PtpResponder(const PtpResponder&) = delete;
    PtpResponder& operator=(const PtpResponder&) = delete;

    /// "127.0.0.1:41234"
    std::string address() const;
    /// To be called before somebody connects.
    PtpObjects& objects() { return _objects; }
    void setFaults(const PtpFaults& faults);
    /// How many files, or parts of files, were asked for.
    int transfers();
    /// Waits for that many. Fails: false when they do not come.
    bool waitForTransfers(int count);

private:
    struct Request {
        std::uint32_t operation = 0;
        std::uint32_t transaction = 0;
        std::uint32_t parameters[5] = {};
    };

    void accept();
    void serve(int connection);
    void serveCommands(int connection);
    /// False: the connection is to be closed.
    bool answer(int connection, const Request& request);
    bool sendData(int connection, const Request& request, const std::string& data);
    bool sendFile(int connection, const Request& request);
    std::uint32_t dataFor(const Request& request, std::string& data);
    std::string handleList(std::uint32_t parent);
    PtpFaults faults();
    /// Waits until the end of this object, or of the other side.
    void fallSilent(int connection);

    PtpObjects _objects;
    std::mutex _mutex;
    PtpFaults _faults;
    int _transfers = 0;
    std::condition_variable _transferred;
    int _listening = -1;
    int _end = -1;  ///< readable when all is to end
    std::list<std::thread> _threads;
};

}  // namespace tav::test
