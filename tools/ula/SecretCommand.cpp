// SPDX-License-Identifier: MIT
#include "tools/ula/SecretCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/SecretInput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Translation.h"
#include "tools/ula/Warnings.h"
#include "ula/SecureData.h"
#include "ula/foundation/debug/Log.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using ula::FastString;
using ula::KeychainItemKind;
using ula::KeychainItemName;
using ula::KeychainStore;

constexpr const char* kHelp = translatable(R"(Examples:
  ula secret add Mail --account ann     asks for the password, or reads standard input
  ula secret get Mail --account ann     prints it
  ula secret add "Safe code"            without an account: a note
  ula secret edit "Safe code"           replaces a note, which add does not
  ula secret list                       names, never secrets
  ula secret where                      which keychain has them
  ula secret move file                  moves all to the encrypted file; service: back

A secret is never an argument. Names belong to a qualifier (--qualifier), which applications use to
keep theirs apart.
Exit codes: 0 done; 1 there is no such item; 2 wrong usage; 3 the keychain cannot be read;
4 nothing was stored.)");

struct Options {
    std::string name;
    std::string account;
    std::string qualifier;
    std::string place;
    bool hasQualifier = false;
    bool asJson = false;

    bool isNote() const { return account.empty(); }
    std::string shown() const {
        return displayText(name) + (isNote() ? "" : " (" + displayText(account) + ")");
    }
};

/// What the keychain says of calls that fail, while it lives.
class KeychainLog {
public:
    KeychainLog() {
        debug::setLogSink([this](const debug::LogRecord& record) {
            constexpr std::string_view kMessage = "Error message: ";
            if (std::string_view(record.text).starts_with(kMessage))
                _message = record.text.substr(kMessage.size());
        });
    }
    ~KeychainLog() { silenceLog(); }
    KeychainLog(const KeychainLog&) = delete;
    KeychainLog& operator=(const KeychainLog&) = delete;

    /// For a call that has failed: without a reason there was no such item.
    [[noreturn]] void fail(const Options& options, ExitCode code) const {
        if (_message.empty())
            throw CommandError{ExitDiffers,
                               translated("%1: there is no such item", options.shown()),
                               translated("'ula secret list' shows those there are")};
        throw CommandError{code, options.shown() + ": " + _message};
    }
    const std::string& message() const { return _message; }

private:
    std::string _message;
};

/// Asks for the secret, and hands it to `keep`, which takes an account before it or none.
template <class Keep>
ExitCode store(const Options& options, const Keep& keep) {
    const Secret secret(readSecret());
    const FastString text = FastString::borrow(secret.text());
    const KeychainLog log;
    const FastString name(options.name);
    const FastString qualifier(options.qualifier);
    const bool isDone = options.isNote() ? keep(name, text, qualifier)
                                         : keep(name, FastString(options.account), text, qualifier);
    if (!isDone)
        log.fail(options, ExitCannotWrite);
    return ExitOk;
}

ExitCode add(const Options& options) {
    return store(options, [](const auto&... texts) { return ula::addToKeychain(texts...); });
}

ExitCode edit(const Options& options) {
    return store(options, [](const auto&... texts) { return ula::editKeychain(texts...); });
}

ExitCode get(const Options& options) {
    FastString secret;
    const KeychainLog log;
    const FastString name(options.name);
    const FastString qualifier(options.qualifier);
    const bool isDone =
        options.isNote()
            ? ula::getWholeFromKeychain(name, secret, qualifier)
            : ula::getWholeFromKeychain(name, FastString(options.account), secret, qualifier);
    if (!isDone)
        log.fail(options, ExitCannotRead);
    if (!options.asJson) {
        print(secret.toStdString() + "\n");
        return ExitOk;
    }
    printJson(
        "item",
        {{"name", options.name}, {"account", options.account}, {"secret", secret.toStdString()}});
    return ExitOk;
}

ExitCode remove(const Options& options) {
    const KeychainLog log;
    const FastString name(options.name);
    const FastString qualifier(options.qualifier);
    const bool isDone = options.isNote()
                            ? ula::deleteKeychain(name, qualifier)
                            : ula::deleteKeychain(name, FastString(options.account), qualifier);
    if (!isDone)
        log.fail(options, ExitCannotWrite);
    return ExitOk;
}

constexpr const char* kNote = translatable("note");
constexpr const char* kPassword = translatable("password");
constexpr const char* kService = translatable("secret service");
constexpr const char* kFile = translatable("encrypted file");

std::size_t kindWidth(std::initializer_list<const char*> kinds) {
    return widestOf(kinds, [](const char* kind) { return translated(kind); }) + 2;
}

void printNames(const std::vector<KeychainItemName>& names) {
    for (const KeychainItemName& name : names) {
        const bool isNote = name.kind == KeychainItemKind::Note;
        print(padded(translated(isNote ? kNote : kPassword), kindWidth({kNote, kPassword})) +
              displayText(name.name.view()) +
              (isNote ? "" : " (" + displayText(name.account.view()) + ")") + "\n");
    }
}

void printNamesAsJson(const std::vector<KeychainItemName>& names) {
    Json list = Json::array();
    for (const KeychainItemName& name : names)
        list.push_back({{"kind", name.kind == KeychainItemKind::Note ? kNote : kPassword},
                        {"name", name.name.toStdString()},
                        {"account", name.account.toStdString()}});
    printJson("items", std::move(list));
}

ExitCode list(const Options& options) {
    std::vector<KeychainItemName> names;
    const KeychainLog log;
    const bool isDone = options.hasQualifier
                            ? ula::listKeychain(FastString(options.qualifier), names)
                            : ula::listKeychain(names);
    if (!isDone)
        throw CommandError{ExitCannotRead,
                           translated("the keychain cannot be read: %1", log.message())};
    if (options.asJson)
        printNamesAsJson(names);
    else
        printNames(names);
    return ExitOk;
}

bool isService(const KeychainStore& store) {
    return store.path.view().starts_with("/org/");
}

const char* stateOf(const KeychainStore& store) {
    if (!store.isAvailable)
        return translatable("not available");
    return store.isLocked ? translatable("locked") : translatable("available");
}

void printStore(const KeychainStore& store, const char* kind) {
    const std::size_t width = kindWidth({kService, kFile});
    const std::string reason = store.isAvailable ? "" : ": " + displayText(store.error.view());
    print(padded(translated(kind), width) + displayText(store.path.view()) + "\n" +
          padded("", width) + translated(stateOf(store)) + reason +
          (store.isDefault ? translated("; new items go here") : "") + "\n");
}

ExitCode where(const Options& options) {
    Json list = Json::array();
    for (const KeychainStore& store : ula::keychainStores()) {
        const char* const kind = isService(store) ? kService : kFile;
        list.push_back({{"kind", kind},
                        {"path", store.path.toStdString()},
                        {"newItems", store.isDefault},
                        {"state", stateOf(store)},
                        {"error", store.isAvailable ? "" : store.error.toStdString()}});
        if (!options.asJson)
            printStore(store, kind);
    }
    if (options.asJson)
        printJson("keychains", std::move(list));
    return ExitOk;
}

FastString pathOfPlace(const std::string& place) {
    for (const KeychainStore& store : ula::keychainStores()) {
        if ((place == "service") == isService(store))
            return store.path;
    }
    return {};
}

ExitCode move(const Options& options) {
    const ula::KeychainMove move = ula::moveKeychain(pathOfPlace(options.place));
    if (!move.error.empty())
        throw CommandError{
            ExitCannotWrite,
            translated("%1 moved, then: %2", std::to_string(move.moved), move.error.toStdString()),
            translated("nothing is lost; it can be repeated")};
    print(translated("%1 moved", std::to_string(move.moved)) + "\n");
    if (move.left != 0)
        throw CommandError{ExitDiffers,
                           translated("%1 stay: another secret of that name is there already",
                                      std::to_string(move.left))};
    return ExitOk;
}

using Run = ExitCode (*)(const Options&);

CLI::App* addAction(CLI::App* secret, const char* name, const char* text, Run run,
                    const std::shared_ptr<Options>& options, ExitCode& result) {
    CLI::App* const action = secret->add_subcommand(name, translated(text));
    action->callback([run, options, &result] {
        leaveNoCoreFile();
        result = run(*options);
    });
    return action;
}

void addItemOptions(CLI::App* action, const std::shared_ptr<Options>& options) {
    action->add_option("NAME", options->name, translated("What the secret is for"))
        ->required()
        ->check([](const std::string& name) {
            return name.empty() ? translated("NAME is empty") : "";
        });
    action->add_option("--account", options->account, translated("Whose password; a note without"));
    action->add_option("--qualifier", options->qualifier, translated("The application's own"));
}

void addItemActions(CLI::App* secret, const std::shared_ptr<Options>& options, ExitCode& result) {
    addItemOptions(
        addAction(secret, "add", translatable("Store a password or a note"), add, options, result),
        options);
    CLI::App* const getter =
        addAction(secret, "get", translatable("Print a secret"), get, options, result);
    addItemOptions(getter, options);
    getter->add_flag("--json", options->asJson, translated("As JSON"));
    addItemOptions(
        addAction(secret, "edit", translatable("Replace a secret"), edit, options, result),
        options);
    addItemOptions(
        addAction(secret, "delete", translatable("Delete an item"), remove, options, result),
        options);
}

}  // namespace

void addSecretCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const secret =
        program.add_subcommand("secret", translated("Passwords and notes in the keychain"));
    secret->require_subcommand(1);
    secret->footer(translated(kHelp));
    addItemActions(secret, options, result);
    CLI::App* const lister =
        addAction(secret, "list", translatable("List names"), list, options, result);
    lister->add_flag("--json", options->asJson, translated("As JSON"));
    lister->add_option_function<std::string>(
        "--qualifier",
        [options](const std::string& qualifier) {
            options->qualifier = qualifier;
            options->hasQualifier = true;
        },
        translated("Only names with it"));
    addAction(secret, "where", translatable("Show where secrets are kept"), where, options, result)
        ->add_flag("--json", options->asJson, translated("As JSON"));
    addAction(secret, "move", translatable("Move every item to one keychain"), move, options,
              result)
        ->add_option("TO", options->place, translated("service or file"))
        ->required()
        ->check(CLI::IsMember({"service", "file"}));
}

}  // namespace tav::tool
