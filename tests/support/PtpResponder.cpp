// SPDX-License-Identifier: MIT
#include "tests/support/PtpResponder.h"

#include "tests/support/Patience.h"

#include <arpa/inet.h>
#include <chrono>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tav::test {

namespace {

enum Packet : std::uint32_t {
    InitCommandRequest = 1,
    InitCommandAck,
    InitEventRequest,
    InitEventAck,
    InitFail,
    OperationRequest,
    OperationResponse,
    Event,
    StartData,
    Data,
    CancelTransaction,
    EndData,
    ProbeRequest,
    ProbeResponse,
};

enum Operation : std::uint32_t {
    GetDeviceInfo = 0x1001,
    OpenSession,
    CloseSession,
    GetStorageIds,
    GetStorageInfo,
    GetNumObjects,
    GetObjectHandles,
    GetObjectInfo,
    GetObject,
    GetPartialObject = 0x101B,
};

enum Answer : std::uint32_t {
    Ok = 0x2001,
    OperationNotSupported = 0x2005,
    InvalidObjectHandle = 0x2009,
};

constexpr std::uint32_t kLongestRequest = 1 << 16;
constexpr std::size_t kPiece = 1 << 16;

std::uint32_t numberIn(const std::string& bytes, std::size_t at, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size && at + i < bytes.size(); ++i)
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return value;
}

bool sendAll(int connection, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool sendPacket(int connection, Packet type, const std::string& body) {
    return sendAll(connection, PtpData().number(body.size() + 8, 4).number(type, 4).bytes() + body);
}

class Connection {
public:
    Connection(int descriptor, int end) : _descriptor(descriptor), _end(end) {}

    /// False at the end of either side.
    bool receive(std::uint32_t& type, std::string& body) {
        std::string head;
        if (!receive(head, 8))
            return false;
        const std::uint32_t length = numberIn(head, 0, 4);
        type = numberIn(head, 4, 4);
        return length >= 8 && length <= kLongestRequest && receive(body, length - 8);
    }

private:
    bool receive(std::string& bytes, std::size_t size) {
        bytes.clear();
        while (bytes.size() < size) {
            pollfd table[] = {{_descriptor, POLLIN, 0}, {_end, POLLIN, 0}};
            if (poll(table, 2, -1) < 0 || table[1].revents != 0)
                return false;
            std::string piece(size - bytes.size(), '\0');
            const ssize_t count = recv(_descriptor, piece.data(), piece.size(), 0);
            if (count <= 0)
                return false;
            bytes.append(piece, 0, static_cast<std::size_t>(count));
        }
        return true;
    }

    int _descriptor;
    int _end;
};

std::string deviceInfo(bool hasParts) {
    std::vector<std::uint32_t> operations;
    for (std::uint32_t operation = GetDeviceInfo; operation <= GetObject; ++operation)
        operations.push_back(operation);
    if (hasParts)
        operations.push_back(GetPartialObject);
    PtpData data;
    data.number(100, 2).number(0, 4).number(100, 2).text("").number(0, 2);
    data.array(operations, 2).array({0x4002, 0x4004, 0x4005}, 2).array({}, 2);
    data.array({}, 2).array({0x3801, 0x3001}, 2);
    data.text("Test").text("Loopback Camera").text("1.0").text("0001");
    return data.bytes();
}

std::string storageInfo() {
    PtpData data;
    data.number(3, 2).number(2, 2).number(0, 2).number(1 << 30, 8).number(1 << 29, 8);
    return data.number(0xFFFFFFFF, 4).text("Card").text("CARD").bytes();
}

}  // namespace

PtpResponder::PtpResponder(const std::string& folder, PtpFaults faults)
    : _objects(folder), _faults(faults) {
    _listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(_listening, reinterpret_cast<sockaddr*>(&place), sizeof place) != 0 ||
        listen(_listening, 8) != 0)
        throw std::runtime_error("no port to listen at");
    _end = eventfd(0, EFD_CLOEXEC);
    _threads.emplace_back([this] { accept(); });
}

PtpResponder::~PtpResponder() {
    eventfd_write(_end, 1);
    // The first one adds the others, and ends first.
    _threads.front().join();
    for (auto thread = std::next(_threads.begin()); thread != _threads.end(); ++thread)
        thread->join();
    close(_listening);
    close(_end);
}

std::string PtpResponder::address() const {
    sockaddr_in place{};
    socklen_t size = sizeof place;
    getsockname(_listening, reinterpret_cast<sockaddr*>(&place), &size);
    return "127.0.0.1:" + std::to_string(ntohs(place.sin_port));
}

void PtpResponder::setFaults(const PtpFaults& faults) {
    const std::lock_guard lock(_mutex);
    _faults = faults;
}

PtpFaults PtpResponder::faults() {
    const std::lock_guard lock(_mutex);
    return _faults;
}

int PtpResponder::transfers() {
    const std::lock_guard lock(_mutex);
    return _transfers;
}

bool PtpResponder::waitForTransfers(int count) {
    std::unique_lock lock(_mutex);
    return _transferred.wait_for(lock, kPatience, [&] { return _transfers >= count; });
}

void PtpResponder::accept() {
    for (;;) {
        pollfd table[] = {{_listening, POLLIN, 0}, {_end, POLLIN, 0}};
        if (poll(table, 2, -1) < 0 || table[1].revents != 0)
            return;
        const int connection = accept4(_listening, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
            return;
        const int one = 1;
        setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        _threads.emplace_back([this, connection] {
            serve(connection);
            close(connection);
        });
    }
}

void PtpResponder::serve(int connection) {
    std::uint32_t type = 0;
    std::string body;
    if (!Connection(connection, _end).receive(type, body))
        return;
    if (type == InitEventRequest) {
        sendPacket(connection, InitEventAck, "");
        fallSilent(connection);
    } else if (type == InitCommandRequest && faults().refuses) {
        sendPacket(connection, InitFail, PtpData().number(2, 4).bytes());
    } else if (type == InitCommandRequest) {
        PtpData ack;
        ack.number(1, 4).number(0x1111111111111111, 8).number(0x1111111111111111, 8);
        for (const char letter : std::string("Camera"))
            ack.number(static_cast<unsigned char>(letter), 2);
        sendPacket(connection, InitCommandAck, ack.number(0, 2).number(0x00010000, 4).bytes());
        serveCommands(connection);
    }
}

void PtpResponder::fallSilent(int connection) {
    std::uint32_t type = 0;
    std::string body;
    while (Connection(connection, _end).receive(type, body)) {
    }
}

void PtpResponder::serveCommands(int connection) {
    std::uint32_t type = 0;
    std::string body;
    while (Connection(connection, _end).receive(type, body)) {
        if (type == ProbeRequest && !sendPacket(connection, ProbeResponse, ""))
            return;
        if (type != OperationRequest)
            continue;
        Request request;
        request.operation = numberIn(body, 4, 2);
        request.transaction = numberIn(body, 6, 4);
        for (std::size_t i = 0; i < 5; ++i)
            request.parameters[i] = numberIn(body, 10 + 4 * i, 4);
        if (!answer(connection, request))
            return;
    }
}

std::string PtpResponder::handleList(std::uint32_t parent) {
    PtpData data;
    data.array(_objects.handlesIn(parent), 4);
    const std::int64_t told = faults().toldHandles;
    if (told < 0)
        return data.bytes();
    return PtpData().number(static_cast<std::uint64_t>(told), 4).bytes() + data.bytes().substr(4);
}

std::uint32_t PtpResponder::dataFor(const Request& request, std::string& data) {
    const std::uint32_t handle = request.parameters[0];
    switch (request.operation) {
    case GetDeviceInfo:
        data = deviceInfo(!faults().hasNoParts);
        return Ok;
    case GetStorageIds:
        data = PtpData().array({PtpObjects::kStore}, 4).bytes();
        return Ok;
    case GetStorageInfo:
        data = storageInfo();
        return Ok;
    case GetObjectHandles:
        data = handleList(request.parameters[2]);
        return Ok;
    case GetObjectInfo:
        if (!_objects.has(handle))
            return InvalidObjectHandle;
        data = _objects.info(handle, faults().toldSize);
        return Ok;
    case OpenSession:
    case CloseSession:
    case GetNumObjects:
        return Ok;
    default:
        return OperationNotSupported;
    }
}

bool PtpResponder::answer(int connection, const Request& request) {
    const bool isTransfer = request.operation == GetObject ||
                            (request.operation == GetPartialObject && !faults().hasNoParts);
    if (isTransfer)
        return sendFile(connection, request);
    std::string data;
    const std::uint32_t code = dataFor(request, data);
    if (!data.empty() && !sendData(connection, request, data))
        return false;
    PtpData response;
    response.number(code, 2).number(request.transaction, 4);
    if (request.operation == GetNumObjects)
        response.number(_objects.handlesIn(request.parameters[2]).size(), 4);
    return sendPacket(connection, OperationResponse, response.bytes());
}

bool PtpResponder::sendData(int connection, const Request& request, const std::string& data) {
    const std::string transaction = PtpData().number(request.transaction, 4).bytes();
    const PtpFaults broken = faults();
    if (!sendPacket(connection, StartData, transaction + PtpData().number(data.size(), 8).bytes()))
        return false;
    if (broken.packetLength >= 0 && request.operation == GetObjectHandles)
        return sendAll(connection,
                       PtpData()
                               .number(static_cast<std::uint64_t>(broken.packetLength), 4)
                               .number(EndData, 4)
                               .bytes() +
                           transaction + data);
    return sendPacket(connection, EndData, transaction + data);
}

bool PtpResponder::sendFile(int connection, const Request& request) {
    {
        const std::lock_guard lock(_mutex);
        ++_transfers;
    }
    _transferred.notify_all();
    if (!_objects.has(request.parameters[0]) || _objects.isFolder(request.parameters[0]))
        return sendPacket(
            connection, OperationResponse,
            PtpData().number(InvalidObjectHandle, 2).number(request.transaction, 4).bytes());
    std::string bytes = _objects.contents(request.parameters[0]);
    if (request.operation == GetPartialObject)
        bytes = request.parameters[1] < bytes.size()
                    ? bytes.substr(request.parameters[1], request.parameters[2])
                    : "";
    const PtpFaults broken = faults();
    const std::int64_t limit =
        broken.hangsUpAfter >= 0 ? broken.hangsUpAfter : broken.fallsSilentAfter;
    const std::string transaction = PtpData().number(request.transaction, 4).bytes();
    if (!sendPacket(connection, StartData, transaction + PtpData().number(bytes.size(), 8).bytes()))
        return false;
    std::size_t sent = 0;
    for (; bytes.size() - sent > kPiece; sent += kPiece) {
        if (limit >= 0 && static_cast<std::int64_t>(sent + kPiece) > limit)
            break;
        if (!sendPacket(connection, Data, transaction + bytes.substr(sent, kPiece)))
            return false;
    }
    if (limit >= 0 && static_cast<std::int64_t>(bytes.size()) > limit) {
        if (broken.hangsUpAfter < 0)
            fallSilent(connection);
        return false;
    }
    PtpData response;
    response.number(Ok, 2).number(request.transaction, 4).number(bytes.size(), 4);
    return sendPacket(connection, EndData, transaction + bytes.substr(sent)) &&
           sendPacket(connection, OperationResponse, response.bytes());
}

}  // namespace tav::test
