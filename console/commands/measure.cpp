// Commands that measure: :time and :plot.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "console/commands/commands.h"
#include "console/files.h"
#include "console/parser.h"
#include "console/plot.h"
#include "console/problems.h"
#include "console/scalars.h"
#include "console/text.h"
#include "console/timing.h"

namespace vorn::console {

namespace {

constexpr double kSecondsForTime = 1.0;
constexpr double kSecondsForSize = 0.2;

template <class Parse>
auto parsed(std::string_view text, Parse parse) {
  try {
    return parse(text);
  } catch (const SyntaxError& error) {
    throw Refusal(std::string(error.what()) + "\n" + markedLine(text, error.offset()));
  }
}

// Takes what follows the last occurrence of a word off a text; nothing when it does not occur.
std::optional<std::string_view> takeClause(std::string_view& text, std::string_view word) {
  const std::string between = " " + std::string(word) + " ";
  const std::size_t at = text.rfind(between);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view clause = trimmed(text.substr(at + between.size()));
  text = trimmed(text.substr(0, at));
  return clause;
}

struct Subject {
  ExpressionPointer expression;
  std::optional<Statement> setup;

  [[nodiscard]] const Statement* setupOrNull() const { return setup ? &*setup : nullptr; }
};

Subject subjectOf(std::string_view expression, std::optional<std::string_view> setup) {
  Subject subject;
  if (expression.empty()) throw Refusal("there is nothing to measure; see :help measuring");
  subject.expression = parsed(expression, parseExpression);
  if (setup) {
    subject.setup = parsed(*setup, parseStatement);
    const StatementKind kind = subject.setup->kind;
    if (kind != StatementKind::Assignment && kind != StatementKind::Expression) {
      throw Refusal("'with' takes an assignment, as in with xs = shuffled(1000)");
    }
  }
  return subject;
}

// Gives a variable back what it was when the scope ends: measuring leaves no traces in the session.
class VariableScope {
 public:
  VariableScope(Session& session, std::string name) : session_(session), name_(std::move(name)) {
    if (const Value* value = session.find(name_)) before_ = *value;
  }
  ~VariableScope() {
    if (before_) {
      session_.variables().insert_or_assign(name_, *before_);
    } else {
      session_.variables().erase(name_);
    }
  }
  VariableScope(const VariableScope&) = delete;
  VariableScope& operator=(const VariableScope&) = delete;

  void bind(std::uint64_t value) {
    session_.variables().insert_or_assign(name_, newObject(boxCount(static_cast<std::int64_t>(value))));
  }

 private:
  Session& session_;
  std::string name_;
  std::optional<Value> before_;
};

// The time of a subject, whose setup may assign to a variable.
Timing measureSubject(Session& session, const Subject& subject, double seconds) {
  std::optional<VariableScope> scope;
  if (subject.setup && subject.setup->kind == StatementKind::Assignment) scope.emplace(session, subject.setup->name);
  return measure(session, *subject.expression, subject.setupOrNull(), seconds);
}

void time(Console& console, std::string_view text, Output& output) {
  const std::optional<std::string_view> setup = takeClause(text, "with");
  const Subject subject = subjectOf(text, setup);
  requireSurroundings(console);
  const Timing timing = measureSubject(console.session(), subject, kSecondsForTime);
  const std::string calls =
      " (" + counted(timing.repetitions, "call") + (timing.stable ? "" : ", not yet stable") + ")";
  if (timing.nativeName.empty()) {
    output.line(durationText(timing.expression) + " a call" + calls, Style::Result);
    return;
  }
  output.line(durationText(timing.native) + " a call of " + timing.nativeName + calls, Style::Result);
  output.line(durationText(timing.expression) + " with the console's own work", Style::Faint);
}

struct PlotRequest {
  Subject subject;
  std::string variable;
  std::uint64_t largest = 100'000;
  std::string file;
};

std::uint64_t sizeIn(std::string_view text) {
  constexpr WideInteger kLargest = 100'000'000;
  const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
  const std::optional<WideInteger> size = digits ? parseInteger(text) : std::nullopt;
  if (!size || *size < 10 || *size > kLargest) throw Refusal("'up to' takes a number from 10 to 100000000");
  return static_cast<std::uint64_t>(*size);
}

// EXPR over n [with SETUP] [up to N] [to FILE], the clauses in this order.
PlotRequest plotRequest(std::string_view text) {
  PlotRequest request;
  std::string_view head = text;
  const std::optional<std::string_view> over = takeClause(head, "over");
  if (!over) throw Refusal("expected :plot EXPR over n, as in :plot range(n).sumInt() over n");
  std::string_view tail = *over;
  std::string_view withoutSize = tail;
  // "up to 1000" has the word of the file's clause in it.
  if (const auto size = takeClause(withoutSize, "up to")) {
    std::string_view number = *size;
    const std::size_t blank = number.find(' ');
    if (blank != std::string_view::npos) {
      const std::string_view file = trimmed(number.substr(blank));
      if (!file.starts_with("to ")) throw Refusal("expected 'to FILE' behind the largest size");
      request.file = expandedPath(trimmed(file.substr(3)));
      number = number.substr(0, blank);
    }
    request.largest = sizeIn(number);
    tail = withoutSize;
  } else if (const auto file = takeClause(tail, "to")) {
    request.file = expandedPath(*file);
  }
  const std::optional<std::string_view> setup = takeClause(tail, "with");
  request.variable = tail;
  const ExpressionPointer name = parsed(tail, parseExpression);
  if (name->kind != ExpressionKind::Name) throw Refusal("'over' takes the name of a variable, such as n");
  request.subject = subjectOf(head, setup);
  return request;
}

void plot(Console& console, std::string_view text, Output& output) {
  const PlotRequest request = plotRequest(text);
  requireSurroundings(console);
  std::vector<PlotPoint> points;
  {
    constexpr double kSlowest = 2e9;
    VariableScope variable(console.session(), request.variable);
    for (const std::uint64_t size : plotSizes(request.largest)) {
      variable.bind(size);
      const Timing timing = measureSubject(console.session(), request.subject, kSecondsForSize);
      points.push_back({size, timing.figure()});
      if (timing.expression > kSlowest) break;
    }
  }
  if (points.size() < 2) throw Refusal("one size alone took too long to go on");
  output.line(drawChart(points, console.width()));
  char exponent[32];
  std::snprintf(exponent, sizeof exponent, "%.2f", growthExponent(points));
  output.line("n = " + grouped(points.back().size) + ": " + durationText(points.back().nanoseconds) +
                  "; towards the end it grows like n^" + exponent,
              Style::Faint);
  if (request.file.empty()) return;
  writeFile(request.file, drawSvg(points, std::string(text)));
  output.line("drawn into " + request.file, Style::Faint);
}

constexpr Command kMeasureCommands[] = {
    {"time", "EXPR [with x = SETUP]", "how long a call takes, repeated until it is stable", time},
    {"plot", "EXPR over n [with x = SETUP] [up to N] [to FILE.svg]", "time against size, as a chart", plot},
};

}  // namespace

std::span<const Command> measureCommands() { return kMeasureCommands; }

}  // namespace vorn::console
