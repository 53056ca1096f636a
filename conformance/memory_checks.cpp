// memory.h: blocks and roots.
#include <cstring>

#include "collections/core/port/memory.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"

namespace vorn::conformance {
namespace {

using Allocate = void* (*)(std::size_t);

// Blocks of many sizes, each filled to its end, all of which keep what was written.
void blocksAreApart(Allocate allocate) {
  constexpr std::size_t kBlocks = 200;
  static unsigned char* blocks[kBlocks];
  const collections::RootedRange roots(blocks, sizeof(blocks));
  const auto sizeOf = [](std::size_t i) { return i * i % 700 + 1; };
  for (std::size_t i = 0; i < kBlocks; ++i) {
    blocks[i] = static_cast<unsigned char*>(allocate(sizeOf(i)));
    expectTrue("a block of " + std::to_string(sizeOf(i)) + " bytes is there", blocks[i] != nullptr);
    expect("a block's address modulo 16", reinterpret_cast<std::uintptr_t>(blocks[i]) % 16, std::size_t{0});
    std::memset(blocks[i], static_cast<int>(i), sizeOf(i));
  }
  for (std::size_t i = 0; i < kBlocks; ++i) {
    for (std::size_t at = 0; at < sizeOf(i); ++at)
      expect("a byte of an earlier block", int{blocks[i][at]}, static_cast<int>(i));
  }
}

void hugeBlockIsNull(Allocate allocate) {
  // Volatile, or compilers warn of a size that no object has.
  for (volatile std::size_t bytes : {SIZE_MAX, SIZE_MAX / 2, SIZE_MAX - 15}) {
    expect("a block of " + std::to_string(bytes) + " bytes", static_cast<const void*>(allocate(bytes)),
           static_cast<const void*>(nullptr));
  }
}

// Makes enough garbage that what no root holds would be gone, and its memory written over.
void collectThoroughly() {
  for (int round = 0; round < 3; ++round) {
    adapter().collect();
    for (int i = 0; i < 2000; ++i) {
      if (void* block = Vorn_gcAllocAtomic(static_cast<std::size_t>(i) % 96 + 16)) std::memset(block, 0x5A, 16);
    }
  }
}

// Handles that only one place holds: not this frame, which a collector may look at.
[[gnu::noinline]] void makeStrings(void** slots, int count) {
  for (int i = 0; i < count; ++i) {
    const collections::RootedHandle made(Vorn_allocString("kept by its root " + std::to_string(i)));
    slots[i] = made.get();
  }
}

void expectStrings(void** slots, int count) {
  for (int i = 0; i < count; ++i)
    expect("a rooted String", stringTextFromPtr(slots[i]), "kept by its root " + std::to_string(i));
}

}  // namespace

Checks memoryChecks() {
  return {
      {"Vorn_gcAlloc", "gives blocks that are aligned to 16 bytes and do not overlap",
       [] { blocksAreApart(Vorn_gcAlloc); }},
      {"Vorn_gcAlloc", "gives null when there is no memory", [] { hugeBlockIsNull(Vorn_gcAlloc); }},
      {"Vorn_gcAlloc", "gives blocks whose handles are kept alive while they are reachable",
       [] {
         void** block = static_cast<void**>(Vorn_gcAlloc(20 * sizeof(void*)));
         std::memset(block, 0, 20 * sizeof(void*));
         const collections::RootedHandle root(block);
         makeStrings(block, 20);
         collectThoroughly();
         expectStrings(block, 20);
       },
       Needs::Collector},
      {"Vorn_gcAllocAtomic", "gives blocks that are aligned to 16 bytes and do not overlap",
       [] { blocksAreApart(Vorn_gcAllocAtomic); }},
      {"Vorn_gcAllocAtomic", "gives null when there is no memory", [] { hugeBlockIsNull(Vorn_gcAllocAtomic); }},
      {"Vorn_gcRegisterRootRange", "keeps alive what the range holds",
       [] {
         static void* slots[20];
         Vorn_gcRegisterRootRange(slots, sizeof(slots));
         makeStrings(slots, 20);
         collectThoroughly();
         expectStrings(slots, 20);
         Vorn_gcUnregisterRootRange(slots, sizeof(slots));
       },
       Needs::Collector},
      {"Vorn_gcUnregisterRootRange", "ends registrations in any order, one for each call",
       [] {
         static void* slots[20];
         Vorn_gcRegisterRootRange(slots, sizeof(slots));
         Vorn_gcRegisterRootRange(slots, 10 * sizeof(void*));
         Vorn_gcRegisterRootRange(slots, sizeof(slots));
         makeStrings(slots, 20);
         Vorn_gcUnregisterRootRange(slots, sizeof(slots));
         Vorn_gcUnregisterRootRange(slots, 10 * sizeof(void*));
         if (adapter().collect) collectThoroughly();
         expectStrings(slots, 20);
         Vorn_gcUnregisterRootRange(slots, sizeof(slots));
       }},
      {"Vorn_gcRegisterRootSlot", "keeps alive what the slot holds, also after it is written anew",
       [] {
         static void* slot = nullptr;
         Vorn_gcRegisterRootSlot(&slot);
         for (int i = 0; i < 3; ++i) {
           makeStrings(&slot, 1);
           collectThoroughly();
           expectStrings(&slot, 1);
         }
         Vorn_gcUnregisterRootSlot(&slot);
       },
       Needs::Collector},
      {"Vorn_gcUnregisterRootSlot", "ends registrations in any order, one for each call",
       [] {
         static void* slots[3];
         for (void*& slot : slots) Vorn_gcRegisterRootSlot(&slot);
         Vorn_gcRegisterRootSlot(&slots[1]);
         makeStrings(slots, 3);
         Vorn_gcUnregisterRootSlot(&slots[0]);
         Vorn_gcUnregisterRootSlot(&slots[1]);
         if (adapter().collect) collectThoroughly();
         expect("a String of the slot that is registered once more", stringTextFromPtr(slots[1]), "kept by its root 1");
         Vorn_gcUnregisterRootSlot(&slots[2]);
         Vorn_gcUnregisterRootSlot(&slots[1]);
       }},
  };
}

}  // namespace vorn::conformance
