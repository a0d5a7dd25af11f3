// SPDX-License-Identifier: MIT
#include "ula/src/Core/PieceWriter.h"

#include <new>
#include <system_error>

namespace tav::ula {

PieceWriter::PieceWriter() {
    try {
        _thread = std::make_unique<thread::Thread>([this] { run(); });
    } catch (const std::system_error&) {
        // Then pieces are written by whoever reads them.
    }
}

PieceWriter::~PieceWriter() {
    {
        const thread::ScopedLock lock(_mutex);
        _isEnding = true;
    }
    _changed.notify_all();
    if (_thread)
        _thread->join();
}

void PieceWriter::run() {
    while (waitForPiece())
        writePiece();
}

bool PieceWriter::waitForPiece() {
    thread::ScopedLock lock(_mutex);
    while (_file == nullptr && !_isEnding)
        _changed.wait(lock);
    return _file != nullptr;
}

/// What is to be written changes only once it is.
void PieceWriter::writePiece() {
    bool isWritten = false;
    try {
        isWritten = _file->write(_piece);
    } catch (const std::bad_alloc&) {
        // The file knows that it has failed, if not why.
    }
    {
        const thread::ScopedLock lock(_mutex);
        _failed = isWritten ? nullptr : _file;
        _file = nullptr;
    }
    _changed.notify_all();
}

bool PieceWriter::write(filesystem::DurableFile& file, std::string_view bytes) {
    {
        thread::ScopedLock lock(_mutex);
        waitUntilWritten(lock);
        if (_failed == &file)
            return false;
        _file = &file;
        _piece = bytes;
    }
    if (_thread)
        _changed.notify_all();
    else
        writePiece();
    return true;
}

void PieceWriter::wait() {
    thread::ScopedLock lock(_mutex);
    waitUntilWritten(lock);
    // Another file may come to lie where this one did.
    _failed = nullptr;
}

void PieceWriter::waitUntilWritten(thread::ScopedLock<thread::Mutex>& lock) {
    while (_file != nullptr)
        _changed.wait(lock);
}

}  // namespace tav::ula
