// What the tests of the C++ API share. They see public headers only and link the shared libraries, as any program does.
#pragma once

#include <gtest/gtest.h>
#include <vorn/collections.hpp>

#include <string>
#include <vector>

namespace vorn::tests {

// Every test ends without a pending error and without an armed allocation failure.
class CppApi : public ::testing::Test {
 protected:
  void TearDown() override;
};

// The pending errors of this thread, oldest first, as "Class: message"; clears them.
std::vector<std::string> takeErrors();

bool onStressHeap();

// The blocks that the heap has handed out.
inline std::uint64_t allocations() {
  vorn_heap_statistics statistics;
  vorn_heap_get_statistics(&statistics);
  return statistics.allocations;
}

// What the function throws as "exception class|what()", or "" when it throws nothing. The class is that of the C++ API.
template <class Function>
std::string thrownBy(Function function) {
  try {
    function();
    return "";
  } catch (const index_error& e) {
    return std::string("index_error|") + e.what();
  } catch (const key_error& e) {
    return std::string("key_error|") + e.what();
  } catch (const type_error& e) {
    return std::string("type_error|") + e.what();
  } catch (const value_error& e) {
    return std::string("value_error|") + e.what();
  } catch (const null_error& e) {
    return std::string("null_error|") + e.what();
  } catch (const read_only_error& e) {
    return std::string("read_only_error|") + e.what();
  } catch (const error& e) {
    return std::string("error|") + e.what();
  } catch (const std::bad_alloc&) {
    return "bad_alloc";
  } catch (const std::length_error&) {
    return "length_error";
  } catch (const std::logic_error& e) {
    return std::string("logic_error|") + e.what();
  }
}

// Instances of a user class whose hooks do what the test says. Equality and hash go by the field "id".
enum class Hook { Honest, Raises, Throws };
inline Hook hookAction = Hook::Honest;
struct HookScope {
  explicit HookScope(Hook action) { hookAction = action; }
  ~HookScope() { hookAction = Hook::Honest; }
  HookScope(const HookScope&) = delete;
  HookScope& operator=(const HookScope&) = delete;
};
value thing(std::int64_t id);

}  // namespace vorn::tests
