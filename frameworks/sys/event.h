// SPDX-License-Identifier: MIT
// Kernel queues: what happens to files and folders that are open, asked for one event at a time.
//
// Descriptors come from `open(path, O_EVTONLY)` of <sys/fcntl.h>. Those hold nothing once they are
// in a queue: the item can be deleted and its disk unmounted, and both are told. Other descriptors
// hold what they are open on, as everywhere.
//
// Thread: any, several at once too. A forked child has none of its parent's queues.
#pragma once

#include <stdint.h>
#include <time.h>

#ifdef __cplusplus
extern "C" {
#endif

/* filter */
#define EVFILT_VNODE (-4)

/* flags */
#define EV_ADD 0x0001    /* adds, or changes what is asked for; what was pending stays */
#define EV_DELETE 0x0002 /* removes; what is pending is forgotten */
#define EV_CLEAR 0x0020  /* an event that was returned is over; without it, it is returned again */
#define EV_ERROR 0x4000  /* returned for a change that failed: `data` is the error's number */

/* fflags */
#define NOTE_DELETE 0x00000001 /* the name is gone */
#define NOTE_WRITE 0x00000002  /* a file's contents; a folder's entries */
#define NOTE_EXTEND 0x00000004 /* the file has grown */
#define NOTE_ATTRIB 0x00000008
#define NOTE_LINK 0x00000010 /* the number of names; of a folder, its sub-folders */
#define NOTE_RENAME 0x00000020
#define NOTE_REVOKE 0x00000040 /* its disk was unmounted */

struct kevent {
    uintptr_t ident; /* the descriptor */
    int16_t filter;
    uint16_t flags;
    uint32_t fflags;
    intptr_t data;
    void* udata;
};

#define EV_SET(event, identifier, filter_, flags_, notes, data_, user)                             \
    do {                                                                                           \
        struct kevent* ev_set_event = (event);                                                     \
        ev_set_event->ident = (identifier);                                                        \
        ev_set_event->filter = (filter_);                                                          \
        ev_set_event->flags = (flags_);                                                            \
        ev_set_event->fflags = (notes);                                                            \
        ev_set_event->data = (data_);                                                              \
        ev_set_event->udata = (user);                                                              \
    } while (0)

/* A new queue; closed with close(2). Fails: -1 and EMFILE or ENFILE, also when the user has as many
   inotify instances as he may. */
__attribute__((visibility("default"))) int kqueue(void) __asm__("ula_kqueue");

/* The structure and the function share a name, as on the platform. */
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"

/* Makes the changes, then waits until there is an event, without a timeout for ever, and returns
   how many it has put into the list; 0 when the time is over.
   Fails: a change that fails is put into the list with EV_ERROR, and the call ends after the
   changes; where there is no room -1 and its error. EBADF: not a queue of this process, or not an
   open descriptor; ENOENT: not in the queue; EINVAL: another filter; ENOSPC: the user watches as
   many items as he may, see fs.inotify.max_user_watches. */
__attribute__((visibility("default"))) int
kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events,
       int eventCount, const struct timespec* timeout) __asm__("ula_kevent");

#pragma GCC diagnostic pop

#ifdef __cplusplus
}
#endif
