#include "fuzz/fuzzer.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>

namespace vorn::fuzz {

namespace {

constexpr std::size_t kRemembered = 4096;

std::array<const char*, kRemembered> names{};
std::size_t nameCount = 0;
std::uint64_t operations = 0;
std::uint64_t faults = 0;
std::unique_ptr<OperationTally[]> tallies;
std::size_t tallyCount = 0;

void writeFigures() {
  const char* const path = std::getenv("VORN_FUZZ_FIGURES");
  if (path == nullptr) return;
  vorn_heap_statistics statistics;
  vorn_heap_get_statistics(&statistics);
  std::FILE* const file = std::fopen(path, "a");
  if (file == nullptr) return;
  std::fprintf(file, "%llu %llu %llu\n", static_cast<unsigned long long>(operations),
               static_cast<unsigned long long>(faults), static_cast<unsigned long long>(statistics.collections));
  std::fclose(file);
}

std::string describeErrors() {
  std::string text;
  for (std::size_t i = 0; i < vorn_error_count(); ++i) {
    if (i != 0) text += "; ";
    text += std::string(vorn_error_class(i)) + " \"" + vorn_error_message(i) + "\"";
  }
  return text.empty() ? "no error" : text;
}

}  // namespace

void startRuntime() {
  static const bool started = [] {
    static const RuntimeScope runtime(std::getenv("VORN_TEST_HEAP"));
    if (!runtime.running()) std::abort();
    std::atexit(writeFigures);
    return true;
  }();
  static_cast<void>(started);
}

std::int64_t Input::index() {
  const std::uint8_t chosen = byte();
  if (chosen < 200) return static_cast<std::int64_t>(chosen % 24) - 6;
  if (chosen < 244) return static_cast<std::int64_t>(byte()) - 128;
  constexpr std::int64_t kFar[] = {INT64_MIN, INT64_MIN + 1, INT64_MAX,    INT64_MAX - 1,
                                   INT32_MIN, INT32_MAX,     -(1LL << 32), 1LL << 32};
  return kFar[chosen % std::size(kFar)];
}

std::uint64_t Input::word() {
  std::uint64_t value = 0;
  for (int i = 0; i < 8; ++i) value = value << 8 | byte();
  return value;
}

void noteOperation(const char* name) {
  ++operations;
  names[nameCount++ % kRemembered] = name;
}

std::uint64_t operationCount() { return operations; }

void noteFault() { ++faults; }

void beginInput() { nameCount = 0; }

void diverge(const char* what, std::string_view actual, std::string_view expected) {
  std::fprintf(stderr, "%s differs\n  is:       %.*s\n  expected: %.*s\n", what, static_cast<int>(actual.size()),
               actual.data(), static_cast<int>(expected.size()), expected.data());
  constexpr std::size_t kShown = 12;
  std::fprintf(stderr, "  after %zu operations, the last being", nameCount);
  for (std::size_t i = nameCount > kShown ? nameCount - kShown : 0; i < nameCount; ++i) {
    std::fprintf(stderr, " %s", names[i % kRemembered]);
  }
  std::fprintf(stderr, "\n");
  std::abort();
}

void requireEqualFloating(const char* what, double actual, double expected) {
  if (std::bit_cast<std::uint64_t>(actual) == std::bit_cast<std::uint64_t>(expected)) return;
  if (std::isnan(actual) && std::isnan(expected)) return;
  char texts[2][40];
  std::snprintf(texts[0], sizeof(texts[0]), "%.17g", actual);
  std::snprintf(texts[1], sizeof(texts[1]), "%.17g", expected);
  diverge(what, texts[0], texts[1]);
}

OperationTally* newTallies(std::size_t count) {
  tallies = std::make_unique<OperationTally[]>(count);
  tallyCount = count;
  return tallies.get();
}

std::span<OperationTally> operationTallies() { return {tallies.get(), tallyCount}; }

void requireErrors(const char* what, std::span<const ExpectedError> expected) {
  bool same = vorn_error_count() == expected.size();
  for (std::size_t i = 0; same && i < expected.size(); ++i) {
    same = std::string_view(vorn_error_class(i)) == expected[i].exceptionClass &&
           std::string_view(vorn_error_message(i)) == expected[i].message;
  }
  if (!same) {
    std::string text;
    for (const ExpectedError& error : expected) {
      if (!text.empty()) text += "; ";
      text += std::string(error.exceptionClass) + " \"" + error.message + "\"";
    }
    diverge((std::string("the errors of ") + what).c_str(), describeErrors(), text.empty() ? "no error" : text);
  }
  vorn_errors_clear();
}

}  // namespace vorn::fuzz
