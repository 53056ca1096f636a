// What every test builds on: a running runtime, short makers of values, and checks of raised errors.
#pragma once

#include <gtest/gtest.h>
#include <vorn/collections/array_list.h>
#include <vorn/runtime.hpp>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"
#include "collections/core/storage/list_validation.h"

namespace vorn::tests {

// Short makers.
Handle integer(const char* type, std::int64_t value);
Handle floating(const char* type, double value);
Handle boolean(bool value);
Handle string(const std::string& value);
Handle text(const std::string& value);
Handle object(const std::string& typeName);
// A list of the named class with the given elements, added one by one.
Handle list(const std::string& typeName, std::initializer_list<Handle> elements = {});

// The pending errors of this thread, oldest first, as "Class: message"; clears them.
std::vector<std::string> takeErrors();

// What a list of the declared element type raises when it is given a value of another.
std::string listTypeError(const std::string& declared, const std::string& valueType);

// The options that the test program was started with (VORN_TEST_HEAP, or the collected heap).
vorn_runtime_options testOptions();

// Whether the tests run on the stress heap; slow tests shrink there.
bool onStressHeap();

// Whether something looks at each step of the process, so that it takes ten to a hundred times as long: the build's
// sanitizer, or the tool that the environment names as VORN_TEST_TOOL. Slow tests shrink under it as well.
bool underTool();

// Fails the current test when the list's record is broken.
#define EXPECT_VALID_LIST(handle) EXPECT_EQ(::vorn::collections::validateListData(*getListData(handle)), "")

// Expects exactly one pending error, given as "Class: message", and clears it.
#define EXPECT_RAISED(expected) EXPECT_EQ(::vorn::tests::takeErrors(), std::vector<std::string>{expected})
#define EXPECT_NOTHING_RAISED() EXPECT_EQ(::vorn::tests::takeErrors(), std::vector<std::string>{})

// Fixture: every test ends without a pending error, without an armed allocation failure and with the honest hooks of
// user objects.
class RuntimeTest : public ::testing::Test {
 protected:
  void TearDown() override;
};

}  // namespace vorn::tests
