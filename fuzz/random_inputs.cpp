// Feeds a fuzzer random inputs where the compiler has no fuzzing engine: the same ones in every run with the same seed.
//
//   display_fuzz [SECONDS [SEED]]
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::uint64_t currentSeed = 0;

void reportSeed(int) {
  std::fprintf(stderr, "the input of seed %llu did this; as arguments: 0 %llu\n",
               static_cast<unsigned long long>(currentSeed), static_cast<unsigned long long>(currentSeed));
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::strtod(argv[1], nullptr) : 3;
  const std::uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  std::signal(SIGABRT, reportSeed);
  std::uint64_t runs = 0;
  std::vector<std::uint8_t> input;
  do {
    // Each input has a generator of its own, so that the one that failed can be made again.
    std::mt19937_64 random(seed + runs);
    input.resize(random() % 400);
    for (std::uint8_t& byte : input) byte = static_cast<std::uint8_t>(random());
    currentSeed = seed + runs;
    LLVMFuzzerTestOneInput(input.data(), input.size());
    ++runs;
  } while (std::chrono::steady_clock::now() < end);
  std::printf("%llu inputs, nothing found\n", static_cast<unsigned long long>(runs));
  return 0;
}
