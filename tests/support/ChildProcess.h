// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <functional>
#include <new>
#include <string>
#include <sys/mman.h>
#include <sys/types.h>

namespace tav::test {

/// A process of its own that runs a function and ends. Still alive at the end: killed.
class ChildProcess {
public:
    explicit ChildProcess(const std::function<void()>& function);
    ~ChildProcess() { kill(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// SIGKILL, and waits until the process is gone.
    void kill();
    pid_t id() const { return _id; }
    void signal(int number) const { ::kill(_id, number); }
    /// Waits for the end. The exit code, or minus the number of the signal.
    int wait();

private:
    pid_t _id;
};

/// Runs `function` in a process of its own and returns its text; or how the process died.
std::string runInChild(const std::function<std::string()>& function);

/// An object that a process shares with the children that it makes later.
template <class T>
class Shared {
public:
    Shared() {
        void* const memory =
            mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        _object = new (memory) T();
    }
    ~Shared() { munmap(_object, sizeof(T)); }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    T* operator->() { return _object; }
    T& operator*() { return *_object; }

private:
    T* _object;
};

}  // namespace tav::test
