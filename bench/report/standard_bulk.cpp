// The algorithms of the C++ library over whole vectors, and vqsort beside its sorts.
#include <algorithm>
#include <charconv>
#include <numeric>

#include "bench/report/peer_rows.h"
#include "bench/vqsort.h"

namespace vorn::bench::report {

namespace {

template <class Element>
struct Asked {
  std::vector<Element> list;
  Element value;
  std::int64_t result;
};

template <class Element>
Ready searching(std::int64_t n, Element value, std::int64_t operations) {
  return sharing(
      operations, Asked<Element>{vectorOf<Element>(n), std::move(value), 0},
      [](Asked<Element>& state) {
        const auto found = std::find(state.list.begin(), state.list.end(), state.value);
        state.result = found != state.list.end() ? found - state.list.begin() : -1;
      },
      [](const Asked<Element>& state) { return digestOfNumber(state.result); });
}

Ready counting(std::int64_t n) {
  return sharing(
      n, Asked<Int>{vectorOf<Int>(n), numberAt(n / 2), 0},
      [](Asked<Int>& state) { state.result = std::count(state.list.begin(), state.list.end(), state.value); },
      [](const Asked<Int>& state) { return digestOfNumber(state.result); });
}

template <class Element>
Ready summing(std::int64_t n) {
  return sharing(
      n, std::make_pair(vectorOf<Element>(n), PlainSum<Element>()),
      [](auto& state) { state.second = std::accumulate(state.first.begin(), state.first.end(), PlainSum<Element>()); },
      [](const auto& state) { return digestOfNumber(state.second); });
}

template <class Element>
Ready reversing(std::int64_t n) {
  return sharing(
      n, vectorOf<Element>(n),
      [](std::vector<Element>& list) {
        std::reverse(list.begin(), list.end());
        keep(list.data());
      },
      digestOf<std::vector<Element>>);
}

// ---- New vectors ----------------------------------------------------------------------------------------------------

template <class Make>
Ready making(std::int64_t n, std::int64_t operations, Make make) {
  return sharing(
      operations, std::make_pair(vectorOf<Int>(n), std::vector<Int>()),
      [=](auto& state) { state.second = make(state.first); }, [](const auto& state) { return digestOf(state.second); });
}

Ready slicing(std::int64_t n) {
  return making(n, n / 2, [=](const std::vector<Int>& list) {
    const auto start = list.begin() + n / 4;
    return std::vector<Int>(start, start + n / 2);
  });
}

Ready slicingStrided(std::int64_t n) {
  return making(n, (n + 1) / 2, [](const std::vector<Int>& list) {
    std::vector<Int> made((list.size() + 1) / 2);
    for (std::size_t i = 0; i < made.size(); ++i) made[i] = list[2 * i];
    return made;
  });
}

Ready concatenating(std::int64_t n) {
  return making(n, 2 * n, [](const std::vector<Int>& list) {
    std::vector<Int> made;
    made.reserve(2 * list.size());
    made.insert(made.end(), list.begin(), list.end());
    made.insert(made.end(), list.begin(), list.end());
    return made;
  });
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

void append(std::string& text, Int number) {
  char digits[16];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}
void append(std::string& text, const std::string& element) { text += element; }

template <class Element>
std::string joined(const std::vector<Element>& list) {
  std::string text;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (i > 0) text += ", ";
    append(text, list[i]);
  }
  return text;
}

template <class Element, class Make, class Checksum>
Ready makingText(std::int64_t n, Make make, Checksum checksum) {
  return sharing(
      n, std::make_pair(vectorOf<Element>(n), std::string()), [=](auto& state) { state.second = make(state.first); },
      [=](const auto& state) { return checksum(state.second); });
}

std::uint32_t digestOfText(const std::string& text) {
  Digest digest;
  digest.add(std::string_view(text));
  return digest.value();
}

Ready displaying(std::int64_t n) {
  return makingText<Int>(
      n, [](const std::vector<Int>& list) { return std::string("[").append(joined(list)).append("]"); },
      [](const std::string& text) { return digestOfDigits(text); });
}

template <class Element>
Ready joining(std::int64_t n) {
  return makingText<Element>(n, joined<Element>, digestOfText);
}

Ready textOfChars(std::int64_t n) {
  std::vector<char32_t> characters;
  for (std::int64_t i = 0; i < n; ++i) characters.push_back(charAt(i));
  return sharing(
      n, std::make_pair(std::move(characters), std::string()),
      [](auto& state) {
        std::string text;
        for (const char32_t character : state.first) {
          if (character < 0x80) {
            text += static_cast<char>(character);
          } else {  // none beyond U+07FF comes
            text += {static_cast<char>(0xC0 | (character >> 6)), static_cast<char>(0x80 | (character & 0x3F))};
          }
        }
        state.second = std::move(text);
      },
      [](const auto& state) { return digestOfText(state.second); });
}

// ---- Sorts ----------------------------------------------------------------------------------------------------------

template <class Element>
void sortByStandard(Element* data, std::size_t length) {
  std::sort(data, data + length);
}

template <class Element>
void addSort(Rows& rows, const char* workload, Pattern pattern) {
  rows.add(kStandard, workload, kNameOf<Element>, sortingMemory<Element, sortByStandard<Element>>(pattern));
  if constexpr (std::is_arithmetic_v<Element> && kHasVqsort<Element>) {
    rows.add(kVqsort, workload, kNameOf<Element>, sortingMemory<Element, sortByVqsort<Element>>(pattern));
  }
}

template <class Element>
void addKind(Rows& rows) {
  rows.add(kStandard, "sum", kNameOf<Element>, summing<Element>);
  addSort<Element>(rows, "sort", Pattern::Random);
}

}  // namespace

void addStandardBulk(Rows& rows) {
  addKind<Int>(rows);
  addKind<Long>(rows);
  addKind<Double>(rows);
  addKind<Byte>(rows);
  addSort<std::string>(rows, "sort", Pattern::Random);
  addSort<Int>(rows, "sort-sorted", Pattern::Sorted);
  addSort<Int>(rows, "sort-reversed", Pattern::Reversed);
  addSort<Int>(rows, "sort-nearly", Pattern::Nearly);
  addSort<Int>(rows, "sort-equal", Pattern::Equal);
  addSort<Int>(rows, "sort-adversarial", Pattern::Adversarial);

  rows.add(kStandard, "search-hit", "Int",
           [](std::int64_t n) { return searching<Int>(n, numberAt(n * 3 / 4), n * 3 / 4 + 1); });
  rows.add(kStandard, "search-hit", "String",
           [](std::int64_t n) { return searching<std::string>(n, textAt(n * 3 / 4), n * 3 / 4 + 1); });
  rows.add(kStandard, "search-miss", "Int", [](std::int64_t n) { return searching<Int>(n, kAbsentNumber, n); });
  rows.add(kStandard, "search-miss", "Double", [](std::int64_t n) { return searching<Double>(n, kAbsentNumber, n); });
  rows.add(kStandard, "search-miss", "String",
           [](std::int64_t n) { return searching<std::string>(n, kAbsentText, n); });
  rows.add(kStandard, "count", "Int", counting);
  rows.add(kStandard, "reverse", "Int", reversing<Int>);
  rows.add(kStandard, "reverse", "Long", reversing<Long>);
  rows.add(kStandard, "slice", "Int", slicing);
  rows.add(kStandard, "slice-strided", "Int", slicingStrided);
  rows.add(kStandard, "concat", "Int", concatenating);
  rows.add(kStandard, "display", "Int", displaying);
  rows.add(kStandard, "join", "Int", joining<Int>);
  rows.add(kStandard, "join", "String", joining<std::string>);
  rows.add(kStandard, "text-of-chars", "Char", textOfChars);
}

}  // namespace vorn::bench::report
