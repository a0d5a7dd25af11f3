// SPDX-License-Identifier: MIT
// What the platform's header of this name says of a mounted file system; the system's own header is
// included, too. Not to be used beside <sys/vfs.h>, which has a structure of the same name.
#pragma once

#include_next <sys/mount.h>

#include <stdint.h>

#ifdef _SYS_STATFS_H
#error "<sys/vfs.h> and <sys/statfs.h> describe another struct statfs"
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define MFSTYPENAMELEN 16
#define MNT_PATH_LENGTH 4096

/* f_flags */
#define MNT_RDONLY 0x00000001

struct statfs {
    uint32_t f_flags;
    char f_fstypename[MFSTYPENAMELEN];
    char f_mntonname[MNT_PATH_LENGTH];
    char f_mntfromname[MNT_PATH_LENGTH];
};

/* The structure and the function share a name, as on the platform. */
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"

/* What the path lies on. Answered from the table of mounts: a server that is gone keeps nobody
   waiting. Longer texts are cut. Thread: any.
   Fails: -1 and ENOENT for what does not exist on a disk of this computer, or lies on no mount.
   The label leaves the system's function of this name alone. */
__attribute__((visibility("default"))) int statfs(const char* path,
                                                  struct statfs* information) __asm__("ula_statfs");

#pragma GCC diagnostic pop

#ifdef __cplusplus
}
#endif
