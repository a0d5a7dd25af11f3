// SPDX-License-Identifier: MIT
#include "CoreServices/NetworkPlace.h"

#include "CoreFoundation/PercentEscapes.h"

#include <algorithm>
#include <cctype>

namespace coreservices {

namespace {

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

struct Place {
    std::string scheme;
    std::string server;
    std::string path;  // "/share/folder", without a slash at its end
};

std::string_view withoutUserAndPort(std::string_view authority) {
    size_t at = authority.rfind('@');
    if (at != std::string_view::npos)
        authority.remove_prefix(at + 1);
    size_t bracket = authority.rfind(']');
    size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    return authority.substr(0, colon);
}

std::string withoutLastSlashes(std::string path) {
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    return path;
}

Place placeOf(std::string_view url) {
    size_t colon = url.find("://");
    if (colon == std::string_view::npos)
        return {};
    std::string_view rest = url.substr(colon + 3);
    size_t slash = std::min(rest.find('/'), rest.size());
    return {lowerCase(url.substr(0, colon)), lowerCase(withoutUserAndPort(rest.substr(0, slash))),
            withoutLastSlashes(cf::percentDecoded(rest.substr(slash)))};
}

bool isOneOf(const std::string& word, std::initializer_list<const char*> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// "user@server:/folder"; without a folder it is the user's home, which no URL names.
Place placeOfColonForm(const std::string& scheme, const std::string& source) {
    size_t colon = source.find(":/");
    if (colon == std::string::npos)
        return {};
    return {scheme, lowerCase(withoutUserAndPort(source.substr(0, colon))),
            withoutLastSlashes(source.substr(colon + 1))};
}

Place placeOf(const Mount& mount) {
    if (isOneOf(mount.type, {"cifs", "smb3"}))
        return placeOf("smb:" + mount.source);
    if (isOneOf(mount.type, {"nfs", "nfs4"}))
        return placeOfColonForm("nfs", mount.source);
    if (mount.type == "fuse.sshfs")
        return placeOfColonForm("sftp", mount.source);
    if (isOneOf(mount.type, {"davfs", "fuse.davfs", "fuse"})) {
        Place place = placeOf(std::string_view(mount.source));
        bool web = isOneOf(place.scheme, {"http", "https"});
        place.scheme = place.scheme == "https" ? "davs" : "dav";
        return web ? place : Place();
    }
    return {};
}

// Names that mean the same.
std::string protocol(const std::string& scheme) {
    if (scheme == "ssh" || scheme == "fish")
        return "sftp";
    return scheme == "cifs" ? "smb" : scheme;
}

// What the path has more than the folder, or nothing. Shares and their folders ignore case.
bool isBelow(const Place& wanted, const Place& mounted) {
    const std::string& folder = mounted.path;
    std::string start = wanted.path.substr(0, folder.size());
    bool same =
        protocol(wanted.scheme) == "smb" ? lowerCase(start) == lowerCase(folder) : start == folder;
    return same && (wanted.path.size() == folder.size() || wanted.path[folder.size()] == '/');
}

}  // namespace

std::string mountedPathOf(std::string_view url, const std::vector<Mount>& mounts) {
    Place wanted = placeOf(url);
    if (wanted.server.empty())
        return {};
    for (const Mount& mount : mounts) {
        Place mounted = placeOf(mount);
        // Only part of the file system may be mounted here.
        if (mount.root != "/" || mounted.server != wanted.server ||
            mounted.scheme != protocol(wanted.scheme) || !isBelow(wanted, mounted))
            continue;
        return mount.point + wanted.path.substr(mounted.path.size());
    }
    return {};
}

std::string serverOf(std::string_view url) {
    return placeOf(url).server;
}

}  // namespace coreservices
