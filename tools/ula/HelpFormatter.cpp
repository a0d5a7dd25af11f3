// SPDX-License-Identifier: MIT
#include "tools/ula/HelpFormatter.h"

#include "tools/ula/Translation.h"

namespace tav::tool {

namespace {

/// The parser's own, the longer ones before those that they contain.
constexpr const char* kMessages[] = {
    translatable("The following argument was not expected: %1"),
    translatable("The following arguments were not expected: %1"),
    translatable("A subcommand is required"),
    translatable("%1: %2 required %3 missing"),
    translatable("%1: Value %2 not in range %3 to %4"),
    translatable("%1: %2 not in {%3}"),
    translatable("Could not convert: %1 = %2"),
    translatable("%1 is required"),
    translatable("%1 excludes %2"),
    translatable("%1 requires %2"),
};

/// What stands in the text where the pattern has %1, %2 and so on, in this order.
/// Fails: false, when the text is not like this.
bool match(std::string_view text, std::string_view pattern, std::vector<std::string>& values) {
    const std::size_t place = std::min(pattern.find('%'), pattern.size());
    if (text.substr(0, place) != pattern.substr(0, place))
        return false;
    text.remove_prefix(place);
    if (place == pattern.size())
        return text.empty();
    pattern.remove_prefix(place + 2);
    const std::string_view next = pattern.substr(0, pattern.find('%'));
    const std::size_t end = next.empty() ? text.size() : text.find(next);
    if (end == std::string_view::npos)
        return false;
    values.emplace_back(text.substr(0, end));
    return match(text.substr(end), pattern, values);
}

}  // namespace

HelpFormatter::HelpFormatter() {
    for (const char* const heading : {translatable("Usage"), translatable("Positionals"),
                                      translatable("Needs"), translatable("Excludes")})
        label(heading, translated(heading));
}

std::string HelpFormatter::make_group(std::string group, bool isPositional,
                                      std::vector<const CLI::Option*> options) const {
    const bool isUsual = group == translatable("Options");
    return CLI::Formatter::make_group(isUsual ? translated("Options") : group, isPositional,
                                      std::move(options));
}

std::string HelpFormatter::make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const {
    const std::string usual = "\nSubcommands:\n";
    const std::string text = CLI::Formatter::make_subcommands(app, mode);
    if (!text.starts_with(usual))
        return text;
    return "\n" + translated("Subcommands") + ":\n" + text.substr(usual.size());
}

std::string translatedMessage(const CLI::ParseError& error) {
    const std::string message = error.what();
    for (const char* const pattern : kMessages) {
        std::vector<std::string> values;
        if (match(message, pattern, values))
            return translated(pattern, values);
    }
    return message;
}

}  // namespace tav::tool
