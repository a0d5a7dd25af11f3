// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/ExecutionJob.h"

#include <utility>

namespace tav::ula {

/// Jobs in the order in which they came, linked through the jobs themselves.
class JobList {
public:
    JobList() = default;
    JobList(const JobList&) = delete;
    JobList& operator=(const JobList&) = delete;
    ~JobList() {
        while (takeFront())
            continue;
    }

    std::size_t size() const { return _size; }

    void append(Job job) {
        ExecutionJob* const last = std::exchange(_last, job.get());
        job->previous = last;
        (last ? last->next : _first) = job.get();
        job->queued.swap(job);
        ++_size;
    }

    /// Takes over all of another list's, behind its own.
    void appendAll(JobList& other) {
        if (!other._first)
            return;
        other._first->previous = _last;
        (_last ? _last->next : _first) = other._first;
        _last = other._last;
        _size += other._size;
        other._first = other._last = nullptr;
        other._size = 0;
    }

    /// Gives the list's reference; an empty one when there is nothing.
    Job takeFront() { return _first ? remove(*_first) : Job(); }

    /// The same for a job anywhere in the list; empty when it is not in it.
    Job remove(ExecutionJob& job) {
        if (!job.queued)
            return Job();
        (job.previous ? job.previous->next : _first) = job.next;
        (job.next ? job.next->previous : _last) = job.previous;
        job.previous = job.next = nullptr;
        --_size;
        return std::move(job.queued);
    }

    /// Forgets all jobs, which keep the list's reference for ever, after a last look at each.
    template <class Function>
    void abandon(Function&& look) {
        for (ExecutionJob* job = _first; job; job = job->next)
            look(*job);
        _first = _last = nullptr;
        _size = 0;
    }

private:
    ExecutionJob* _first = nullptr;
    ExecutionJob* _last = nullptr;
    std::size_t _size = 0;
};

}  // namespace tav::ula
