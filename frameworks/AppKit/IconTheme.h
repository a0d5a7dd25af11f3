// SPDX-License-Identifier: MIT
// The icons of the desktop's theme, by the layout that the Linux desktops share.
#pragma once

#include <string>
#include <vector>

namespace appkit {

class KeyFile;

struct IconPlaces {
    std::vector<std::string> folders;  // in which themes lie, the first one first
    std::string theme;                 // the user's; may be empty

    // The user's own icons, XDG_DATA_HOME, XDG_DATA_DIRS; the theme of the settings of GTK or KDE.
    static IconPlaces ofProcess();
};

// The user's theme, what it inherits, the usual default, and "hicolor" as the last. Read once.
// Thread: any.
class IconTheme {
public:
    explicit IconTheme(const IconPlaces& places);

    // The file that has the icon in the size, or nearest to it. The first theme counts that has any
    // of the names, and in it the first name. Fails: empty when none has.
    std::string find(const std::vector<std::string>& names, int pixels) const;

private:
    struct Sizes {
        int smallest;  // pixels
        int largest;

        int distance(int pixels) const;
    };
    struct Folder {
        std::string path;
        Sizes sizes;
    };
    struct Theme {
        std::string name;
        std::vector<Folder> folders;
    };

    static Sizes sizesOf(const KeyFile& index, const std::string& folder);
    void add(const std::string& name, const IconPlaces& places);
    bool has(const std::string& name) const;
    static std::string findIn(const Theme& theme, const std::string& name, int pixels);

    std::vector<Theme> _themes;
};

}  // namespace appkit
