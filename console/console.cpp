#include "console/console.h"

#include <algorithm>
#include <exception>
#include <new>

#include "console/commands/commands.h"
#include "console/construction.h"
#include "console/evaluator.h"
#include "console/interrupt.h"
#include "console/parser.h"
#include "console/problems.h"
#include "console/script.h"
#include "console/text.h"
#include "console/user_classes.h"

namespace vorn::console {

namespace {

// Passes lines on and keeps them.
class RecordingOutput : public Output {
 public:
  explicit RecordingOutput(Output& next) : next_(next) {}

  void line(std::string_view text, Style style) override {
    kept_.line(text, style);
    next_.line(text, style);
  }
  using Output::line;

  [[nodiscard]] std::vector<std::string> texts() const {
    std::vector<std::string> texts;
    for (const CapturedOutput::Line& each : kept_.lines()) texts.push_back(each.text);
    return texts;
  }

 private:
  Output& next_;
  CapturedOutput kept_;
};

}  // namespace

std::string markedLine(std::string_view source, std::size_t offset) {
  // Of a long line, what stands around the place.
  constexpr std::size_t kBefore = 60;
  constexpr std::size_t kShown = 100;
  offset = std::min(offset, source.size());
  const std::size_t lineStart = offset == 0 ? 0 : source.rfind('\n', offset - 1) + 1;
  std::string_view line = source.substr(lineStart, source.find('\n', offset) - lineStart);
  if (source.find('\n', offset) == std::string_view::npos) line = source.substr(lineStart);
  std::string_view before = line.substr(0, offset - lineStart);
  std::string lead = "  ";
  if (characterCount(before) > kBefore) {
    const std::size_t skipped = firstCharacters(before, characterCount(before) - kBefore).size();
    line.remove_prefix(skipped);
    before.remove_prefix(skipped);
    lead = "  ... ";
  }
  std::string shown(firstCharacters(line, kShown));
  if (shown.size() < line.size()) shown += " ...";
  std::ranges::replace(shown, '\t', ' ');
  return lead + printable(shown) + "\n" + std::string(lead.size() + columnCount(before), ' ') + "^";
}

Console::Console(Limits limits) : session_(limits) {
  forgetUserClasses();
  session_.observe(
      [this](const NativeRow& row, std::span<const Value> arguments) { watches_.afterNative(row, arguments); });
}

bool Console::run(std::string_view source, Output& output) {
  RecordingOutput recording(output);
  bool done = false;
  bool raised = false;
  try {
    runStatement(source, recording);
    done = true;
  } catch (const SyntaxError& error) {
    recording.line(markedLine(source, error.offset()), Style::Faint);
    recording.line("Syntax: " + std::string(error.what()), Style::Error);
  } catch (const Refusal& refusal) {
    recording.line("Refused: " + std::string(refusal.what()), Style::Error);
  } catch (const RaisedError& error) {
    raised = true;
    recording.line(error.what(), Style::Error);
  } catch (const std::bad_alloc&) {
    recording.line("Refused: there is not enough memory", Style::Error);
  } catch (const std::exception& exception) {
    recording.line("Refused: " + std::string(exception.what()), Style::Error);
  }
  vorn_errors_clear();
  if (!done) ++failures_;
  if (done || raised) {
    showWatches(recording);
    if (!trimmed(source).empty()) accepted_.push_back({std::string(trimmed(source)), recording.texts(), raised});
  }
  return done;
}

void Console::runStatement(std::string_view source, Output& output) {
  Statement statement = parseStatement(source);
  switch (statement.kind) {
    case StatementKind::Empty:
      return;
    case StatementKind::Expression: {
      const Value value = evaluate(session_, *statement.value);
      if (value.kind() != Value::Kind::Nothing) output.line(displayText(value), Style::Result);
      return;
    }
    case StatementKind::Assignment:
      assign(session_, statement.name, evaluate(session_, *statement.value));
      return;
    case StatementKind::Store:
      store(session_, *statement.target, evaluate(session_, *statement.value));
      return;
    case StatementKind::Class:
      if (isReservedName(statement.declaration.name)) {
        throw Refusal(statement.declaration.name + " is a class of the language");
      }
      if (session_.find(statement.declaration.name) != nullptr) {
        throw Refusal(statement.declaration.name + " is a variable");
      }
      declareClass(statement.declaration);
      return;
    case StatementKind::Command:
      return runCommand(*this, statement.name, statement.text, output);
  }
}

void Console::showWatches(Output& output) {
  watches_.afterStatement(session_);
  for (const std::string& line : watches_.take()) output.line(line, Style::Faint);
}

void Console::runShown(std::string_view script, Output& output) {
  constexpr int kDeepestLoad = 16;
  if (loadDepth_ == kDeepestLoad) throw Refusal("scripts load each other without end");
  ++loadDepth_;
  try {
    for (const ScriptStatement& statement : parseScript(script)) {
      throwIfInterrupted();
      run(statement.source, output);
      if (ended_) break;
    }
  } catch (...) {
    --loadDepth_;
    throw;
  }
  --loadDepth_;
}

}  // namespace vorn::console
