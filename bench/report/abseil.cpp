#include <absl/container/btree_map.h>
#include <absl/container/flat_hash_map.h>
#include <absl/container/flat_hash_set.h>
#include <absl/strings/str_join.h>

#include "bench/report/map_rows.h"

namespace vorn::bench::report {

namespace {

template <class Element>
Ready joining(std::int64_t n) {
  return sharing(
      n, std::make_pair(vectorOf<Element>(n), std::string()),
      [](auto& state) { state.second = absl::StrJoin(state.first, ", "); },
      [](const auto& state) {
        Digest digest;
        digest.add(std::string_view(state.second));
        return digest.value();
      });
}

}  // namespace

void addAbseil(Rows& rows) {
  addHashed<absl::flat_hash_map<Int, std::int32_t>, absl::flat_hash_set<Int>>(rows, kAbseil);
  addHashed<absl::flat_hash_map<std::string, std::int32_t>, absl::flat_hash_set<std::string>>(rows, kAbseil);
  addForNumbers<absl::flat_hash_map<Int, std::int32_t>, absl::btree_map<Int, std::int32_t>>(rows, kAbseil);
  rows.add(kAbseil, "join", "Int", joining<Int>);
  rows.add(kAbseil, "join", "String", joining<std::string>);
}

}  // namespace vorn::bench::report
