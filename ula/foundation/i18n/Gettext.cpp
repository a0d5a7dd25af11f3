// SPDX-License-Identifier: MIT
#include "ula/foundation/i18n/Gettext.h"

#include "ula/foundation/thread/ScratchPad.h"

#include <libintl.h>
#include <mutex>

namespace tav::i18n {

namespace {

constexpr const char* kDomain = "ula";

void bind(const char* folder) {
    bindtextdomain(kDomain, folder);
    bind_textdomain_codeset(kDomain, "UTF-8");
}

void bindInstalled() {
    static std::once_flag once;
    std::call_once(once, [] { bind(ULA_LOCALE_FOLDER); });
}

}  // namespace

String gettext(const String& text) {
    // The empty text is the key of a catalogue's own header.
    if (text.empty())
        return text;
    bindInstalled();
    const char* original = thread::globalScratchPad().zeroTerminated(text);
    const char* translation = dgettext(kDomain, original);
    return translation == original ? text : String(translation);
}

void setCatalogueFolder(const String& folder) {
    bindInstalled();
    bind(thread::globalScratchPad().zeroTerminated(folder));
}

}  // namespace tav::i18n
