// A process that may have no more memory: collections end in std::bad_alloc, are what they were, and are of use again
// when memory is.
#include <gc/gc.h>
#include <sys/resource.h>
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "runtime/heap/heap_limit.h"
#include "tests/support/collections.h"

namespace vorn::tests {
namespace {

constexpr std::size_t kRoom = std::size_t{40} << 20;

// A stack that cannot grow any more ends its process by a signal, so that it grows before memory is at an end.
__attribute__((noinline)) void growStack() {
  volatile char room[std::size_t{512} << 10];
  for (std::size_t i = 0; i < sizeof(room); i += 1024) room[i] = 0;
}

// Lets this process have so much more memory than it has now, and no more.
class MemoryLimit {
 public:
  MemoryLimit() {
    growStack();
    unsigned long long pages = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%llu", &pages) != 1) std::abort();
    std::fclose(file);
    getrlimit(RLIMIT_AS, &before_);
    const rlimit limit = {pages * 4096 + kRoom, before_.rlim_max};
    if (setrlimit(RLIMIT_AS, &limit) != 0) std::abort();
    runtime::lookAtLimitAgain();
  }
  ~MemoryLimit() { setrlimit(RLIMIT_AS, &before_); }
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;

 private:
  rlimit before_ = {};
};

[[noreturn]] void endWith(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::_Exit(what[0] == '\0' ? 0 : 1);
}

// The collector's library goes on after what it warns of here, and a later collection may then come by a block that is
// none.
void endWhereABlockIsLost(char* message, GC_word) {
  if (std::strstr(message, "dropping block") != nullptr) endWith("the collector had no memory for a header");
}

// Adds one element and gives the new size.
long long grow(const CollectionClass& type, void* collection, long long number) {
  void* const box = vorn_box_long(number);
  if (box == nullptr) throw std::bad_alloc();
  switch (type.family) {
    case Family::Map:
      vorn_collections_Map_put(collection, box, box);
      return vorn_collections_Map_size(collection);
    case Family::Set:
      vorn_collections_HashSet_add(collection, box);
      return vorn_collections_HashSet_size(collection);
    case Family::Array:
      vorn_collections_Array_ctor(collection, number * 100'000);
      return vorn_collections_Array_size(collection) / 100'000;
    default:
      vorn_collections_ArrayList_add(collection, box);
      return vorn_collections_ArrayList_size(collection);
  }
}

void empty(const CollectionClass& type, void* collection) {
  if (type.family == Family::Map) vorn_collections_Map_clear(collection);
  if (type.family == Family::Set) vorn_collections_HashSet_clear(collection);
  if (type.family == Family::Array) vorn_collections_Array_ctor(collection, 0);
  if (type.family == Family::List) vorn_collections_ArrayList_clear(collection);
}

// In a process of its own: grows the collection until memory ends, and looks at what is there then.
[[noreturn]] void fillTheMachine(const CollectionClass& type) {
  GC_set_warn_proc(endWhereABlockIsLost);
  const Handle collection = object(type.name);
  if (type.family == Family::Array) vorn_collections_Array_ctor(collection, 0);
  long long size = 0;
  {
    const MemoryLimit limit;
    try {
      for (;; ++size) {
        if (grow(type, collection, size + 1) != size + 1) endWith("another size");
      }
    } catch (const std::bad_alloc&) {
    }
    // Errors can be raised and told even then, and reading goes on.
    if (type.family == Family::List) {
      vorn_collections_ArrayList_removeAt(collection, size + 5);
      if (vorn_error_count() != 1 || vorn_error_message(0) == nullptr) endWith("no error");
      vorn_errors_clear();
      if (vorn_collections_ArrayList_getInt(collection, size - 1) != size) endWith("another last element");
    }
  }
  if (size < 10) endWith("memory ended at once");
  if (!faultOf(type, collection).empty()) endWith(faultOf(type, collection).c_str());
  empty(type, collection);
  vorn_heap_collect();
  for (long long i = 0; i < 10; ++i) {
    if (grow(type, collection, i + 1) != i + 1) endWith("of no use any more");
  }
  if (!faultOf(type, collection).empty()) endWith(faultOf(type, collection).c_str());
  endWith("");
}

class FullMachine : public RuntimeTest, public ::testing::WithParamInterface<CollectionClass> {};

TEST_P(FullMachine, GrowingCollection_EndsInBadAllocAndIsWhole) {
  // The stress heap uses no address twice, so that its end is another.
  // A sanitizer or valgrind maps far more than any limit.
  if (underTool() || onStressHeap()) GTEST_SKIP() << "no limit of memory fits this heap or tool";
  EXPECT_EXIT(fillTheMachine(GetParam()), ::testing::ExitedWithCode(0), "");
}

std::vector<CollectionClass> growingClasses() {
  std::vector<CollectionClass> classes;
  for (const CollectionClass& type : kCollectionClasses) {
    if (type.family != Family::Immutable && type.family != Family::Tuple) classes.push_back(type);
  }
  return classes;
}

INSTANTIATE_TEST_SUITE_P(Classes, FullMachine, ::testing::ValuesIn(growingClasses()),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace vorn::tests
