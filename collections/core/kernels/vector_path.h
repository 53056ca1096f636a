// Which instructions the raw-buffer kernels use.
//
// The widest path that the processor runs is chosen once, when the library is loaded; tests and benchmarks may set
// another. A change reaches the calls that begin after it, on every thread, and no result depends on the path.
#pragma once

#include <cstdint>

namespace vorn::collections {

enum class VectorPath : std::uint8_t {
  Plain,  // C++ without intrinsics, the only path off x86-64
  Sse2,   // part of every x86-64 processor
  Avx2,
};

inline constexpr VectorPath kVectorPaths[] = {VectorPath::Plain, VectorPath::Sse2, VectorPath::Avx2};

const char* vectorPathName(VectorPath path);

// Whether this build and this processor have the path.
bool isVectorPathAvailable(VectorPath path);

// The path in use.
VectorPath vectorPath();

// Puts a path to use for the whole process. False, without effect, for one that is not available.
bool setVectorPath(VectorPath path);

}  // namespace vorn::collections
