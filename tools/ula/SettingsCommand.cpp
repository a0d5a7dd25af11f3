// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsCommand.h"

#include "tools/ula/SettingsCommands.h"
#include "tools/ula/Translation.h"
#include "ula/SettingsPList.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace tav::tool {

namespace {

constexpr const char* kSettingsHelp = translatable(R"(Examples:
  ula settings photo.xml list                         every group and key (also without list)
  ula settings photo.xml get Window Width             one value, bare
  ula settings photo.xml set Window Width 1280        an int, as it was before
  ula settings photo.xml set Export Folders a b c     several values: a string array
  ula settings photo.xml set Import Eject yes --type bool
  ula settings photo.xml set Import Offset -- -text   values that begin with -
  ula settings photo.xml unset Window Width
  ula settings photo.xml export > photo.json
  ula settings photo.xml import photo.json --backup   keeps photo.xml.bak
  ula settings photo.xml diff other.xml && echo same
  ula settings --plist Example Photos list            an application's property list

Exit codes:
  0  done                     3  a file cannot be read, or is not there
  1  different, or not there  4  a file cannot be written; it is as it was
  2  wrong usage)");

constexpr const char* kSetHelp = translatable(R"(The type of a new key, unless --type says it:
  several VALUEs      string_array
  true, false         bool
  12, -3              int
  2.5, 1e-3           double
  anything else       string (so are 007, +1, nan, yes)
A key that exists keeps its type, and a VALUE that does not fit it is refused.
For a bool yes, no, on, off, 1 and 0 will do; for a double nan and inf.

Examples:
  ula settings photo.xml set Window Title "My photographs"
  ula settings photo.xml set Keywords Favourites --type string_array Été
  ula settings photo.xml set Recent Folders --json '["/photos", "/old, odd"]'
  ula settings photo.xml set Metadata Gamma --json '{"type":"double","value":2}'
FILE is made if there is none.)");

constexpr const char* kImportHelp =
    translatable(R"(The keys of SOURCE are added to those of FILE; where both have one, SOURCE wins.
The JSON is what export writes:
  {"version": 1, "groups": {"Window": {"Width": {"type": "int", "value": 1280}}}}
Types: int, bool, double (also "nan", "inf", "-inf"), string, string_array.
SOURCE is checked first: with a mistake in it nothing is changed. FILE is made if
there is none.

Examples:
  ula settings photo.xml import photo.json
  ula settings old.xml export | ula settings new.xml import - --replace)");

/// What the command line says of the file.
struct FileWords {
    std::string path;
    bool hasPath = false;
    std::vector<std::string> plist;
    bool isMachines = false;
};

/// Fails: throws `CommandError`.
SettingsFile fileOf(const FileWords& words) {
    const bool isPropertyList = !words.plist.empty();
    if (!isPropertyList && !words.hasPath)
        throw CommandError{ExitUsage, translated("%1 is required", std::string("FILE")),
                           translated("'ula --help' and 'ula COMMAND --help' show how")};
    if (isPropertyList && words.hasPath)
        throw CommandError{ExitUsage, translated("there must be FILE or --plist, not both")};
    if (words.isMachines && !isPropertyList)
        throw CommandError{ExitUsage, translated("--machine goes with --plist")};
    if (!isPropertyList)
        return {words.path, false};
    const FastString company(words.plist[0]);
    const FastString application(words.plist[1]);
    if (company.empty() || application.empty())
        throw CommandError{ExitUsage, translated("COMPANY and APP must not be empty")};
    return {ula::SettingsPList::fileName(application, company, !words.isMachines), true};
}

/// Shared by the verbs: where the words for the file will be, and where the exit code is wanted.
struct Target {
    CLI::App* settings;
    std::shared_ptr<FileWords> file;
    ExitCode* result;
};

/// A verb with options of its own that live as long as the program.
template <class Options>
CLI::App* addVerb(const Target& target, const char* name, const char* help,
                  const std::shared_ptr<Options>& options,
                  ExitCode (*run)(const SettingsFile&, const Options&)) {
    CLI::App* verb = target.settings->add_subcommand(name, translated(help));
    verb->callback(
        [target, options, run] { *target.result = run(fileOf(*target.file), *options); });
    return verb;
}

void addFile(CLI::App* settings, FileWords& words) {
    settings->add_option("FILE", words.path, translated("The settings file (XML)"))
        ->each([&words](const std::string&) { words.hasPath = true; });
    settings
        ->add_option("--plist", words.plist,
                     translated("Instead: the property list of an application"))
        ->expected(2)
        ->type_name("COMPANY APP");
    settings->add_flag("--machine", words.isMachines,
                       translated("With --plist: the machine's list, not the user's"));
}

void addBackup(CLI::App* verb, bool& keepBackup) {
    verb->add_flag("--backup", keepBackup, translated("Keep the file as it was as FILE.bak"));
}

void addList(const Target& target) {
    auto options = std::make_shared<ListOptions>();
    CLI::App* verb = addVerb(target, "list", translatable("Show groups, keys, types and values"),
                             options, runList);
    verb->add_option("GROUP", options->group, translated("Only this group"))
        ->each([options](const std::string&) { options->hasGroup = true; });
    verb->add_flag("--json", options->asJson, translated("As JSON, as export writes it"));
}

void addGet(const Target& target) {
    auto options = std::make_shared<GetOptions>();
    CLI::App* verb = addVerb(
        target, "get", translatable("Print one value, bare; a string array one entry per line"),
        options, runGet);
    verb->add_option("GROUP", options->group, translated("The group"))->required();
    verb->add_option("KEY", options->key, translated("The key"))->required();
    verb->add_option("--default", options->fallback,
                     translated("Printed, not stored, when there is no such key"))
        ->each([options](const std::string&) { options->hasFallback = true; })
        ->type_name("VALUE");
    verb->add_flag("--json", options->asJson, translated("With its type, as JSON"));
}

void addSet(const Target& target) {
    auto options = std::make_shared<SetOptions>();
    CLI::App* verb = addVerb(target, "set", translatable("Store a value"), options, runSet);
    verb->add_option("GROUP", options->group, translated("The group"))->required();
    verb->add_option("KEY", options->key, translated("The key"))->required();
    verb->add_option("VALUE", options->values, translated("The value; several for a string array"));
    verb->add_option("--type", options->type,
                     translated("int, bool, double, string or string_array"))
        ->check(CLI::IsMember({"int", "bool", "double", "string", "string_array"}))
        ->type_name("TYPE");
    verb->add_flag("--json", options->asJson, translated("VALUE is JSON, bare or with its type"));
    addBackup(verb, options->keepBackup);
    verb->footer(translated(kSetHelp));
}

void addUnset(const Target& target) {
    auto options = std::make_shared<UnsetOptions>();
    CLI::App* verb = addVerb(
        target, "unset", translatable("Remove a key, or a group; a group goes with its last key"),
        options, runUnset);
    verb->add_option("GROUP", options->group, translated("The group"))->required();
    verb->add_option("KEY", options->key, translated("The key; without it the whole group goes"))
        ->each([options](const std::string&) { options->hasKey = true; });
    addBackup(verb, options->keepBackup);
}

void addImport(const Target& target) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* verb =
        addVerb(target, "import", translatable("Add the keys of a JSON file"), options, runImport);
    verb->add_option("SOURCE", options->source, translated("A JSON file, or - for standard input"))
        ->required();
    verb->add_flag("--replace", options->replaceGroups,
                   translated("Groups of SOURCE replace those of FILE whole"));
    verb->add_flag("--json")->description(translated("SOURCE is JSON, as it always is"));
    addBackup(verb, options->keepBackup);
    verb->footer(translated(kImportHelp));
}

void addExport(const Target& target) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* verb =
        addVerb(target, "export", translatable("Write everything as JSON"), options, runExport);
    verb->add_option("TARGET", options->target,
                     translated("A file to write, or - for standard output"));
    verb->add_flag("--json")->description(translated("Write JSON, as it always does"));
}

void addDiff(const Target& target) {
    auto options = std::make_shared<DiffOptions>();
    CLI::App* verb =
        addVerb(target, "diff",
                translatable("Show what differs from another file; exit code 1 if anything does"),
                options, runDiff);
    verb->add_option("OTHER", options->other, translated("The other settings file"))->required();
    verb->add_flag("-q,--quiet", options->isQuiet, translated("Only the exit code"));
}

}  // namespace

void addSettingsCommand(CLI::App& program, ExitCode& result) {
    CLI::App* settings =
        program.add_subcommand("settings", translated("Look at and change a settings file"));
    settings->footer(translated(kSettingsHelp));
    const Target target{settings, std::make_shared<FileWords>(), &result};
    addFile(settings, *target.file);
    addList(target);
    addGet(target);
    addSet(target);
    addUnset(target);
    addImport(target);
    addExport(target);
    addDiff(target);
    // At most one, so that a value may be spelt like a verb.
    settings->require_subcommand(0, 1);
    settings->callback([target] {
        if (target.settings->get_subcommands().empty())
            *target.result = runList(fileOf(*target.file), {});
    });
}

}  // namespace tav::tool
