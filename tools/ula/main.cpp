// SPDX-License-Identifier: MIT
#include "tools/ula/ArgumentProtection.h"
#include "tools/ula/CamerasCommand.h"
#include "tools/ula/CompletionCommand.h"
#include "tools/ula/DirCommand.h"
#include "tools/ula/DoctorCommand.h"
#include "tools/ula/DrivesCommand.h"
#include "tools/ula/FoldersCommand.h"
#include "tools/ula/HelpFormatter.h"
#include "tools/ula/RunningCommand.h"
#include "tools/ula/ScreensCommand.h"
#include "tools/ula/SecretCommand.h"
#include "tools/ula/SettingsCommand.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/SystemCommand.h"
#include "tools/ula/TimeCommand.h"
#include "tools/ula/Translation.h"
#include "tools/ula/TrashCommand.h"
#include "tools/ula/VolumesCommand.h"
#include "tools/ula/Warnings.h"
#include "tools/ula/WatchCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <memory>
#include <new>

namespace {

using namespace tav::tool;

constexpr const char* kHelp = translatable(R"(Examples:
  ula settings photo.xml list
  ula settings photo.xml set Window Width 1280
  ula cameras import Pictures   brings pictures over from a camera or card
  ula dir --sort Pictures       a folder as a folder browser sees it
  ula doctor                    what is wrong with this computer, and what mends it
  ula drives                    mounted volumes: their kinds, how large and how full
  ula folders                   where documents, pictures and the rest lie
  ula running                   which applications run, their names and identifiers
  ula screens --draw d.png      a picture of how the displays stand to each other
  ula secret list               passwords and notes in the keychain, by their names
  ula system                    language, release, processors, graphics and memory
  ula volumes                   the start-up disk and mounted volumes by their names
  ula time *.jpg                when pictures were taken, and their files made and changed
  ula trash old.jpg             moves a file to the trash, and says where it is now
  ula watch -r Pictures         what changes in a tree, live
  ula settings --help           all about settings files
  ula settings x set --help     all about storing values

Exit codes: 0 done; 1 different, or not there; 2 wrong usage;
3 a file cannot be read; 4 a file cannot be written.)");

ExitCode tell(const CommandError& error) {
    printError(error.message, error.hint);
    return error.code;
}

std::string hintFor(const std::string& message) {
    if (message.find("not expected: -") != std::string::npos)
        return translated("put -- before values that begin with -, or see 'ula settings --help'");
    return translated("'ula --help' and 'ula COMMAND --help' show how");
}

std::vector<std::string> protectedArguments(int argc, char** argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.push_back(protectArgument(argv[i]));
    return arguments;
}

ExitCode run(CLI::App& program, const std::vector<std::string>& arguments, const ExitCode& result) {
    try {
        program.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::Success& success) {
        program.exit(success);  // help and version
    } catch (const CLI::ParseError& error) {
        return tell({ExitUsage, unprotectMessage(translatedMessage(error)), hintFor(error.what())});
    }
    finishOutput();
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    silenceLog();
    const std::vector<std::string> arguments = protectedArguments(argc, argv);
    // Who asks for JSON is a program: it is told everything in English.
    if (std::find(arguments.begin(), arguments.end(), "--json") == arguments.end())
        speakUsersLanguage();
    CLI::App program(translated("ula: services of the desktop, from the command line"), "ula");
    program.formatter(std::make_shared<HelpFormatter>());
    program.set_help_flag("-h,--help", translated("Print this help and exit"));
    program.set_version_flag("--version", "ula " ULA_VERSION)
        ->description(translated("Print the version and exit"));
    program.require_subcommand(1);
    ExitCode result = ExitOk;
    addCamerasCommand(program, result);
    addDirCommand(program, result);
    addDoctorCommand(program, result);
    addDrivesCommand(program, result);
    addFoldersCommand(program, result);
    addRunningCommand(program, result);
    addScreensCommand(program, result);
    addSecretCommand(program, result);
    addSettingsCommand(program, result);
    addSystemCommand(program, result);
    addTimeCommand(program, result);
    addTrashCommand(program, result);
    addVolumesCommand(program, result);
    addWatchCommand(program, result);
    addCompletionCommand(program, result);
    unprotectOptions(program);
    // Last, as those that are added take over what stands there.
    program.footer(translated(kHelp));
    try {
        return run(program, arguments, result);
    } catch (const CommandError& error) {
        return tell(error);
    } catch (const std::bad_alloc&) {
        return tell({ExitCannotRead, translated("there is not enough memory for this file")});
    } catch (const std::exception& exception) {
        // What no command foresaw: even so a line and an exit code, not a core file.
        return tell({ExitCannotRead, exception.what()});
    }
}
