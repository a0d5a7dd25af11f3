// SPDX-License-Identifier: MIT
#include "CoreServices/DesktopLink.h"

#include "CoreFoundation/PercentEscapes.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <unistd.h>

namespace coreservices {

namespace {

constexpr std::string_view kNetworkSchemes[] = {"afp",  "dav", "davs", "davs+sd", "dav+sd",
                                                "fish", "ftp", "ftps", "nfs",     "sftp",
                                                "smb",  "ssh", "cifs", "mtp",     "gphoto2"};
constexpr std::string_view kFolderIcons[] = {"folder",       "inode-directory", "user-home",
                                             "user-desktop", "gtk-directory",   "stock_folder"};
constexpr std::string_view kDiskIcons[] = {"drive-", "media-", "gnome-dev-", "network-server"};

std::string_view trimmed(std::string_view text) {
    size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string unescaped(std::string_view value) {
    std::string text;
    for (size_t i = 0; i < value.size(); ++i) {
        bool escape = value[i] == '\\' && i + 1 < value.size();
        constexpr std::string_view names = "sntr\\";
        size_t known = escape ? names.find(value[i + 1]) : std::string_view::npos;
        text += known == std::string_view::npos ? value[i] : " \n\t\r\\"[known];
        i += known == std::string_view::npos ? 0 : 1;
    }
    return text;
}

bool isNameByte(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// "$HOME" and "${HOME}"; of variables only, since commands are none of a listing's business.
std::string withVariables(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        size_t dollar = std::min(text.find('$'), text.size());
        result += text.substr(0, dollar);
        text.remove_prefix(dollar);
        if (text.empty())
            break;
        bool braced = text.size() > 1 && text[1] == '{';
        std::string_view rest = text.substr(braced ? 2 : 1);
        auto end = std::find_if_not(rest.begin(), rest.end(), isNameByte);
        std::string name(rest.begin(), end);
        bool whole = !name.empty() && (!braced || (end != rest.end() && *end == '}'));
        const char* value = whole ? std::getenv(name.c_str()) : nullptr;
        result += whole ? value == nullptr ? "" : value : "$";
        text.remove_prefix(whole ? name.size() + (braced ? 3 : 1) : 1);
    }
    return result;
}

struct Entry {
    std::string type;
    std::string url;
    std::string icon;
    std::string mimeTypes;
    bool deleted = false;
};

void take(Entry& entry, std::string_view key, std::string_view value) {
    if (key == "Type")
        entry.type = value;
    else if (key == "URL")
        entry.url = unescaped(value);
    else if (key == "URL[$e]")
        entry.url = withVariables(unescaped(value));
    else if (key == "Icon")
        entry.icon = value;
    else if (key == "Hidden")
        entry.deleted = value == "true";
    else if (key.ends_with("MimeType"))
        entry.mimeTypes = value;
}

// Only the group named after the file format counts, and it is the first.
Entry readEntry(std::string_view text) {
    Entry entry;
    bool inGroup = false;
    while (!text.empty()) {
        size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty() || line[0] == '#')
            continue;
        if (line[0] == '[' && inGroup)
            break;
        size_t equals = line.find('=');
        if (line[0] == '[')
            inGroup = line == "[Desktop Entry]" || line == "[KDE Desktop Entry]";
        else if (inGroup && equals != std::string_view::npos)
            take(entry, trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
    return entry;
}

template <size_t Count>
bool startsWithAny(std::string_view text, const std::string_view (&starts)[Count]) {
    return std::any_of(std::begin(starts), std::end(starts),
                       [text](std::string_view start) { return text.starts_with(start); });
}

AliasKind hintOf(const Entry& entry, bool onNetwork) {
    std::string_view icon = entry.icon;
    icon.remove_prefix(std::min(icon.size(), icon.rfind('/') + 1));
    if (startsWithAny(icon, kDiskIcons))
        return AliasKind::Disk;
    bool folder = onNetwork || entry.url.ends_with('/') || startsWithAny(icon, kFolderIcons) ||
                  entry.mimeTypes.find("inode/directory") != std::string::npos;
    return folder ? AliasKind::Folder : AliasKind::File;
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

std::string schemeOf(std::string_view url) {
    size_t colon = url.find(':');
    return colon == std::string_view::npos ? std::string() : lowerCase(url.substr(0, colon));
}

bool isNetworkPlace(std::string_view url) {
    std::string scheme = schemeOf(url);
    bool known = std::find(std::begin(kNetworkSchemes), std::end(kNetworkSchemes), scheme) !=
                 std::end(kNetworkSchemes);
    return known && url.substr(scheme.size()).starts_with("://") &&
           url.size() > scheme.size() + 3 && url.find('\0') == std::string_view::npos;
}

bool isThisHost(std::string_view host) {
    if (host.empty() || lowerCase(host) == "localhost")
        return true;
    char name[256] = "";
    return gethostname(name, sizeof name - 1) == 0 && lowerCase(host) == lowerCase(name);
}

}  // namespace

std::string localPath(std::string_view url) {
    std::string path(url);
    if (schemeOf(url) == "file") {
        std::string_view rest = url.substr(5);
        if (rest.starts_with("//")) {
            size_t slash = std::min(rest.find('/', 2), rest.size());
            if (!isThisHost(rest.substr(2, slash - 2)))
                return {};
            rest.remove_prefix(slash);
        }
        path = cf::percentDecoded(rest);
    }
    bool usable = !path.empty() && path[0] == '/' && path.find('\0') == std::string::npos;
    return usable ? path : std::string();
}

bool isOtherDesktopEntry(std::string_view beginning) {
    // The last line may be cut off in the middle.
    size_t end = beginning.rfind('\n');
    Entry entry = readEntry(beginning.substr(0, end == std::string_view::npos ? 0 : end));
    return !entry.type.empty() && entry.type != "Link";
}

std::optional<DesktopLink> parseDesktopLink(std::string_view text) {
    Entry entry = readEntry(text);
    if (entry.type != "Link" || entry.deleted)
        return std::nullopt;
    DesktopLink link;
    link.path = localPath(entry.url);
    if (link.path.empty() && isNetworkPlace(entry.url))
        link.url = entry.url;
    if (link.path.empty() && link.url.empty())
        return std::nullopt;
    link.hint = hintOf(entry, !link.url.empty());
    return link;
}

}  // namespace coreservices
