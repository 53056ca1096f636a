#include "bench/keyed_operations.h"

#include <unistd.h>

#include <map>
#include <utility>

namespace vorn::bench {

const std::vector<std::uint32_t>& shuffledOrder(std::int64_t elements, std::uint64_t seed) {
  static std::map<std::pair<std::int64_t, std::uint64_t>, std::vector<std::uint32_t>> orders;
  std::vector<std::uint32_t>& order = orders[{elements, seed}];
  if (!order.empty()) return order;
  order.resize(static_cast<std::size_t>(elements));
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<std::uint32_t>(i);
  for (std::size_t i = order.size(); i > 1; --i) {
    seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
    std::swap(order[i - 1], order[(seed >> 33) % i]);
  }
  return order;
}

Int intKey(std::uint32_t number, bool absent) {
  return absent ? -1 - static_cast<Int>(number) : static_cast<Int>(number);
}

Text textKey(std::uint32_t number, bool absent) {
  std::string digits = std::to_string(std::uint64_t{number} * 2654435761U % 1000000007U);
  digits.resize(7 + number % 5, 'x');
  std::string rest = std::to_string(number);
  rest += digits;
  Text text(1, absent ? '?' : 'k');
  text.append(digits, 0, 3);
  text.append(rest, 0, digits.size() - 3);
  return text;
}

std::int64_t largestGrowth() {
  constexpr std::int64_t kNeeded = std::int64_t{6} << 30;
  static const std::int64_t largest =
      std::int64_t{sysconf(_SC_AVPHYS_PAGES)} * sysconf(_SC_PAGESIZE) >= kNeeded ? 10'000'000 : 1'000'000;
  return largest;
}

}  // namespace vorn::bench
