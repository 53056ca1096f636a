#include "console/timing.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <iterator>
#include <vector>

#include "console/arguments.h"
#include "console/evaluator.h"
#include "console/interrupt.h"
#include "console/problems.h"

namespace vorn::console {

namespace {

using Clock = std::chrono::steady_clock;

double nanosecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

// What reading the clock twice costs, which a single call's time is cleared of.
double clockCost() {
  static const double cost = [] {
    double least = 1e9;
    for (int i = 0; i < 1000; ++i) least = std::min(least, nanosecondsSince(Clock::now()));
    return least;
  }();
  return cost;
}

struct Figure {
  double nanoseconds = 0;
  std::uint64_t repetitions = 0;
  bool stable = false;
};

// Repeats `sample`, which makes so many calls and gives their nanoseconds, in batches that take long enough for the
// clock, until three batches agree within two per cent on the least. What disturbs a measurement makes it longer, so
// that the least is the truest.
Figure repeat(const std::function<double(std::uint64_t)>& sample, double seconds) {
  constexpr double kLongEnough = 2e6;
  constexpr std::uint64_t kMostCalls = 50'000'000;
  constexpr int kAgreeing = 3;
  constexpr double kTolerance = 1.02;
  const Clock::time_point start = Clock::now();
  Figure figure;
  double least = 0;  // of the batches that were long enough; 0 while there is none
  std::uint64_t batch = 1;
  int agreed = 0;
  const auto hasTime = [&] { return figure.repetitions == 0 || nanosecondsSince(start) < seconds * 1e9; };
  while (agreed < kAgreeing && figure.repetitions < kMostCalls && hasTime()) {
    throwIfInterrupted();
    const double total = sample(batch);
    const double each = total / static_cast<double>(batch);
    figure.repetitions += batch;
    if (total < kLongEnough && batch < kMostCalls / 8) {
      batch *= 2;
      figure.nanoseconds = each;
    } else if (least == 0 || each * kTolerance < least) {
      least = each;
      agreed = 1;
    } else if (each <= least * kTolerance) {
      least = std::min(least, each);
      ++agreed;
    }
  }
  if (least > 0) figure.nanoseconds = least;
  figure.stable = agreed >= kAgreeing;
  return figure;
}

void prepare(Session& session, const Statement* setup) {
  if (setup == nullptr) return;
  if (setup->kind == StatementKind::Assignment) {
    assign(session, setup->name, evaluate(session, *setup->value));
  } else {
    evaluate(session, *setup->value);
  }
}

// The native that an expression calls last, and what it is given.
struct LastCall {
  const NativeRow* row = nullptr;
  std::vector<Value> arguments;
};

LastCall lastCall(Session& session, const Expression& expression) {
  LastCall last;
  const Session::Observer previous = session.observer();
  session.observe([&](const NativeRow& row, std::span<const Value> arguments) {
    last.row = &row;
    last.arguments.assign(arguments.begin(), arguments.end());
  });
  try {
    evaluate(session, expression);
  } catch (...) {
    session.observe(previous);
    throw;
  }
  session.observe(previous);
  return last;
}

// One call of the native and nothing else. Its result is dropped and needs no root.
void callDirectly(const NativeRow& row, const PassedArguments& passed) {
  RawResult result;
  row.invoke(passed.raw(), result);
  if (vorn_error_count() > 0) throwPendingErrors();
}

double directSample(const NativeRow& row, const std::vector<Value>& arguments, std::uint64_t calls) {
  const PassedArguments passed(row, arguments);
  const Clock::time_point start = Clock::now();
  for (std::uint64_t i = 0; i < calls; ++i) callDirectly(row, passed);
  return nanosecondsSince(start);
}

double evaluationSample(Session& session, const Expression& expression, std::uint64_t calls) {
  const Clock::time_point start = Clock::now();
  for (std::uint64_t i = 0; i < calls; ++i) evaluate(session, expression);
  return nanosecondsSince(start);
}

double clearedOfClock(double nanoseconds) { return std::max(nanoseconds - clockCost(), 0.0); }

// What the last native of one evaluation took.
double clockedNative(Session& session, const Expression& expression) {
  const ClockedNatives clocked(session);
  evaluate(session, expression);
  return clearedOfClock(session.lastNativeNanoseconds());
}

}  // namespace

Timing measure(Session& session, const Expression& expression, const Statement* setup, double seconds) {
  Timing timing;
  prepare(session, setup);
  const LastCall last = lastCall(session, expression);
  const bool native = last.row != nullptr;
  if (native) timing.nativeName = std::string(last.row->className) + "." + std::string(last.row->method);

  const auto evaluated = [&](std::uint64_t calls) {
    if (setup == nullptr) return evaluationSample(session, expression, calls);
    double total = 0;
    for (std::uint64_t i = 0; i < calls; ++i) {
      throwIfInterrupted();
      prepare(session, setup);
      total += clearedOfClock(evaluationSample(session, expression, 1));
    }
    return total;
  };
  const auto direct = [&](std::uint64_t calls) {
    if (setup == nullptr) return directSample(*last.row, last.arguments, calls);
    double total = 0;
    for (std::uint64_t i = 0; i < calls; ++i) {
      throwIfInterrupted();
      prepare(session, setup);
      total += clockedNative(session, expression);
    }
    return total;
  };

  const Figure whole = repeat(evaluated, native ? seconds / 2 : seconds);
  timing.expression = whole.nanoseconds;
  timing.repetitions = whole.repetitions;
  timing.stable = whole.stable;
  if (native) {
    const Figure alone = repeat(direct, seconds / 2);
    timing.native = alone.nanoseconds;
    timing.repetitions += alone.repetitions;
    timing.stable = timing.stable && alone.stable;
  }
  return timing;
}

std::string durationText(double nanoseconds) {
  constexpr const char* kUnits[] = {"ns", "us", "ms", "s"};
  std::size_t unit = 0;
  while (nanoseconds >= 1000 && unit + 1 < std::size(kUnits)) {
    nanoseconds /= 1000;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text,
                nanoseconds < 10    ? "%.2f %s"
                : nanoseconds < 100 ? "%.1f %s"
                                    : "%.0f %s",
                nanoseconds, kUnits[unit]);
  return text;
}

}  // namespace vorn::console
