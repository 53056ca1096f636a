#include <absl/container/btree_map.h>
#include <absl/container/flat_hash_map.h>

#include "bench/keyed_containers.h"
#include "bench/keyed_workloads.h"

namespace vorn::bench::abseil {

namespace {

template <class Key, class Value>
using HashMap = absl::flat_hash_map<Key, Value>;
template <class Key, class Value>
using TreeMap = absl::btree_map<Key, Value>;

struct Library : Containers<HashMap, TreeMap> {
  static constexpr const char* kName = "Abseil";
  static constexpr std::int64_t kLargestGrowth = 10 * kLarge;
};

}  // namespace

void addKeyed(Benchmarks& benchmarks) { keyed::addTo<Library>(benchmarks); }

}  // namespace vorn::bench::abseil
