// SPDX-License-Identifier: MIT
// A folder's children against the peers: the plain system calls that the same record takes, Qt's
// QDir, GIO. Every contestant ends with a record of each entry.
#include "bench/PeerData.h"
#include "bench/ScratchFolder.h"
#include "tests/support/Mounts.h"
#include "ula/Dir.h"

#include <QDir>
#include <QFileInfo>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gio/gio.h>
#include <map>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// 80 % small files of 20 extensions, some of them read-only, 8 % folders, 6 % links to a folder or
/// to nothing, 6 % hidden files.
class Tree {
public:
    explicit Tree(std::size_t entries) {
        tav::bench::Random random(11);
        for (std::size_t i = 0; i < entries; ++i)
            make(random.below(100), std::to_string(i), random.below(std::size(kExtensions)));
    }
    std::string path() const { return _folder.path(); }

private:
    static constexpr const char* kExtensions[] = {
        ".jpg", ".JPG", ".nef", ".cr2",  ".tif", ".png", ".txt", ".xml", ".plist", ".pdf",
        ".mov", ".mp4", ".zip", ".html", ".doc", ".psd", ".dng", ".wav", ".mp3",   ""};

    void make(std::uint32_t kind, const std::string& number, std::uint32_t extension) {
        if (kind < 80) {
            const fs::path file = _path / ("IMG_" + number + " copy" + kExtensions[extension]);
            std::ofstream(file) << "hello benchmark\n";
            if (kind < 8)
                fs::permissions(file, fs::perms(0444));
        } else if (kind < 88) {
            fs::create_directory(_path / ("Folder " + number));
        } else if (kind < 94) {
            fs::create_symlink(kind < 91 ? "." : "nothing", _path / ("Link " + number));
        } else {
            std::ofstream(_path / (".hidden" + number)) << "x";
        }
    }

    const tav::bench::ScratchFolder _folder{fs::temp_directory_path()};
    const fs::path _path = _folder.path();
};

const Tree& tree(std::int64_t entries) {
    static std::map<std::int64_t, std::unique_ptr<Tree>> trees;
    std::unique_ptr<Tree>& found = trees[entries];
    if (found == nullptr)
        found = std::make_unique<Tree>(static_cast<std::size_t>(entries));
    return *found;
}

/// As the model names the folder. The process may need a /Volumes with the start-up disk.
std::string asTheModelNamesIt(const std::string& path) {
    static const bool isReady = [] {
        if (!fs::exists("/Volumes/Linux"))
            std::fputs(tav::test::isolateMounts().c_str(), stderr);
        return true;
    }();
    benchmark::DoNotOptimize(isReady);
    return tav::test::onStartupDisk(path);
}

struct Record {
    std::string name;
    std::string title;
    std::string target;
    std::string path;
    std::string type;
    unsigned flags = 0;
};

std::size_t withUla(const std::string& path) {
    tav::ula::Dir dir(asTheModelNamesIt(path));
    return dir.children(false).size();
}

std::size_t foldersWithUla(const std::string& path) {
    tav::ula::Dir dir(asTheModelNamesIt(path));
    return dir.children(true).size();
}

bool isSelfOrParent(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

/// One entry with the system's own calls: what it is, where it leads, whether it may be written.
bool examinePlainly(int folder, const std::string& path, const char* name, Record& record) {
    record.name = record.title = name;
    record.path = path + "/" + record.name;
    if (name[0] == '.')
        record.flags |= 8;
    struct stat item;
    if (fstatat(folder, name, &item, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    if (S_ISLNK(item.st_mode)) {
        char target[4096];
        const ssize_t length = readlinkat(folder, name, target, sizeof target);
        record.flags |= 4;
        record.target.assign(target, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    } else {
        record.target = record.path;
        if (S_ISDIR(item.st_mode))
            record.flags |= 32;
    }
    if (faccessat(folder, name, W_OK, 0) != 0)
        record.flags |= 16;
    const std::size_t dot = record.name.rfind('.');
    if (dot != std::string::npos)
        record.type = record.name.substr(dot + 1);
    return true;
}

std::vector<Record> recordsPlainly(const std::string& path) {
    std::vector<Record> records;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(path.c_str()), closedir);
    while (const dirent* entry = readdir(stream.get())) {
        Record record;
        if (!isSelfOrParent(entry->d_name) &&
            examinePlainly(dirfd(stream.get()), path, entry->d_name, record))
            records.push_back(std::move(record));
    }
    return records;
}

std::size_t plainly(const std::string& path) {
    return recordsPlainly(path).size();
}

std::size_t withQDir(const std::string& path) {
    const QDir dir(QString::fromStdString(path));
    std::vector<QString> texts;
    std::size_t flagged = 0;
    const QFileInfoList entries = dir.entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::NoSort);
    for (const QFileInfo& entry : entries) {
        const bool isLink = entry.isSymLink();
        if (entry.isDir() || isLink || entry.isHidden() || !entry.isWritable())
            ++flagged;
        texts.push_back(entry.fileName());
        if (isLink)
            texts.push_back(entry.symLinkTarget());
        texts.push_back(entry.suffix());
    }
    benchmark::DoNotOptimize(flagged);
    return static_cast<std::size_t>(entries.size());
}

Record recordOf(GFileInfo* info) {
    Record record;
    record.name = g_file_info_get_name(info);
    record.title = g_file_info_get_display_name(info);
    if (g_file_info_get_is_hidden(info))
        record.flags |= 8;
    if (const char* target = g_file_info_get_symlink_target(info)) {
        record.flags |= 4;
        record.target = target;
    }
    if (g_file_info_get_file_type(info) == G_FILE_TYPE_DIRECTORY)
        record.flags |= 32;
    if (!g_file_info_get_attribute_boolean(info, G_FILE_ATTRIBUTE_ACCESS_CAN_WRITE))
        record.flags |= 16;
    if (const char* type =
            g_file_info_get_attribute_string(info, G_FILE_ATTRIBUTE_STANDARD_FAST_CONTENT_TYPE))
        record.type = type;
    return record;
}

std::size_t withGio(const std::string& path) {
    constexpr const char* kAttributes =
        "standard::name,standard::display-name,standard::type,standard::is-hidden,"
        "standard::is-symlink,standard::symlink-target,standard::fast-content-type,"
        "access::can-write";
    GFile* const folder = g_file_new_for_path(path.c_str());
    GFileEnumerator* const entries = g_file_enumerate_children(
        folder, kAttributes, G_FILE_QUERY_INFO_NOFOLLOW_SYMLINKS, nullptr, nullptr);
    std::vector<Record> records;
    while (GFileInfo* const info = g_file_enumerator_next_file(entries, nullptr, nullptr)) {
        records.push_back(recordOf(info));
        g_object_unref(info);
    }
    g_object_unref(entries);
    g_object_unref(folder);
    return records.size();
}

/// The first visible folder.
std::size_t containsWithUla(const std::string& path) {
    const tav::ula::Dir dir(asTheModelNamesIt(path));
    return dir.containsChildren(true) ? 1 : 0;
}

std::size_t containsWithQDir(const std::string& path) {
    const QDir dir(QString::fromStdString(path));
    return dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort).isEmpty() ? 0 : 1;
}

void list(benchmark::State& state, std::size_t (*contestant)(const std::string&)) {
    const std::string path = tree(state.range(0)).path();
    if (contestant(path) == 0)
        state.SkipWithError("nothing was listed");
    for (auto _ : state)
        benchmark::DoNotOptimize(contestant(path));
    state.counters["ns_per_entry"] = benchmark::Counter(
        static_cast<double>(state.range(0)) * static_cast<double>(state.iterations()) / 1e9,
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void contestant(const char* name, std::size_t (*function)(const std::string&)) {
    benchmark::RegisterBenchmark(name, list, function)
        ->Arg(10'000)
        ->Arg(100'000)
        ->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
    contestant("children/ula", withUla);
    contestant("folders/ula", foldersWithUla);
    contestant("children/plain record", plainly);
    contestant("children/QDir", withQDir);
    contestant("children/GIO", withGio);
    contestant("contains/ula", containsWithUla);
    contestant("contains/QDir", containsWithQDir);
    return true;
}();

}  // namespace
