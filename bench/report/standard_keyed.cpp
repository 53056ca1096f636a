#include <map>
#include <unordered_map>
#include <unordered_set>

#include "bench/report/map_rows.h"

namespace vorn::bench::report {

void addStandardKeyed(Rows& rows) {
  addHashed<std::unordered_map<Int, std::int32_t>, std::unordered_set<Int>>(rows, kStandard);
  addHashed<std::unordered_map<std::string, std::int32_t>, std::unordered_set<std::string>>(rows, kStandard);
  addForNumbers<std::unordered_map<Int, std::int32_t>, std::map<Int, std::int32_t>>(rows, kStandard);
}

}  // namespace vorn::bench::report
