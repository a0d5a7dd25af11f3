// SPDX-License-Identifier: MIT
#include "AppKit/LauncherProgress.h"

#include "AppKit/ProcessTable.h"
#include "AppKit/RunningApplications.h"
#include "AppKit/SessionBus.h"
#include "CoreFoundation/WholeContent.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <gio/gio.h>
#include <mutex>
#include <string>
#include <unistd.h>

namespace appkit {

namespace {

constexpr char kPath[] = "/com/canonical/unity/launcherentry/1";
constexpr char kInterface[] = "com.canonical.Unity.LauncherEntry";

// Null where there is none. One for the process: a dock drops what is shown when it is closed.
GDBusConnection* sessionBus() {
    static GDBusConnection* const bus = connectToSessionBus().release();
    return bus;
}

const std::string& identifier() {
    static const auto* const text = new std::string(ownEntryIdentifier());
    return *text;
}

void emit(double fraction, bool isVisible) {
    GDBusConnection* bus = identifier().empty() ? nullptr : sessionBus();
    if (bus == nullptr)
        return;
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "progress", g_variant_new_double(fraction));
    g_variant_builder_add(&properties, "{sv}", "progress-visible",
                          g_variant_new_boolean(isVisible));
    const std::string entry = "application://" + identifier() + ".desktop";
    g_dbus_connection_emit_signal(bus, nullptr, kPath, kInterface, "Update",
                                  g_variant_new("(sa{sv})", entry.c_str(), &properties), nullptr);
    // Programs take it away and end: it would be lost with the thread that sends it.
    if (!isVisible)
        flush(bus);
}

// A file that is there while progress is shown, with the number of the process. Empty where there
// is no folder for it, or no entry.
std::string markPath() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    const bool isUsable = folder != nullptr && folder[0] == '/' && !identifier().empty() &&
                          identifier().find('/') == std::string::npos;
    return isUsable ? std::string(folder) + "/" + identifier() + ".progress" : "";
}

void mark() {
    const std::string path = markPath();
    if (path.empty())
        return;
    const cf::Descriptor file(
        open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    // Without the mark a dock that does not notice the end of programs shows what was last.
    if (file && !cf::writeAll(file.get(), std::to_string(getpid())))
        unlink(path.c_str());
}

// The one that shows progress still runs.
bool isAlive(const std::string& path) {
    const cf::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    const std::string text = file ? cf::readUpTo(file.get(), 15) : "";
    if (text.empty())
        return false;
    const ProcessTable processes;
    const pid_t process = atoi(text.c_str());
    return process != getpid() && processes.program(process) == processes.program(getpid());
}

std::mutex mutex;
bool isShown = false;

}  // namespace

void showLauncherProgress(std::optional<double> fraction) {
    const std::lock_guard lock(mutex);
    if (!fraction && !isShown)
        return;
    if (fraction && !isShown)
        mark();
    isShown = fraction.has_value();
    // What the icon shows outside of its bar, a dock cannot.
    emit(std::clamp(fraction.value_or(0), 0.0, 1.0), isShown);
    if (!isShown)
        unlink(markPath().c_str());
}

void clearLeftLauncherProgress() {
    const std::lock_guard lock(mutex);
    const std::string path = markPath();
    if (isShown || path.empty() || access(path.c_str(), F_OK) != 0 || isAlive(path))
        return;
    emit(0, false);
    unlink(path.c_str());
}

}  // namespace appkit
