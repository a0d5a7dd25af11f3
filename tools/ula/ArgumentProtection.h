// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace CLI {
class App;
}

/// The argument parser takes [a,b] for two values and {} for none, and so the arguments that look
/// like these are marked before it sees them.
namespace tav::tool {

/// The argument, also one like --option=VALUE, with a mark at its end where it needs one.
std::string protectArgument(const std::string& argument);

/// Has every option of the command and of those below it take the mark off its values, before any
/// check of theirs. To be called when they all have been added.
void unprotectOptions(CLI::App& command);

/// A message of the parser's without the marks of arguments it quotes.
std::string unprotectMessage(std::string message);

}  // namespace tav::tool
