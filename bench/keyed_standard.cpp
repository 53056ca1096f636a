#include <map>
#include <unordered_map>

#include "bench/keyed_containers.h"
#include "bench/keyed_workloads.h"

namespace vorn::bench::standard {

namespace {

template <class Key, class Value>
using HashMap = std::unordered_map<Key, Value>;
template <class Key, class Value>
using TreeMap = std::map<Key, Value>;

struct Library : Containers<HashMap, TreeMap> {
  static constexpr const char* kName = "C++";
};

}  // namespace

void addKeyed(Benchmarks& benchmarks) { keyed::addTo<Library>(benchmarks); }

}  // namespace vorn::bench::standard
