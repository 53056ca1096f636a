// Drives a fuzzer where the compiler has no fuzzing engine: replays inputs that are kept, then feeds random ones, the
// same ones in every run with the same seed.
//
//   lists_fuzz [--corpus FILE] [SECONDS [SEED]]
//   lists_fuzz INPUT...                          replays inputs that were saved, as binaries with the engine do
//
// A corpus is a file of texts, one input to a line in hexadecimal digits. Where it is given, each operation of the fuzzer
// must run at least once. The input that ends the process is saved in the directory that VORN_FUZZ_ARTIFACTS names, or
// else in the working directory.
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzzer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// AddressSanitizer ends the process without a signal.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLongestInput = 1000;
constexpr unsigned kSecondsForAnInput = 120;

std::string program;
Bytes current;
std::uint64_t inputs = 0;

// Writes the current input to a file and says how to repeat it.
void saveInput() {
  static bool saved = false;
  if (saved) return;
  saved = true;
  const char* const directory = std::getenv("VORN_FUZZ_ARTIFACTS");
  const std::string file = (directory != nullptr ? directory : ".") +
                           ("/" + program.substr(program.rfind('/') + 1) + "-" + std::to_string(inputs) + ".input");
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(current.data()), static_cast<std::streamsize>(current.size()));
  const char* const heap = std::getenv("VORN_TEST_HEAP");
  std::fprintf(stderr, "the input is saved; to repeat this: VORN_TEST_HEAP=%s %s %s\n", heap != nullptr ? heap : "",
               program.c_str(), file.c_str());
}

void onSignal(int signal) {
  if (signal == SIGALRM) std::fprintf(stderr, "an input takes more than %u s\n", kSecondsForAnInput);
  saveInput();
  std::signal(signal, SIG_DFL);
  std::raise(signal == SIGALRM ? SIGABRT : signal);
}

void run(Bytes input) {
  current = std::move(input);
  ++inputs;
  alarm(kSecondsForAnInput);
  LLVMFuzzerTestOneInput(current.data(), current.size());
}

Bytes randomInput(std::uint64_t seed) {
  // Each input has a generator of its own, so that one can be made again without those before it.
  std::mt19937_64 random(seed);
  Bytes input(random() % kLongestInput);
  for (std::uint8_t& byte : input) byte = static_cast<std::uint8_t>(random());
  return input;
}

Bytes bytesOf(std::string_view digits) {
  Bytes bytes(digits.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::from_chars(digits.data() + 2 * i, digits.data() + 2 * i + 2, bytes[i], 16);
  }
  return bytes;
}

// Gives whether all operations have run.
bool replayCorpus(const char* path) {
  std::ifstream file(path);
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", path);
    return false;
  }
  for (std::string line; std::getline(file, line);) run(bytesOf(line));
  // Some stand more than once in a table, since that makes them more likely.
  std::map<std::string_view, std::uint64_t> runs;
  for (const vorn::fuzz::OperationTally& tally : vorn::fuzz::operationTallies()) runs[tally.name] += tally.runs;
  bool complete = true;
  for (const auto& [name, count] : runs) {
    if (count != 0) continue;
    std::fprintf(stderr, "no input of %s reaches the operation '%s'\n", path, std::string(name).c_str());
    complete = false;
  }
  return complete;
}

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos;
}

}  // namespace

int main(int argc, char** argv) {
  program = argv[0];
  for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGALRM}) std::signal(signal, onSignal);
  if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(saveInput);
  int next = 1;
  bool complete = true;
  if (next + 1 < argc && std::string_view(argv[next]) == "--corpus") {
    complete = replayCorpus(argv[next + 1]);
    next += 2;
  }
  if (next < argc && !isNumber(argv[next])) {
    for (; next < argc; ++next) {
      std::ifstream file(argv[next], std::ios::binary);
      run(Bytes(std::istreambuf_iterator<char>(file), {}));
    }
  } else {
    const double seconds = next < argc ? std::strtod(argv[next], nullptr) : 3;
    const std::uint64_t seed = next + 1 < argc ? std::strtoull(argv[next + 1], nullptr, 10) : 1;
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (std::uint64_t i = 0; std::chrono::steady_clock::now() < end; ++i) run(randomInput(seed + i));
  }
  alarm(0);
  std::printf("%llu inputs, %llu operations, no divergence\n", static_cast<unsigned long long>(inputs),
              static_cast<unsigned long long>(vorn::fuzz::operationCount()));
  return complete ? 0 : 1;
}
