// Commands about files: :load and :save.
#include <algorithm>
#include <string>

#include "console/commands/commands.h"
#include "console/files.h"
#include "console/problems.h"
#include "console/script.h"
#include "console/text.h"

namespace vorn::console {

namespace {

void load(Console& console, std::string_view text, Output& output) {
  if (text.empty()) throw Refusal(":load takes a file");
  requireSurroundings(console);
  console.runShown(readFile(expandedPath(text)), output);
}

// One statement with what it showed, so that the saved session is a test of itself. Commands show times and addresses
// and are saved without.
std::string savedStatement(const Accepted& accepted) {
  const bool command = accepted.source.starts_with(':');
  if (command || accepted.shown.empty()) return accepted.source + "\n";
  const std::string mark = accepted.raised ? "# expect error: " : "# expect: ";
  const bool beside = accepted.shown.size() == 1 && accepted.source.find_first_of("#\n") == std::string::npos;
  std::string text = accepted.source + (beside ? "  " : "\n");
  for (const std::string& line : accepted.shown) text += mark + asPattern(line) + "\n";
  return text;
}

bool isSaved(const Accepted& accepted) {
  constexpr std::string_view kLeftOut[] = {":save", ":load", ":help", ":tour", ":quit"};
  return std::ranges::none_of(kLeftOut, [&](std::string_view name) { return accepted.source.starts_with(name); });
}

void save(Console& console, std::string_view text, Output& output) {
  if (text.empty()) throw Refusal(":save takes a file");
  requireSurroundings(console);
  const std::string path = expandedPath(text);
  std::string script = "# A session of the vorn console. Run it again: ./dev console FILE\n\n";
  std::size_t count = 0;
  for (const Accepted& accepted : console.accepted()) {
    if (!isSaved(accepted)) continue;
    script += savedStatement(accepted);
    ++count;
  }
  writeFile(path, script);
  output.line("saved " + counted(count, "statement") + " to " + path, Style::Faint);
}

constexpr Command kFileCommands[] = {
    {"load", "FILE", "runs a script as if it were typed", load},
    {"save", "FILE", "the session as a script with expectations", save},
};

}  // namespace

std::span<const Command> fileCommands() { return kFileCommands; }

}  // namespace vorn::console
