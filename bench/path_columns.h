// The paths of the kernels as columns of a table: the one that this processor gets is ours, the others bear their
// names.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "bench/limits.h"
#include "collections/core/kernels/vector_path.h"

namespace vorn::bench {

// Asked before any path is forced.
inline const char* columnOf(collections::VectorPath path) {
  return path == collections::vectorPath() ? kOwn : collections::vectorPathName(path);
}

// Ours, the other paths, and then other libraries.
inline std::vector<std::string> pathColumns(const std::vector<std::string>& others) {
  std::vector<std::string> columns = {kOwn};
  for (const collections::VectorPath path : collections::kVectorPaths) {
    if (isVectorPathAvailable(path) && path != collections::vectorPath()) columns.emplace_back(columnOf(path));
  }
  columns.insert(columns.end(), others.begin(), others.end());
  return columns;
}

inline void printPathInUse() {
  std::printf("\"%s\" is the path %s.\n", kOwn, vectorPathName(collections::vectorPath()));
}

}  // namespace vorn::bench
