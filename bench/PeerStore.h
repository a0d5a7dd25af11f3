// SPDX-License-Identifier: MIT
#pragma once

#include "bench/PeerData.h"
#include "bench/ScratchFolder.h"

#include <QSettings>
#include <QString>
#include <filesystem>
#include <glib.h>
#include <map>
#include <memory>
#include <string>

namespace tav::bench {

/// What a plain C++ program would keep its settings in.
using StdStore = std::map<std::string, std::map<std::string, Value>>;

StdStore toStdStore(const Data& data);
bool operator==(const Value& left, const Value& right);

inline QString toQString(const std::string& text) {
    return QString::fromStdString(text);
}
void fill(QSettings& settings, const Data& data);

struct FreeGKeyFile {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using GKeyFilePtr = std::unique_ptr<GKeyFile, FreeGKeyFile>;
GKeyFilePtr toGKeyFile(const Data& data);

/// Files of this run, removed at its end.
class BenchFolder {
public:
    static const BenchFolder& instance();
    std::string operator/(const std::string& name) const { return _folder / name; }

private:
    BenchFolder() : _folder(std::filesystem::temp_directory_path()) {}

    ScratchFolder _folder;
};

/// The data as QSettings writes it, in a file that is made once. Owner: the folder.
const std::string& qsettingsFile(std::size_t keyCount);
/// A copy under a name that QSettings has not seen: it keeps what it read by name.
std::string copyOfQSettingsFile(std::size_t keyCount);

}  // namespace tav::bench
