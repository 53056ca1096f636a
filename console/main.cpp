// The console's program: options, then scripts or a conversation.
#include <sys/resource.h>
#include <unistd.h>
#include <vorn/collections/version.h>
#include <vorn/runtime.h>

#include <langinfo.h>
#include <algorithm>
#include <charconv>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/console.h"
#include "console/files.h"
#include "console/interrupt.h"
#include "console/line_editor.h"
#include "console/line_source.h"
#include "console/problems.h"
#include "console/script_runner.h"
#include "console/shell.h"
#include "console/text.h"

namespace {

using namespace vorn::console;  // NOLINT(google-build-using-namespace): the program's own namespace

constexpr std::string_view kUsage =
    R"(usage: vorn-console [OPTION...] [SCRIPT...]

Without scripts, a conversation with the vorn collections. Scripts are run one by one; what they show is compared with
their expectations, and the exit status is 1 when something differs.

  --tour                 the guided tour
  --echo                 show the statements of scripts and all that they give
  --heap=OPTIONS         the heap, as in heap=stress,one-in=3 (default: heap=collected)
  --memory=MEGABYTES     the most memory to take (default: 4096; 0 for all there is)
  --natives              list all natives and leave
  --natives-called=FILE  write the names of the natives that were called
  --version              the version
  --help                 this text

NO_COLOR switches colours off; VORN_CONSOLE_HISTORY names the file of the history (~/.vorn_console_history).
)";

struct Options {
  std::vector<std::string> scripts;
  std::string heap;
  std::string calledFile;
  std::size_t megabytes = 4096;
  bool tour = false;
  bool echo = false;
  bool natives = false;
  bool version = false;
  bool help = false;
};

int complain(const std::string& message) {
  std::fprintf(stderr, "vorn-console: %s\n", message.c_str());
  return 2;
}

std::optional<std::string_view> valueOf(std::string_view argument, std::string_view option) {
  if (!argument.starts_with(option)) return std::nullopt;
  return argument.substr(option.size());
}

// What is wrong with the arguments; empty when nothing is.
std::string parseArguments(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (!argument.starts_with("-") || argument == "-") {
      options.scripts.emplace_back(argument);
    } else if (argument == "--tour") {
      options.tour = true;
    } else if (argument == "--echo") {
      options.echo = true;
    } else if (argument == "--natives") {
      options.natives = true;
    } else if (argument == "--version") {
      options.version = true;
    } else if (argument == "--help" || argument == "-h") {
      options.help = true;
    } else if (const auto heap = valueOf(argument, "--heap=")) {
      options.heap = *heap;
    } else if (const auto file = valueOf(argument, "--natives-called=")) {
      options.calledFile = *file;
    } else if (const auto size = valueOf(argument, "--memory=")) {
      const auto [end, error] = std::from_chars(size->data(), size->data() + size->size(), options.megabytes);
      if (error != std::errc() || end != size->data() + size->size() || options.megabytes > 1U << 24) {
        return "--memory takes a number of megabytes, not '" + std::string(*size) + "'";
      }
    } else {
      return "there is no option '" + std::string(argument) + "'; --help lists them";
    }
  }
  return {};
}

// Takes no more than so much data: a list that doubles and doubles then gets std::bad_alloc, which is told,
// instead of taking the machine along. Sanitizers need all there is.
void limitMemory(std::size_t megabytes) {
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  if (megabytes == 0) return;
  const rlim_t bytes = rlim_t{megabytes} << 20;
  rlimit limit = {};
  if (::getrlimit(RLIMIT_DATA, &limit) != 0) return;
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  ::setrlimit(RLIMIT_DATA, &limit);
#else
  static_cast<void>(megabytes);
#endif
}

// Characters are UTF-8 here, whatever the locale says otherwise.
void useUtf8() {
  std::setlocale(LC_CTYPE, "");
  if (std::string_view(nl_langinfo(CODESET)) != "UTF-8") std::setlocale(LC_CTYPE, "C.UTF-8");
}

bool wantsColours(int file) {
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool dumb = terminal == nullptr || std::strcmp(terminal, "dumb") == 0;
  return ::isatty(file) != 0 && !dumb && (noColour == nullptr || *noColour == '\0');
}

int listNativesAndLeave() {
  for (const NativeRow* row : allNatives()) {
    std::printf("%s\t%s\t%s\t%s\t%s\n", std::string(row->exportedName).c_str(), std::string(row->className).c_str(),
                std::string(row->method).c_str(), signatureText(*row).c_str(), std::string(row->description).c_str());
  }
  return std::fflush(stdout) == 0 ? 0 : 1;
}

// A line on the terminal that tells how far a script is, once it has taken more than a second.
class Progress {
 public:
  explicit Progress(std::string name) : name_(std::move(name)), shownAt_(::isatty(STDERR_FILENO) != 0) {}
  ~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void operator()(std::size_t number, std::size_t count) {
    constexpr std::chrono::milliseconds kPatience(1000);
    if (!shownAt_ || std::chrono::steady_clock::now() - start_ < kPatience) return;
    shown_ = true;
    std::fprintf(stderr, "\r\033[K%s: %zu of %zu", name_.c_str(), number, count);
    std::fflush(stderr);
  }

 private:
  std::string name_;
  bool shownAt_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Which natives all sessions of the process have called.
class CalledNatives {
 public:
  void add(const Session& session) {
    for (const NativeRow* row : session.called()) names_.emplace_back(row->exportedName);
  }
  [[nodiscard]] std::string text() {
    std::ranges::sort(names_);
    names_.erase(std::unique(names_.begin(), names_.end()), names_.end());
    std::string text;
    for (const std::string& name : names_) text += name + "\n";
    return text;
  }

 private:
  std::vector<std::string> names_;
};

// Runs a script and tells how it went; false when something differs.
bool runOne(const std::string& name, std::string_view text, bool echo, Output& output, CalledNatives& called) {
  Console console;
  ScriptOptions options;
  options.echo = echo;
  Progress progress(name);
  options.progress = [&](std::size_t number, std::size_t count) { progress(number, count); };
  const ScriptReport report = runScript(console, name, text, output, options);
  called.add(console.session());
  if (report.interrupted) {
    output.line(name + ": interrupted", Style::Error);
    return false;
  }
  const std::string summary = name + ": " + counted(report.statements, "statement") + ", " +
                              counted(report.expectations, "expectation") + ", " +
                              counted(report.differences, "difference");
  output.line(summary, report.differences == 0 ? Style::Faint : Style::Error);
  return report.differences == 0;
}

int runScripts(const Options& options, Output& output, CalledNatives& called) {
  bool good = true;
  for (const std::string& path : options.scripts) {
    try {
      good = runOne(path, readFile(path), options.echo, output, called) && good;
    } catch (const Refusal& refusal) {
      std::fflush(stdout);
      complain(refusal.what());
      good = false;
    }
    if (interrupted()) break;
  }
  return good ? 0 : 1;
}

std::string historyFile() {
  if (const char* named = std::getenv("VORN_CONSOLE_HISTORY")) return named;
  const char* home = std::getenv("HOME");
  return home != nullptr ? std::string(home) + "/.vorn_console_history" : std::string();
}

int converseOnTerminal(const Options& options, StreamOutput& output, CalledNatives& called) {
  Console console;
  LineEditor editor(console.session(), output.coloured(), historyFile());
  console.setWidth(editor.columns());
  output.line("The vorn console. :help lists what there is, :tour shows it; Ctrl-D leaves.");
  if (options.tour) console.run(":tour", output);
  converse(console, editor, output);
  called.add(console.session());
  return 0;
}

int converseOnStream(Output& output, CalledNatives& called) {
  Console console;
  PlainLines lines(stdin);
  const std::size_t failures = converse(console, lines, output);
  called.add(console.session());
  return failures == 0 ? 0 : 1;
}

int work(const Options& options, StreamOutput& output, CalledNatives& called) {
  const bool terminal = ::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0;
  if (!options.scripts.empty()) return runScripts(options, output, called);
  if (terminal) return converseOnTerminal(options, output, called);
  if (options.tour) return runOne("tour", tourScript(), true, output, called) ? 0 : 1;
  return converseOnStream(output, called);
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (const std::string problem = parseArguments(argc, argv, options); !problem.empty()) return complain(problem);
  if (options.help) {
    std::fputs(kUsage.data(), stdout);
    return 0;
  }
  if (options.version) {
    std::printf("vorn-console %s\n", VORN_COLLECTIONS_VERSION);
    return std::fflush(stdout) == 0 ? 0 : 1;
  }
  if (options.natives) return listNativesAndLeave();
  // The console looks into the records of the libraries that it is compiled with.
  if (std::string_view(vorn_runtime_version()) != VORN_COLLECTIONS_VERSION) {
    return complain(std::string("this is version " VORN_COLLECTIONS_VERSION ", but libvorn_runtime is version ") +
                    vorn_runtime_version());
  }
  useUtf8();
  limitMemory(options.megabytes);
  catchInterrupts();
  const vorn::RuntimeScope runtime(options.heap.c_str());
  if (!runtime.running()) return complain("cannot start the runtime on the heap '" + options.heap + "'");
  try {
    StreamOutput output(stdout, wantsColours(STDOUT_FILENO));
    CalledNatives called;
    int status = work(options, output, called);
    if (!options.calledFile.empty()) writeFile(options.calledFile, called.text());
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
      return complain("cannot write the output");
    }
    return status;
  } catch (const std::exception& exception) {
    return complain(exception.what());
  }
}
