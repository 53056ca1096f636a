#include "console/script_runner.h"

#include <algorithm>
#include <vector>

#include "console/interrupt.h"
#include "console/script.h"
#include "console/text.h"

namespace vorn::console {

namespace {

using Lines = std::vector<CapturedOutput::Line>;

// What counts for a statement's expectation: for an expected error the error's own lines, else all.
std::vector<std::string> countedLines(const ScriptStatement& statement, const Lines& shown) {
  std::vector<std::string> lines;
  for (const CapturedOutput::Line& line : shown) {
    if (statement.expectsError && line.style != Style::Error) continue;
    const std::size_t end = line.text.find_last_not_of(' ') + 1;
    lines.push_back(line.text.substr(0, end));
  }
  return lines;
}

bool meets(const ScriptStatement& statement, const Lines& shown, bool done) {
  if (statement.expectsError == done) return false;
  const std::vector<std::string> lines = countedLines(statement, shown);
  return std::ranges::equal(lines, statement.expected, [](const std::string& line, const std::string& pattern) {
    return matchesPattern(line, pattern);
  });
}

void showLines(std::string_view label, const std::vector<std::string>& lines, Output& output, Style style) {
  const std::string indent(label.size(), ' ');
  if (lines.empty()) output.line(std::string(label) + "(nothing)", style);
  for (std::size_t i = 0; i < lines.size(); ++i) output.line((i == 0 ? std::string(label) : indent) + lines[i], style);
}

void showDifference(std::string_view name, const ScriptStatement& statement, const Lines& shown, Output& output) {
  output.line(std::string(name) + ":" + std::to_string(statement.line) + ": " +
                  (statement.hasExpectation ? "differs from what is expected" : "fails, which is not expected"),
              Style::Heading);
  output.line("    " + statement.source);
  if (statement.hasExpectation) {
    showLines(statement.expectsError ? "  expected error: " : "  expected: ", statement.expected, output, Style::Plain);
  }
  std::vector<std::string> lines;
  for (const CapturedOutput::Line& line : shown) lines.push_back(line.text);
  showLines("  shown:    ", lines, output, Style::Error);
}

void echo(const ScriptStatement& statement, const Lines& shown, Output& output) {
  if (!statement.comment.empty()) {
    output.line("");
    std::string_view comment = statement.comment;
    while (comment.ends_with('\n')) comment.remove_suffix(1);
    output.line(comment, Style::Faint);
  }
  std::string source = "> " + statement.source;
  for (std::size_t at = source.find('\n'); at != std::string::npos; at = source.find('\n', at + 1)) {
    source.insert(at + 1, "  ");
  }
  output.line(source, Style::Heading);
  for (const CapturedOutput::Line& line : shown) output.line(line.text, line.style);
}

}  // namespace

ScriptReport runScript(Console& console, std::string_view name, std::string_view text, Output& output,
                       const ScriptOptions& options) {
  ScriptReport report;
  const std::vector<ScriptStatement> statements = parseScript(text);
  for (const ScriptStatement& statement : statements) {
    if (interrupted()) {
      report.interrupted = true;
      break;
    }
    ++report.statements;
    if (options.progress) options.progress(report.statements, statements.size());
    CapturedOutput captured;
    const bool done = console.run(statement.source, captured);
    if (options.echo) echo(statement, captured.lines(), output);
    if (statement.hasExpectation) {
      ++report.expectations;
      if (!meets(statement, captured.lines(), done)) {
        ++report.differences;
        showDifference(name, statement, captured.lines(), output);
      }
    } else if (!done) {
      ++report.differences;
      showDifference(name, statement, captured.lines(), output);
    } else if (!options.echo) {
      for (const CapturedOutput::Line& line : captured.lines()) output.line(line.text, line.style);
    }
    if (console.ended()) break;
  }
  return report;
}

}  // namespace vorn::console
