// Which instructions the raw-buffer kernels and the sorts use.
//
// The widest path that the processor runs is chosen once, when the library is loaded; no result depends on it, except
// for the order in which a sort leaves NaNs of different bits. A test or benchmark that wants another one forces it for
// a scope with VectorPathScope, or for good with setVectorPath. A change reaches the calls that begin after it, on
// every thread.
#pragma once

#include <cstdint>

namespace vorn::collections {

// A path has kernels of its own or those of the path before it.
enum class VectorPath : std::uint8_t {
  Plain,   // C++ without intrinsics, the only path off x86-64 and aarch64
  Sse2,    // part of every x86-64 processor; sorts as Plain does
  Avx2,    // with the bit instructions that came with it: BMI, BMI2, POPCNT
  Avx512,  // F, BW, DQ and VL, for sorting; sums, searches and reverses as Avx2 does
  Neon,    // part of every aarch64 processor; sorts as Plain does
};

inline constexpr VectorPath kVectorPaths[] = {VectorPath::Plain, VectorPath::Sse2, VectorPath::Avx2, VectorPath::Avx512,
                                              VectorPath::Neon};

const char* vectorPathName(VectorPath path);

// Whether this build and this processor have the path.
bool isVectorPathAvailable(VectorPath path);

// The path in use.
VectorPath vectorPath();

// Puts a path to use for the whole process. False, without effect, for one that is not available.
bool setVectorPath(VectorPath path);

// Puts a path to use until the end of a scope, then the former one again. One that is not available has no effect.
class VectorPathScope {
 public:
  explicit VectorPathScope(VectorPath path) : former_(vectorPath()) { setVectorPath(path); }
  ~VectorPathScope() { setVectorPath(former_); }
  VectorPathScope(const VectorPathScope&) = delete;
  VectorPathScope& operator=(const VectorPathScope&) = delete;

 private:
  VectorPath former_;
};

}  // namespace vorn::collections
