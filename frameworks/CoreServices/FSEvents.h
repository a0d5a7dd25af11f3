// SPDX-License-Identifier: MIT
// File-system event streams: what changes in trees of folders, told on a run loop.
//
// Thread: a stream's functions may be called from any thread, one at a time for one stream. The
// call-back comes on the run loop on which the stream was scheduled, and in the thread that calls
// FSEventStreamFlushSync. The stream may be stopped, invalidated and released within it.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFRunLoop.h>
#include <CoreFoundation/CFString.h>

#include <stddef.h>

CF_EXTERN_C_BEGIN

typedef UInt64 FSEventStreamEventId;
enum : FSEventStreamEventId { kFSEventStreamEventIdSinceNow = 0xFFFFFFFFFFFFFFFFULL };

typedef UInt32 FSEventStreamCreateFlags;
enum : FSEventStreamCreateFlags {
    kFSEventStreamCreateFlagNone = 0x00,
    /// The first change after a quiet time is told at once, those that follow after the latency.
    kFSEventStreamCreateFlagNoDefer = 0x02,
    /// Tells when a root, or a folder above it, is removed, moved, or comes to be.
    kFSEventStreamCreateFlagWatchRoot = 0x04,
    /// Tells of single items, in the order of the changes, instead of folders.
    kFSEventStreamCreateFlagFileEvents = 0x10,
};

typedef UInt32 FSEventStreamEventFlags;
enum : FSEventStreamEventFlags {
    kFSEventStreamEventFlagNone = 0x00,
    /// Changes below the path could not be followed one by one: the folder is to be read again, and
    /// those below it. A line in the log says why.
    kFSEventStreamEventFlagMustScanSubDirs = 0x01,
    kFSEventStreamEventFlagHistoryDone = 0x10,
    kFSEventStreamEventFlagRootChanged = 0x20,
    kFSEventStreamEventFlagMount = 0x40,
    kFSEventStreamEventFlagUnmount = 0x80,
    kFSEventStreamEventFlagItemCreated = 0x100,
    kFSEventStreamEventFlagItemRemoved = 0x200,
    kFSEventStreamEventFlagItemInodeMetaMod = 0x400,
    /// A move within a root is two events with identifiers that follow each other: the first has
    /// the old path, the second the new one. What moves in is created, and everything below it,
    /// what moves out removed.
    kFSEventStreamEventFlagItemRenamed = 0x800,
    kFSEventStreamEventFlagItemModified = 0x1000,
    /// Everything that is no folder.
    kFSEventStreamEventFlagItemIsFile = 0x10000,
    kFSEventStreamEventFlagItemIsDir = 0x20000,
};

typedef struct __FSEventStream* FSEventStreamRef;
typedef const struct __FSEventStream* ConstFSEventStreamRef;

typedef struct {
    CFIndex version;
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
} FSEventStreamContext;

/// `eventPaths` is an array of `numEvents` C strings in the bytes of the file system. They begin
/// with a root as the stream was given it. Folders in which something has changed, or which are to
/// be scanned, end with a slash; roots that have changed and single items do not. Owner: the
/// stream, for the time of the call.
typedef void (*FSEventStreamCallback)(ConstFSEventStreamRef stream, void* info, size_t numEvents,
                                      void* eventPaths, const FSEventStreamEventFlags* eventFlags,
                                      const FSEventStreamEventId* eventIds);

/// A stream over everything at and below the paths, which need not exist. Symbolic links within a
/// root's own path are followed, those below it are not. Nothing is watched before the start.
/// There is no history: a stream that asks for an earlier event is told to scan every root, then
/// that the history is done.
/// Units: `latency` in seconds.
/// Fails: null for a context of another version than 0 or without paths.
CF_EXPORT FSEventStreamRef FSEventStreamCreate(
    CFAllocatorRef allocator, FSEventStreamCallback callback, FSEventStreamContext* context,
    CFArrayRef pathsToWatch, FSEventStreamEventId sinceWhen, CFTimeInterval latency,
    FSEventStreamCreateFlags flags);
CF_EXPORT void FSEventStreamRetain(FSEventStreamRef stream);
CF_EXPORT void FSEventStreamRelease(FSEventStreamRef stream);
CF_EXPORT void FSEventStreamScheduleWithRunLoop(FSEventStreamRef stream, CFRunLoopRef runLoop,
                                                CFStringRef runLoopMode);
CF_EXPORT void FSEventStreamUnscheduleFromRunLoop(FSEventStreamRef stream, CFRunLoopRef runLoop,
                                                  CFStringRef runLoopMode);
/// Watches from here on: when this has returned, every later change is told.
/// Fails: false when the system gives no watching at all, with a line in the log.
CF_EXPORT Boolean FSEventStreamStart(FSEventStreamRef stream);
/// Nothing is told after this has returned, except by a call-back in progress on another thread.
CF_EXPORT void FSEventStreamStop(FSEventStreamRef stream);
/// Unschedules for ever. Needed before the last release: a stream that is scheduled lives on.
CF_EXPORT void FSEventStreamInvalidate(FSEventStreamRef stream);
/// Tells, in the calling thread, what has happened up to this call.
CF_EXPORT void FSEventStreamFlushSync(FSEventStreamRef stream);
/// Has the run loop tell soon what has happened up to this call; returns the last event's number.
CF_EXPORT FSEventStreamEventId FSEventStreamFlushAsync(FSEventStreamRef stream);
CF_EXPORT FSEventStreamEventId FSEventStreamGetLatestEventId(ConstFSEventStreamRef stream);
CF_EXPORT FSEventStreamEventId FSEventsGetCurrentEventId(void);
/// Owner: the caller.
CF_EXPORT CFArrayRef FSEventStreamCopyPathsBeingWatched(ConstFSEventStreamRef stream);
/// Prints the stream's state to the standard error output.
CF_EXPORT void FSEventStreamShow(ConstFSEventStreamRef stream);

CF_EXTERN_C_END
