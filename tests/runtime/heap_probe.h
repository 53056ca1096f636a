// Small means for the tests of the heap: nodes to keep alive, garbage.
#pragma once

#include <cstdint>

#include "runtime/heap/heap.h"
#include "runtime/threads/thread_state.h"
#include "tests/support/heap_statistics.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {

inline bool onPlainHeap() { return testOptions().heap == VORN_HEAP_PLAIN; }

// Whether a block dies exactly when its last registered root goes.
inline bool onExactHeap() {
  const vorn_runtime_options options = testOptions();
  return options.heap == VORN_HEAP_STRESS && options.stress_scans_stacks == 0;
}

// Whether that many bytes are in use. Only where the heap is exact can this be told; elsewhere it passes.
inline ::testing::AssertionResult liveBytesAre(std::uint64_t expected) {
  if (!onExactHeap()) return ::testing::AssertionSuccess();
  const std::uint64_t live = liveBytes();
  if (live == expected) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << live << " bytes are live instead of " << expected;
}

struct Node {
  Node* next;
  std::int64_t value;
};

inline Node* nodeAt(void* handle) { return static_cast<Node*>(handle); }

// A node in front of `next`, which is kept alive meanwhile.
inline void* newNode(void* next, std::int64_t value) {
  const Handle kept = next;
  auto* node = static_cast<Node*>(runtime::allocateScanned(sizeof(Node)));
  node->next = nodeAt(next);
  node->value = value;
  return node;
}

// Enough garbage that memory which was freed by mistake is handed out again and overwritten.
inline void makeGarbage() {
  const int blocks = onStressHeap() ? 50 : 20'000;
  for (int i = 0; i < blocks; ++i) {
    auto* node = static_cast<Node*>(runtime::allocateScanned(sizeof(Node)));
    node->value = -1;
  }
}

// Starts the runtime with the test program's options again when the scope ends.
class RestartsRuntime {
 public:
  RestartsRuntime() = default;
  ~RestartsRuntime() {
    vorn_runtime_stop();
    const vorn_runtime_options options = testOptions();
    EXPECT_EQ(vorn_runtime_start(&options), 1);
  }
  RestartsRuntime(const RestartsRuntime&) = delete;
  RestartsRuntime& operator=(const RestartsRuntime&) = delete;
};

}  // namespace vorn::tests
