#include "runtime/library_versions.h"

#include <vorn/collections/version.h>

#include <cstdio>
#include <cstring>

namespace vorn::runtime {

const char* runtimeVersion() { return VORN_COLLECTIONS_VERSION; }

bool collectionsAreOfThisVersion() {
  const char* const loaded = vorn_collections_version();
  if (std::strcmp(loaded, runtimeVersion()) == 0) return true;
  std::fprintf(
      stderr,
      "vorn: libvorn_runtime is version %s but libvorn_collections is version %s; install both of one version\n",
      runtimeVersion(), loaded);
  return false;
}

}  // namespace vorn::runtime
