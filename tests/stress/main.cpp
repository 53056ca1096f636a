// Runs one topic of the stress program on the heap that VORN_TEST_HEAP describes, or tells what there is.
//
//   stress_tests --topics            names the topics
//   stress_tests --natives           names the natives and other functions that the topics call
//   stress_tests TOPIC [SECONDS [OPERATIONS [SEED]]]
//
// The last line of a run has the figures. The status is 1 when something was not as it must be.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <vorn/runtime.hpp>

#include "tests/stress/mix.h"

namespace {

using vorn::tests::stress::Figures;
using vorn::tests::stress::Limits;
using vorn::tests::stress::Topic;

unsigned long long number(std::uint64_t value) { return value; }

int tell(std::string_view option) {
  for (const Topic& topic : vorn::tests::stress::topics()) {
    if (option == "--topics") {
      std::puts(topic.name);
    } else {
      for (const std::string& name : topic.natives()) std::puts(name.c_str());
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const vorn::RuntimeScope runtime(std::getenv("VORN_TEST_HEAP"));
  if (!runtime.running() || argc < 2 || argc > 5) {
    std::fputs("usage: stress_tests --topics | --natives | TOPIC [SECONDS [OPERATIONS [SEED]]]\n", stderr);
    return 2;
  }
  if (std::strcmp(argv[1], "--topics") == 0 || std::strcmp(argv[1], "--natives") == 0) return tell(argv[1]);
  Limits limits;
  if (argc > 2) limits.seconds = std::atof(argv[2]);
  if (argc > 3) limits.operations = std::strtoull(argv[3], nullptr, 10);
  if (argc > 4) limits.seed = std::strtoull(argv[4], nullptr, 10);
  for (const Topic& topic : vorn::tests::stress::topics()) {
    if (std::strcmp(topic.name, argv[1]) != 0) continue;
    const Figures figures = topic.run(limits);
    std::printf("%s: %llu operations, %llu faults injected, %llu collections, %llu divergences\n", topic.name,
                number(figures.operations), number(figures.faults), number(figures.collections),
                number(figures.divergences));
    return figures.divergences == 0 ? 0 : 1;
  }
  std::fprintf(stderr, "no topic '%s'; stress_tests --topics names them\n", argv[1]);
  return 2;
}
