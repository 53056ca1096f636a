// vorn-conformance: checks a runtime against the contract of the port, then the natives on it against their laws.
//
//   vorn-conformance            runs every check, and prints those that fail or are skipped
//   vorn-conformance --list     prints the names of all checks
//   vorn-conformance --only=X   runs the checks whose name begins with X, such as an operation; may be repeated
//   vorn-conformance --verbose  prints every check
//   vorn-conformance --seconds=N  ends a check that takes longer (60); 0 lets it take its time, as in a debugger
//
// Each check runs in a process of its own, so that one that crashes or hangs is only one that failed. The status is the
// number of failed checks, at most 100; 101 is a mistake in the call.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "conformance/check.h"

namespace vorn::conformance {
namespace {

constexpr int kMostFailures = 100;
constexpr int kUsageError = 101;

struct Options {
  bool list = false;
  bool verbose = false;
  unsigned seconds = 60;  // until a check counts as hanging
  std::vector<std::string_view> only;
};

std::string nameOf(const Check& check) { return std::string(check.subject) + ": " + check.promise; }

Checks allChecks() {
  Checks all;
  for (const auto part :
       {memoryChecks, errorChecks, recordChecks, objectChecks, valueChecks, typeNameChecks, comparisonChecks, keyChecks,
        textChecks, listLaws, arrayLaws, keyedLaws, displayLaws, sortLaws, threadLaws}) {
    const Checks checks = part();
    all.insert(all.end(), checks.begin(), checks.end());
  }
  return all;
}

bool isWanted(const Check& check, const Options& options) {
  const std::string name = nameOf(check);
  return options.only.empty() || std::any_of(options.only.begin(), options.only.end(),
                                             [&](std::string_view start) { return name.starts_with(start); });
}

// Why this runtime cannot do what the check needs; null when it can.
const char* reasonToSkip(Needs needs) {
  if (needs == Needs::Hooks && !adapter().hasHooks) return "its classes have no hooks";
  if (needs == Needs::Collector && !adapter().collect) return "it collects nothing";
  if (needs == Needs::Threads && !adapter().startThread) return "it knows one thread only";
  return nullptr;
}

// The child's part: the check's one line of failure, empty when it passed.
std::string outcomeOf(const Check& check) {
  try {
    adapter().start();
    check.body();
    const std::vector<std::string> left = adapter().takeErrors();
    return left.empty() ? "" : "an error is left pending: " + shown(left);
  } catch (const std::exception& error) {
    return printable(error.what());
  }
}

[[noreturn]] void runInChild(const Check& check, unsigned seconds, int pipeEnd) {
  alarm(seconds);
  const std::string outcome = outcomeOf(check);
  const bool sent = write(pipeEnd, outcome.data(), outcome.size()) == static_cast<ssize_t>(outcome.size());
  std::fflush(nullptr);
  _exit(sent && outcome.empty() ? 0 : 1);
}

std::string readAll(int pipeEnd) {
  std::string text;
  char part[512];
  for (ssize_t count = 0; (count = read(pipeEnd, part, sizeof(part))) > 0;)
    text.append(part, static_cast<std::size_t>(count));
  return text;
}

// The line of failure; empty when the check passed.
std::string run(const Check& check, unsigned seconds) {
  int ends[2];
  if (pipe(ends) != 0) return "no pipe to be had";
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) return "no process to be had";
  if (child == 0) {
    close(ends[0]);
    runInChild(check, seconds, ends[1]);
  }
  close(ends[1]);
  std::string outcome = readAll(ends[0]);
  close(ends[0]);
  int status = 0;
  if (waitpid(child, &status, 0) != child) return "its process was lost";
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    if (signal == SIGALRM) return "it did not end within " + std::to_string(seconds) + " seconds";
    return "it ended by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
  }
  if (status != 0 && outcome.empty()) return "its process ended with status " + std::to_string(WEXITSTATUS(status));
  return outcome;
}

int runAll(const Options& options) {
  int passed = 0;
  int failed = 0;
  int skipped = 0;
  for (const Check& check : allChecks()) {
    if (!isWanted(check, options)) continue;
    if (const char* reason = reasonToSkip(check.needs)) {
      ++skipped;
      std::printf("skipped  %s -- %s\n", nameOf(check).c_str(), reason);
      continue;
    }
    const std::string failure = run(check, options.seconds);
    ++(failure.empty() ? passed : failed);
    if (!failure.empty()) std::printf("FAILED   %s -- %s\n", nameOf(check).c_str(), failure.c_str());
    if (failure.empty() && options.verbose) std::printf("passed   %s\n", nameOf(check).c_str());
  }
  std::printf("%s: %d checks passed, %d failed, %d skipped\n", adapter().name, passed, failed, skipped);
  if (passed + failed + skipped == 0) return kUsageError;
  return std::min(failed, kMostFailures);
}

bool readOptions(int count, char** arguments, Options& options) {
  constexpr std::string_view kOnly = "--only=";
  constexpr std::string_view kSeconds = "--seconds=";
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--list") {
      options.list = true;
    } else if (argument == "--verbose") {
      options.verbose = true;
    } else if (argument.starts_with(kSeconds) && argument.size() > kSeconds.size() && argument.size() < 15 &&
               argument.find_first_not_of("0123456789", kSeconds.size()) == std::string_view::npos) {
      options.seconds = static_cast<unsigned>(std::atoi(arguments[i] + kSeconds.size()));
    } else if (argument.starts_with(kOnly)) {
      options.only.push_back(argument.substr(kOnly.size()));
    } else {
      std::fprintf(stderr,
                   "vorn-conformance: no option '%s'; there are --list, --only=NAME, --seconds=N and --verbose\n",
                   arguments[i]);
      return false;
    }
  }
  return true;
}

}  // namespace
}  // namespace vorn::conformance

int main(int count, char** arguments) {
  using namespace vorn::conformance;
  Options options;
  if (!readOptions(count, arguments, options)) return kUsageError;
  if (!options.list) return runAll(options);
  for (const Check& check : allChecks()) {
    if (isWanted(check, options)) std::printf("%s\n", nameOf(check).c_str());
  }
  return 0;
}
