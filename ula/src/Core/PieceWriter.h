// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/filesystem/DurableFile.h"
#include "ula/foundation/thread/ConditionVariable.h"
#include "ula/foundation/thread/Mutex.h"
#include "ula/foundation/thread/Thread.h"

#include <memory>
#include <string_view>

namespace tav::ula {

/// Writes pieces of files one after the other on a thread of its own, while the next piece is read.
/// Thread: one uses it.
class PieceWriter {
public:
    PieceWriter();
    ~PieceWriter();
    PieceWriter(const PieceWriter&) = delete;
    PieceWriter& operator=(const PieceWriter&) = delete;

    /// Returns when the piece before this one is written; nobody else may touch the file, or the
    /// bytes, until the next call has returned. False: the piece before was of the same file and
    /// could not be written, nor is this one. What becomes of the last piece the file knows.
    bool write(filesystem::DurableFile& file, std::string_view bytes);
    /// Returns when all is written.
    void wait();

private:
    void run();
    /// False when there will be none.
    bool waitForPiece();
    void writePiece();
    void waitUntilWritten(thread::ScopedLock<thread::Mutex>& lock);

    thread::Mutex _mutex;
    thread::ConditionVariable _changed;
    filesystem::DurableFile* _file = nullptr;  ///< whose piece is to be written
    std::string_view _piece;
    filesystem::DurableFile* _failed = nullptr;
    bool _isEnding = false;
    std::unique_ptr<thread::Thread> _thread;  ///< none when the system has no more
};

}  // namespace tav::ula
