// The choice among vector paths.
#include "collections/core/kernels/vector_path.h"

#include "collections/core/kernels/kernel_table.h"
#include "tests/kernels/kernel_test_support.h"

namespace vorn::tests {
namespace {

using collections::isVectorPathAvailable;
using collections::setVectorPath;
using collections::vectorPath;
using collections::kernels::kernelsFor;

TEST(VectorPaths, TheWidestAvailableIsChosen) {
  // Tests that set another put this one back.
  const VectorPath chosen = vectorPath();
  EXPECT_TRUE(isVectorPathAvailable(VectorPath::Plain));
  for (const VectorPath path : collections::kVectorPaths) {
    if (path > chosen) {
      EXPECT_FALSE(isVectorPathAvailable(path)) << vectorPathName(path);
    }
  }
  EXPECT_TRUE(isVectorPathAvailable(chosen));
#if defined(__x86_64__)
  EXPECT_TRUE(isVectorPathAvailable(VectorPath::Sse2));
#elif defined(__AARCH64EL__)
  EXPECT_EQ(chosen, VectorPath::Neon);
#endif
}

TEST(VectorPaths, HaveNames) {
  EXPECT_STREQ(vectorPathName(VectorPath::Plain), "plain");
  EXPECT_STREQ(vectorPathName(VectorPath::Sse2), "SSE2");
  EXPECT_STREQ(vectorPathName(VectorPath::Avx2), "AVX2");
  EXPECT_STREQ(vectorPathName(VectorPath::Avx512), "AVX512");
  EXPECT_STREQ(vectorPathName(VectorPath::Neon), "NEON");
}

TEST(VectorPaths, AScopePutsTheFormerOneBack) {
  const VectorPath former = vectorPath();
  {
    const collections::VectorPathScope scope(VectorPath::Plain);
    EXPECT_EQ(vectorPath(), VectorPath::Plain);
  }
  EXPECT_EQ(vectorPath(), former);
}

TEST(VectorPaths, OneThatIsNotAvailableIsNotSet) {
  const auto unknown = static_cast<VectorPath>(99);
  EXPECT_FALSE(isVectorPathAvailable(unknown));
  const VectorPath former = vectorPath();
  EXPECT_FALSE(setVectorPath(unknown));
  EXPECT_EQ(vectorPath(), former);
}

class KernelTables : public OnEveryPath {};
VORN_ON_EVERY_PATH(KernelTables);

TEST_P(KernelTables, RangesGoToTheWidestVectorsThatFit) {
  EXPECT_EQ(vectorPath(), GetParam());
  EXPECT_EQ(kernelsFor(0).path, VectorPath::Plain);
  EXPECT_EQ(kernelsFor(15).path, VectorPath::Plain);
  EXPECT_EQ(kernelsFor(1000).path, GetParam());
  const bool usesWideVectors = GetParam() == VectorPath::Avx2 || GetParam() == VectorPath::Avx512;
  const VectorPath narrow = usesWideVectors ? VectorPath::Sse2 : GetParam();
  EXPECT_EQ(kernelsFor(16).path, narrow);
  EXPECT_EQ(kernelsFor(31).path, narrow);
  EXPECT_EQ(kernelsFor(32).path, GetParam());
}

TEST_P(KernelTables, HoldAKernelForEachKindLaneAndWidth) {
  const collections::kernels::KernelTable& table = kernelsFor(1000);
  for (std::uint64_t kind = 0; kind < collections::kPrimitiveKinds; ++kind) {
    const auto value = static_cast<PrimitiveKind>(kind);
    EXPECT_EQ(table.sums[kind] == nullptr, value == PrimitiveKind::None || isFloating(value)) << kind;
  }
  for (const auto& search : table.searches) {
    EXPECT_NE(search.findFirst, nullptr);
    EXPECT_NE(search.findLast, nullptr);
    EXPECT_NE(search.count, nullptr);
  }
  for (const auto reversal : table.reversals) EXPECT_NE(reversal, nullptr);
}

TEST_P(KernelTables, SortByKernelsOfTheirOwnWhereThePathHasThem) {
  using Kernel = decltype(collections::kernels::SortKernels::doubleWords);
  Kernel expected = collections::sortPlain;
#if defined(__x86_64__)
  if (GetParam() == VectorPath::Avx2) expected = collections::sortAvx2;
  if (GetParam() == VectorPath::Avx512) expected = collections::sortAvx512;
#endif
  EXPECT_EQ(kernelsFor(1000).sorts.doubleWords, expected);
}

}  // namespace
}  // namespace vorn::tests
