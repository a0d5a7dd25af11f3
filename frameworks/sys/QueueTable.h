// SPDX-License-Identifier: MIT
#pragma once

#include "sys/EventQueue.h"

#include <memory>
#include <mutex>
#include <unordered_map>

namespace kernelqueue {

/// The process's queues by their descriptors. A queue ends with a plain close(2), of which nobody
/// tells: whether a number still stands for the queue is asked at each use.
/// Thread: any. A forked child finds its parent's queues closed.
class QueueTable {
public:
    static QueueTable& instance();

    /// Fails: -1 and errno.
    int add();
    /// Null for what is no queue.
    std::shared_ptr<EventQueue> find(int descriptor);

private:
    using Queues = std::unordered_map<int, std::shared_ptr<EventQueue>>;

    QueueTable();
    static void beforeFork();
    static void afterForkInParent();
    static void afterForkInChild();
    void leaveQueuesToParent();

    bool mark(int descriptor);
    bool isMarked(int descriptor) const;

    std::mutex _mutex;
    Queues _queues;
    /// Knows each queue by what is open, not by the number alone, and loses it when it is closed.
    int _marks = -1;
};

}  // namespace kernelqueue
