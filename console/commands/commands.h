// The commands of the console: what begins with a colon.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "console/console.h"
#include "console/output.h"

namespace vorn::console {

struct Command {
  std::string_view name;         // without the colon
  std::string_view usage;        // "x", "[CLASS]"
  std::string_view description;  // one line
  void (*run)(Console& console, std::string_view text, Output& output);
};

std::span<const Command> inspectCommands();
std::span<const Command> measureCommands();
std::span<const Command> fileCommands();
std::span<const Command> helpCommands();

std::vector<const Command*> allCommands();

// Refuses to go on in a session that is for computation only.
void requireSurroundings(const Console& console);

// Runs a command; refuses a name that is none.
void runCommand(Console& console, std::string_view name, std::string_view text, Output& output);

// The topics of :help.
struct HelpTopic {
  std::string_view name;
  std::string_view text;
};
std::span<const HelpTopic> helpTopics();

}  // namespace vorn::console
