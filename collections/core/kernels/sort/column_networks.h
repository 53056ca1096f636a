// Sorting networks over the rows of a block: each column, that is each lane, ends up in order. Row may be a vector
// register or a single key; Ops brings min and max.
#pragma once

namespace vorn::collections {

template <class Ops, class Row>
[[gnu::always_inline]] inline void exchangeRows(Row& a, Row& b) {
  const Row low = Ops::min(a, b);
  b = Ops::max(a, b);
  a = low;
}

// 1, 5, 19 and 60 comparators: the fewest known for these lengths. The last is Green's network.
template <class Ops, int kRows, class Row>
[[gnu::always_inline]] inline void sortColumns(Row* v) {
  static_assert(kRows == 1 || kRows == 2 || kRows == 4 || kRows == 8 || kRows == 16);
  if constexpr (kRows == 2) {
    exchangeRows<Ops>(v[0], v[1]);
  } else if constexpr (kRows == 4) {
    exchangeRows<Ops>(v[0], v[2]);
    exchangeRows<Ops>(v[1], v[3]);
    exchangeRows<Ops>(v[0], v[1]);
    exchangeRows<Ops>(v[2], v[3]);
    exchangeRows<Ops>(v[1], v[2]);
  } else if constexpr (kRows == 8) {
    exchangeRows<Ops>(v[0], v[2]);
    exchangeRows<Ops>(v[1], v[3]);
    exchangeRows<Ops>(v[4], v[6]);
    exchangeRows<Ops>(v[5], v[7]);
    exchangeRows<Ops>(v[0], v[4]);
    exchangeRows<Ops>(v[1], v[5]);
    exchangeRows<Ops>(v[2], v[6]);
    exchangeRows<Ops>(v[3], v[7]);
    exchangeRows<Ops>(v[0], v[1]);
    exchangeRows<Ops>(v[2], v[3]);
    exchangeRows<Ops>(v[4], v[5]);
    exchangeRows<Ops>(v[6], v[7]);
    exchangeRows<Ops>(v[2], v[4]);
    exchangeRows<Ops>(v[3], v[5]);
    exchangeRows<Ops>(v[1], v[4]);
    exchangeRows<Ops>(v[3], v[6]);
    exchangeRows<Ops>(v[1], v[2]);
    exchangeRows<Ops>(v[3], v[4]);
    exchangeRows<Ops>(v[5], v[6]);
  } else if constexpr (kRows == 16) {
    exchangeRows<Ops>(v[0], v[1]);
    exchangeRows<Ops>(v[2], v[3]);
    exchangeRows<Ops>(v[4], v[5]);
    exchangeRows<Ops>(v[6], v[7]);
    exchangeRows<Ops>(v[8], v[9]);
    exchangeRows<Ops>(v[10], v[11]);
    exchangeRows<Ops>(v[12], v[13]);
    exchangeRows<Ops>(v[14], v[15]);
    exchangeRows<Ops>(v[0], v[2]);
    exchangeRows<Ops>(v[1], v[3]);
    exchangeRows<Ops>(v[4], v[6]);
    exchangeRows<Ops>(v[5], v[7]);
    exchangeRows<Ops>(v[8], v[10]);
    exchangeRows<Ops>(v[9], v[11]);
    exchangeRows<Ops>(v[12], v[14]);
    exchangeRows<Ops>(v[13], v[15]);
    exchangeRows<Ops>(v[0], v[4]);
    exchangeRows<Ops>(v[1], v[5]);
    exchangeRows<Ops>(v[2], v[6]);
    exchangeRows<Ops>(v[3], v[7]);
    exchangeRows<Ops>(v[8], v[12]);
    exchangeRows<Ops>(v[9], v[13]);
    exchangeRows<Ops>(v[10], v[14]);
    exchangeRows<Ops>(v[11], v[15]);
    exchangeRows<Ops>(v[0], v[8]);
    exchangeRows<Ops>(v[1], v[9]);
    exchangeRows<Ops>(v[2], v[10]);
    exchangeRows<Ops>(v[3], v[11]);
    exchangeRows<Ops>(v[4], v[12]);
    exchangeRows<Ops>(v[5], v[13]);
    exchangeRows<Ops>(v[6], v[14]);
    exchangeRows<Ops>(v[7], v[15]);
    exchangeRows<Ops>(v[5], v[10]);
    exchangeRows<Ops>(v[6], v[9]);
    exchangeRows<Ops>(v[3], v[12]);
    exchangeRows<Ops>(v[13], v[14]);
    exchangeRows<Ops>(v[4], v[8]);
    exchangeRows<Ops>(v[7], v[11]);
    exchangeRows<Ops>(v[1], v[2]);
    exchangeRows<Ops>(v[1], v[4]);
    exchangeRows<Ops>(v[7], v[13]);
    exchangeRows<Ops>(v[2], v[8]);
    exchangeRows<Ops>(v[11], v[14]);
    exchangeRows<Ops>(v[2], v[4]);
    exchangeRows<Ops>(v[5], v[6]);
    exchangeRows<Ops>(v[9], v[10]);
    exchangeRows<Ops>(v[11], v[13]);
    exchangeRows<Ops>(v[3], v[8]);
    exchangeRows<Ops>(v[7], v[12]);
    exchangeRows<Ops>(v[6], v[8]);
    exchangeRows<Ops>(v[10], v[12]);
    exchangeRows<Ops>(v[3], v[5]);
    exchangeRows<Ops>(v[7], v[9]);
    exchangeRows<Ops>(v[3], v[4]);
    exchangeRows<Ops>(v[5], v[6]);
    exchangeRows<Ops>(v[7], v[8]);
    exchangeRows<Ops>(v[9], v[10]);
    exchangeRows<Ops>(v[11], v[12]);
    exchangeRows<Ops>(v[6], v[7]);
    exchangeRows<Ops>(v[8], v[9]);
  }
}

}  // namespace vorn::collections
