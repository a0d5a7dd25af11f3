// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

typedef struct _GKeyFile GKeyFile;

namespace appkit {

// A file of groups with keys, as the desktops write their settings. What is not there, or is not of
// the wanted form, is empty.
class KeyFile {
public:
    KeyFile();

    // Fails: false, with nothing in it.
    bool read(const std::string& path);

    std::string text(const std::string& group, const char* key) const;
    // Separated by commas.
    std::vector<std::string> list(const std::string& group, const char* key) const;
    int number(const std::string& group, const char* key, int otherwise) const;

private:
    struct Free {
        void operator()(GKeyFile* file) const;
    };
    std::unique_ptr<GKeyFile, Free> _file;
};

}  // namespace appkit
