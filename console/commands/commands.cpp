#include "console/commands/commands.h"

#include "console/problems.h"
#include "console/text.h"

namespace vorn::console {

std::vector<const Command*> allCommands() {
  std::vector<const Command*> all;
  for (const auto part : {inspectCommands(), measureCommands(), fileCommands(), helpCommands()}) {
    for (const Command& command : part) all.push_back(&command);
  }
  return all;
}

void requireSurroundings(const Console& console) {
  if (console.session().limits().computationOnly) throw Refusal("this session is for computation only");
}

void runCommand(Console& console, std::string_view name, std::string_view text, Output& output) {
  std::vector<std::string_view> names;
  for (const Command* command : allCommands()) {
    if (command->name == name) return command->run(console, text, output);
    names.push_back(command->name);
  }
  if (name.empty()) throw Refusal("a command has a name; :help lists them");
  throw Refusal("there is no command :" + printable(firstCharacters(name, 40)) + suggestion(name, names) +
                "; :help lists them");
}

}  // namespace vorn::console
