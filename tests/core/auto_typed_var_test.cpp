#include "collections/core/auto_typed_var.h"

#include <gtest/gtest.h>

namespace vorn::tests {
namespace {

TEST(AutoTypedVar, IsTheCompilersMarker) { EXPECT_EQ(compiler::AUTO_TYPED_VAR, "### auto typed var ###"); }

}  // namespace
}  // namespace vorn::tests
