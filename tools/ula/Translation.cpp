// SPDX-License-Identifier: MIT
#include "tools/ula/Translation.h"

#include "ula/foundation/i18n/Gettext.h"

#include <clocale>
#include <filesystem>
#include <langinfo.h>

namespace tav::tool {

namespace {

namespace fs = std::filesystem;

/// Beside the program, wherever the two were put together.
void findCatalogues() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    const fs::path folder = program.parent_path().parent_path() / "share/locale";
    if (fs::is_directory(folder, error))
        i18n::setCatalogueFolder(String(folder.string()));
}

}  // namespace

void speakUsersLanguage() {
    std::setlocale(LC_CTYPE, "");
    // Other encodings have not all the characters.
    if (std::string_view(nl_langinfo(CODESET)) != "UTF-8")
        return;
    std::setlocale(LC_MESSAGES, "");
    findCatalogues();
}

std::string translated(const char* text) {
    return i18n::gettext(text).toStdString();
}

std::string translated(const char* text, const std::vector<std::string>& values) {
    return filled(translated(text), values);
}

std::string filled(std::string_view text, const std::vector<std::string>& values) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t number =
            text[i] == '%' && i + 1 < text.size() ? static_cast<std::size_t>(text[i + 1] - '1') : 9;
        if (number < values.size())
            result += values[number];
        else
            result += text[i];
        i += number < values.size() ? 1 : 0;
    }
    return result;
}

}  // namespace tav::tool
