// SPDX-License-Identifier: MIT
#include "ImageCapture/Errors.h"

#include "ImageCapture/ICAApplication.h"

#include <cerrno>
#include <cstring>

namespace imagecapture {

int readingError(int number) {
    switch (number) {
    case ENOENT:
    case ELOOP:
    case ENOTDIR:
    case EXDEV:
        return fnfErr;
    case EACCES:
    case EPERM:
        return afpAccessDenied;
    case ENOMEM:
        return memFullErr;
    // A place on the card that cannot be read any more: others may be.
    case EIO:
    case EUCLEAN:
        return kICAFileCorruptedErr;
    default:
        return kICACommunicationErr;
    }
}

int writingError(int number) {
    switch (number) {
    case EEXIST:
        return dupFNErr;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return dskFulErr;
    case EACCES:
    case EPERM:
    case EROFS:
        return afpAccessDenied;
    case ENOENT:
    case ENOTDIR:
        return dirNFErr;
    case EINVAL:
    case ENAMETOOLONG:
        return bdNamErr;
    default:
        return ioErr;
    }
}

std::string describe(const std::string& what, const std::string& path, int number) {
    return what + " \"" + path + "\": " + std::strerror(number);
}

}  // namespace imagecapture
