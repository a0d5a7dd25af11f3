// SPDX-License-Identifier: MIT
#include "DiskArbitration/FileSystemKinds.h"

#include "CoreServices/StallingMount.h"

#include <algorithm>
#include <string_view>

namespace diskarbitration {

namespace {

// The part behind "fuse.".
constexpr std::string_view kNetworkProcesses[] = {
    "ceph",     "ceph-fuse",  "cephfs",   "cifs",        "curlftpfs", "davfs",
    "davfs2",   "gcsfuse",    "geesefs",  "glusterfs",   "goofys",    "google-drive-ocamlfuse",
    "gvfs",     "gvfsd-fuse", "hdfs",     "httpdirfs",   "httpfs",    "ipfs",
    "juicefs",  "kio-fuse",   "mfs",      "moosefs",     "nfs",       "onedriver",
    "prl_fsd",  "rclone",     "rclonefs", "s3fs",        "s3ql",      "seaweedfs",
    "smbnetfs", "sshfs",      "tahoe",    "vmhgfs-fuse", "webdavfs",  "wdfs"};
constexpr std::string_view kPhones[] = {
    "aft-mtp-mount", "android-file-transfer", "go-mtpfs", "gphotofs", "ifuse", "jmtpfs",
    "mtpfs",         "simple-mtpfs"};
constexpr std::string_view kPools[] = {"bcachefs", "btrfs", "ubifs", "jffs2", "zfs"};

template <size_t Count>
bool isIn(const std::string_view (&list)[Count], std::string_view name) {
    return std::find(std::begin(list), std::end(list), name) != std::end(list);
}

// "sftp://host/", "user@host:/folder", "host:folder". Not "/a:b", and not "rclone" alone.
bool namesAServer(std::string_view source) {
    size_t colon = source.find(':');
    return colon != std::string_view::npos && colon > 0 && source.find('/') > colon;
}

}  // namespace

Backing backingOf(const coreservices::Mount& mount) {
    constexpr std::string_view fuse = "fuse.";
    std::string_view type = mount.type;
    if (coreservices::isNetworkType(type))
        return Backing::Network;
    if (isIn(kPools, type))
        return Backing::Pool;
    bool isProcess = type == "fuse" || type.substr(0, fuse.size()) == fuse;
    if (!isProcess)
        return Backing::Memory;
    std::string_view process = type.substr(std::min(type.size(), fuse.size()));
    if (isIn(kPhones, process))
        return Backing::Phone;
    bool isNetwork = isIn(kNetworkProcesses, process) || namesAServer(mount.source);
    return isNetwork ? Backing::Network : Backing::Memory;
}

}  // namespace diskarbitration
