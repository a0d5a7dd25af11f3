// SPDX-License-Identifier: MIT
#include "CoreServices/NetworkPlace.h"

#include <gtest/gtest.h>

namespace {

using namespace coreservices;

Mount mountOf(const char* type, const char* source, const char* point) {
    return {1, "/", point, type, source};
}

TEST(NetworkPlace, IsFoundWhereTheKernelHasItMounted) {
    std::vector<Mount> mounts = {mountOf("ext4", "/dev/sda1", "/"),
                                 mountOf("cifs", "//Server/Share", "/mnt/share"),
                                 mountOf("nfs4", "filer:/export/home", "/mnt/home"),
                                 mountOf("fuse.sshfs", "ann@host:/srv", "/mnt/ssh"),
                                 mountOf("fuse", "https://cloud.example/dav/", "/mnt/dav")};
    EXPECT_EQ(mountedPathOf("smb://server/share", mounts), "/mnt/share");
    EXPECT_EQ(mountedPathOf("smb://ann@SERVER/SHARE/a%20b/", mounts), "/mnt/share/a b");
    EXPECT_EQ(mountedPathOf("nfs://filer/export/home/ann", mounts), "/mnt/home/ann");
    EXPECT_EQ(mountedPathOf("sftp://host:22/srv/www", mounts), "/mnt/ssh/www");
    EXPECT_EQ(mountedPathOf("ssh://bob@host/srv", mounts), "/mnt/ssh");
    EXPECT_EQ(mountedPathOf("davs://cloud.example/dav/x", mounts), "/mnt/dav/x");
}

TEST(NetworkPlace, IsNotFoundBesideOrAboveWhatIsMounted) {
    std::vector<Mount> mounts = {mountOf("cifs", "//server/share", "/mnt/share"),
                                 mountOf("fuse.sshfs", "host:", "/mnt/home"),
                                 mountOf("fuse", "https://cloud.example/dav", "/mnt/dav"),
                                 {1, "/sub", "/mnt/part", "nfs", "filer:/export"}};
    EXPECT_EQ(mountedPathOf("smb://server/shares", mounts), "");
    EXPECT_EQ(mountedPathOf("smb://server", mounts), "");
    EXPECT_EQ(mountedPathOf("sftp://server/share", mounts), "");
    EXPECT_EQ(mountedPathOf("sftp://host/home", mounts), "");
    EXPECT_EQ(mountedPathOf("dav://cloud.example/dav", mounts), "");
    EXPECT_EQ(mountedPathOf("nfs://filer/export", mounts), "");
    EXPECT_EQ(mountedPathOf("smb:", mounts), "");
    EXPECT_EQ(mountedPathOf("", mounts), "");
}

TEST(NetworkPlace, NamesItsServer) {
    EXPECT_EQ(serverOf("sftp://ann@Server.example:22/x"), "server.example");
    EXPECT_EQ(serverOf("smb://[fe80::1]:445/x"), "[fe80::1]");
    EXPECT_EQ(serverOf("/x"), "");
}

}  // namespace
