// What every test builds on: a running runtime, rooted handles, short makers, and checks of raised errors.
#pragma once

#include <gtest/gtest.h>
#include <vorn/collections/array_list.h>
#include <vorn/runtime.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"
#include "collections/core/storage/list_validation.h"

namespace vorn::tests {

// A handle that stays alive while this object does, under every collector.
class Handle {
 public:
  Handle(void* handle = nullptr) : handle_(handle) { vorn_root_add(&handle_); }  // NOLINT: converts on purpose
  Handle(const Handle& other) : Handle(other.handle_) {}
  Handle& operator=(const Handle& other) = default;
  Handle& operator=(void* handle) {
    handle_ = handle;
    return *this;
  }
  ~Handle() { vorn_root_remove(&handle_); }

  operator void*() const { return handle_; }  // NOLINT: passes for the raw handle on purpose
  [[nodiscard]] void* get() const { return handle_; }

 private:
  void* handle_;
};

// Short makers.
inline Handle integer(const char* type, std::int64_t value) { return vorn_box_integer(type, value); }
inline Handle floating(const char* type, double value) { return vorn_box_floating(type, value); }
inline Handle boolean(bool value) { return vorn_box_boolean(value); }
inline Handle string(const std::string& value) { return vorn_string_new(value.data(), value.size()); }
inline Handle text(const std::string& value) { return vorn_text_new(value.c_str()); }
inline Handle object(const std::string& typeName) { return vorn_object_new(typeName.c_str()); }
// A list of the named class with the given elements, added one by one.
inline Handle list(const std::string& typeName, std::initializer_list<Handle> elements = {}) {
  Handle result = object(typeName);
  for (const Handle& element : elements) vorn_collections_ArrayList_add(result, element);
  return result;
}

// The pending errors of this thread, oldest first, as "Class: message"; clears them.
inline std::vector<std::string> takeErrors() {
  std::vector<std::string> errors;
  for (std::size_t i = 0; i < vorn_error_count(); ++i) {
    errors.push_back(std::string(vorn_error_class(i)) + ": " + vorn_error_message(i));
  }
  vorn_errors_clear();
  return errors;
}

inline std::string listTypeError(const std::string& declared, const std::string& valueType) {
  return "TypeError: ArrayList<" + declared + "> cannot accept " + valueType;
}

// Whether the tests run on the stress heap (set by main from VORN_TEST_HEAP); slow tests shrink there.
bool onStressHeap();

// Fails the current test when the list's record is broken.
#define EXPECT_VALID_LIST(handle) EXPECT_EQ(::vorn::collections::validateListData(*getListData(handle)), "")

// Expects exactly one pending error, given as "Class: message", and clears it.
#define EXPECT_RAISED(expected) EXPECT_EQ(::vorn::tests::takeErrors(), std::vector<std::string>{expected})
#define EXPECT_NOTHING_RAISED() EXPECT_EQ(::vorn::tests::takeErrors(), std::vector<std::string>{})

// Fixture: every test ends without a pending error and without an armed allocation failure.
class RuntimeTest : public ::testing::Test {
 protected:
  void TearDown() override {
    vorn_heap_fail_allocation(-1);
    EXPECT_NOTHING_RAISED();
  }
};

}  // namespace vorn::tests
