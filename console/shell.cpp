#include "console/shell.h"

#include "console/interrupt.h"
#include "console/scanner.h"
#include "console/text.h"

namespace vorn::console {

namespace {

constexpr std::string_view kPrompt = "vorn> ";
constexpr std::string_view kMorePrompt = "  ... ";
constexpr std::string_view kTourPrompt = "tour> ";

class Conversation {
 public:
  Conversation(Console& console, LineSource& lines, Output& output)
      : console_(console), lines_(lines), output_(output) {}

  std::size_t run() {
    while (!console_.ended()) {
      offerTour();
      clearInterrupt();
      std::string source;
      const LineRead read = readStatement(source);
      if (read == LineRead::Cancelled) continue;
      console_.setWidth(lines_.columns());
      if (console_.tour() && trimmed(source).empty() && read == LineRead::Line) {
        takeStep();
      } else {
        // Begun anew, a tour offers its first step again.
        if (trimmed(source).starts_with(":tour")) offered_ = 0;
        console_.run(source, output_);
      }
      if (read == LineRead::End) break;
    }
    return console_.failures();
  }

 private:
  // The lines up to where no bracket is open. At the end of the input, what there is.
  LineRead readStatement(std::string& source) {
    BracketCounter brackets;
    std::string line;
    while (true) {
      const std::string_view prompt = !source.empty() ? kMorePrompt : console_.tour() ? kTourPrompt : kPrompt;
      const LineRead read = lines_.read(prompt, line);
      if (read != LineRead::Line) return read;
      const bool command = source.empty() && trimmed(line).starts_with(':');
      source += line;
      if (!command) brackets.add(line);
      if (!brackets.open()) return read;
      source += '\n';
    }
  }

  // Says what the next step of a tour is about, once.
  void offerTour() {
    if (!console_.tour() || offered_ == console_.tour()->number()) return;
    Tour& tour = *console_.tour();
    if (tour.done()) {
      output_.line("That was the tour. :help has more on everything, and all you have made is still here.");
      console_.tour().reset();
      offered_ = 0;
      return;
    }
    offered_ = tour.number();
    std::string_view explanation = tour.explanation();
    while (explanation.ends_with('\n')) explanation.remove_suffix(1);
    output_.line("");
    if (!explanation.empty()) output_.line(explanation);
    output_.line(
        "[" + std::to_string(tour.number()) + " of " + std::to_string(tour.count()) + "; Enter runs] " + tour.source(),
        Style::Heading);
  }

  void takeStep() {
    Tour& tour = *console_.tour();
    const std::string source = tour.source();
    output_.line("> " + source, Style::Faint);
    tour.advance();
    console_.run(source, output_);
  }

  Console& console_;
  LineSource& lines_;
  Output& output_;
  std::size_t offered_ = 0;
};

}  // namespace

std::size_t converse(Console& console, LineSource& lines, Output& output) {
  return Conversation(console, lines, output).run();
}

}  // namespace vorn::console
