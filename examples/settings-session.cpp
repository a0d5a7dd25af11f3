// SPDX-License-Identifier: MIT
#include <ula/SettingsException.h>
#include <ula/SettingsXML.h>

#include <cstdio>
#include <memory>

using tav::ula::FastString;
using tav::ula::SettingsXML;

namespace {

/// The constructor reads the file. A missing one is an empty store; one that is XML but no settings
/// file throws, and a copy of it has been kept aside by then.
std::unique_ptr<SettingsXML> open(const char* path) {
    try {
        return std::make_unique<SettingsXML>("Photos", "Example", path, false);
    } catch (const tav::ula::SettingsException& exception) {
        std::fprintf(stderr, "%s: %s; starting with defaults\n", path, exception.what());
        auto settings = std::make_unique<SettingsXML>("Photos", "Example", false);
        return settings;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const auto settings = open(argc > 1 ? argv[1] : "photos.xml");
    settings->setKeepBackup(true);

    // Every store is told, whether or not the value is a new one.
    int stores = 0;
    auto connection = settings->changed().connect([&stores] { ++stores; });

    // A read names its default. What is missing, or of another type, is stored with it, so that
    // the file lists every setting that was ever asked for.
    const int width = settings->getInt("Window", "Width", 1280);
    const bool isMaximized = settings->getBool("Window", "Maximized", false);
    const double zoom = settings->getDouble("Browser", "Zoom", 1.25);
    const FastString title = settings->getString("Window", "Title", "Größe · 写真 · Été");
    auto folders = settings->getStringArray("Recent", "Folders", {"/photos/2024"});

    folders.push_back("/photos/2025");
    settings->setGeneric("Recent", "Folders", folders);
    connection.disconnect();

    std::printf("%s: %d wide%s, zoom %g, %zu recent folders, %d stores\n",
                title.toStdString().c_str(), width, isMaximized ? " (maximized)" : "", zoom,
                folders.size(), stores);
    if (settings->write())
        return 0;
    // The file is as it was, and this says why.
    std::fprintf(stderr, "%s\n", settings->lastError().c_str());
    return 1;
}
