// What one native does with a whole list: searches, sums, sorts, slices and texts.
#include <cstring>
#include <deque>
#include <vector>

#include "bench/report/native_rows.h"

namespace vorn::bench::report {

namespace {

// One native over a filled list, whose number is the result.
template <class Element, class Work>
Ready asking(std::int64_t n, std::int64_t operations, Work work) {
  const Shared list = share(listOf<Element>(n));
  const auto result = std::make_shared<SumOf<Element>>();
  return {operations, [=] { *result = work(list->get()); }, [=] { return digestOfNumber(*result); }};
}

MakeReady searching(void* (*makeList)(std::int64_t), std::function<void*(std::int64_t)> makeValue, bool present) {
  return [=](std::int64_t n) -> Ready {
    const std::int64_t at = n * 3 / 4;
    const Shared list = share(makeList(n));
    const Shared value = share(makeValue(at));
    const auto result = std::make_shared<std::int64_t>();
    return {present ? at + 1 : n, [=] { *result = vorn_collections_ArrayList_indexOf(*list, *value, 0); },
            [=] { return digestOfNumber(*result); }};
  };
}

Ready counting(std::int64_t n) {
  const Shared value = share(vorn_box_int(numberAt(n / 2)));
  return asking<Int>(n, n, [=](void* list) { return std::int64_t{vorn_collections_ArrayList_count(list, *value)}; });
}

template <class Element>
Ready summing(std::int64_t n) {
  return asking<Element>(n, n, [](void* list) -> SumOf<Element> {
    if constexpr (std::is_same_v<Element, Double>) {
      return vorn_collections_ArrayList_sumF64Fast(list);
    } else {
      return vorn_collections_ArrayList_sumI64Fast(list);
    }
  });
}

template <class Element>
Ready reversing(std::int64_t n) {
  const Shared list = share(listOf<Element>(n));
  return {n, [=] { vorn_collections_ArrayList_reverse(*list); }, [=] { return digestOfList<Element>(*list); }};
}

// ---- New lists ------------------------------------------------------------------------------------------------------

template <class Make>
Ready making(std::int64_t n, std::int64_t operations, Make make) {
  const Shared list = share(listOf<Int>(n));
  const Shared made = share();
  return {operations, [=] { *made = make(list->get()); }, [=] { return digestOfList<Int>(*made); }};
}

Ready slicing(std::int64_t n) {
  const Shared given = share(vorn_box_boolean(true));
  const std::int64_t start = n / 4;
  const std::int64_t stop = start + n / 2;
  return making(n, n / 2,
                [=](void* list) { return vorn_collections_ArrayList_slice(list, start, stop, 1, *given, *given); });
}

Ready slicingStrided(std::int64_t n) {
  return making(n, (n + 1) / 2,
                [](void* list) { return vorn_collections_ArrayList_slice(list, 0, 0, 2, nullptr, nullptr); });
}

Ready concatenating(std::int64_t n) {
  const Shared other = share(listOf<Int>(n));
  return making(n, 2 * n, [=](void* list) { return vorn_collections_ArrayList_concat(list, *other); });
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

Ready displaying(std::int64_t n) {
  const Shared list = share(listOf<Int>(n));
  const Shared text = share();
  return {n, [=] { *text = vorn_collections_ArrayList_toString(*list); },
          [=] { return digestOfDigits(vorn_string_text(*text)); }};
}

MakeReady joining(void* (*makeList)(std::int64_t)) {
  return [=](std::int64_t n) -> Ready {
    const Shared list = share(makeList(n));
    const Shared text = share();
    return {n, [=] { *text = vorn_collections_ArrayList_join(*list, ", "); },
            [=] {
              Digest digest;
              digest.add(std::string_view(vorn_string_text(*text)));
              return digest.value();
            }};
  };
}

// ---- Sorts ----------------------------------------------------------------------------------------------------------

// A deque never moves its elements, which registered slots require.
using Lists = std::shared_ptr<std::deque<Handle>>;

Ready sorting(std::int64_t n, const Lists& lists, std::function<void()> restore,
              std::function<std::uint32_t(void*)> digest) {
  return {n * static_cast<std::int64_t>(lists->size()),
          [=] {
            for (const Handle& list : *lists) vorn_collections_ArrayList_sort(list);
          },
          [=] { return digest(lists->back()); }, std::move(restore)};
}

template <class Element>
MakeReady sortingNumbers(Pattern pattern) {
  return [=](std::int64_t n) {
    const auto inputs = std::make_shared<std::vector<Element>>(sortInputs<Element>(pattern, n));
    const auto lists = std::make_shared<std::deque<Handle>>(sortBatch(n));
    for (Handle& list : *lists) list = listOf<Element>(n);
    const auto restore = [=] {
      const Element* input = inputs->data();
      for (const Handle& list : *lists) {
        std::memcpy(elementsOf<Element>(list), input, static_cast<std::size_t>(n) * sizeof(Element));
        input += n;
      }
    };
    return sorting(n, lists, restore, digestOfList<Element>);
  };
}

std::uint32_t digestOfTexts(void* list) {
  Digest digest;
  const std::int64_t size = vorn_collections_ArrayList_size(list);
  for (std::int64_t i = 0; i < size; ++i) {
    digest.add(std::string_view(vorn_string_text(vorn_collections_ArrayList_operator_index(list, i))));
  }
  return digest.value();
}

Ready sortingTexts(std::int64_t n) {
  const Shared inputs = share(vorn_object_new("ArrayList<String>"));
  Handle text;
  for (const std::string& input : sortInputs<std::string>(Pattern::Random, n)) {
    text = newText(input);
    vorn_collections_ArrayList_add(*inputs, text);
  }
  const auto lists = std::make_shared<std::deque<Handle>>(sortBatch(n));
  const Shared given = share(vorn_box_boolean(true));
  const auto restore = [=] {
    std::int64_t begin = 0;
    for (Handle& list : *lists) {
      list = vorn_collections_ArrayList_slice(*inputs, begin, begin + n, 1, *given, *given);
      begin += n;
    }
  };
  return sorting(n, lists, restore, digestOfTexts);
}

template <class Element>
void addKind(Rows& rows) {
  rows.add(kNatives, "sum", KindOf<Element>::kName, summing<Element>);
  rows.add(kNatives, "sort", KindOf<Element>::kName, sortingNumbers<Element>(Pattern::Random));
}

}  // namespace

void addNativeBulk(Rows& rows) {
  addKind<Int>(rows);
  addKind<Long>(rows);
  addKind<Double>(rows);
  addKind<Byte>(rows);

  const auto intAt = [](std::int64_t at) { return vorn_box_int(numberAt(at)); };
  const auto textOf = [](std::int64_t at) { return newText(textAt(at)); };
  rows.add(kNatives, "search-hit", "Int", searching(listOf<Int>, intAt, true));
  rows.add(kNatives, "search-hit", "String", searching(listOfTexts, textOf, true));
  rows.add(kNatives, "search-miss", "Int",
           searching(
               listOf<Int>, [](std::int64_t) { return vorn_box_int(kAbsentNumber); }, false));
  rows.add(kNatives, "search-miss", "Double",
           searching(
               listOf<Double>, [](std::int64_t) { return vorn_box_double(kAbsentNumber); }, false));
  rows.add(kNatives, "search-miss", "String",
           searching(
               listOfTexts, [](std::int64_t) { return newText(kAbsentText); }, false));
  rows.add(kNatives, "count", "Int", counting);
  rows.add(kNatives, "reverse", "Int", reversing<Int>);
  rows.add(kNatives, "reverse", "Long", reversing<Long>);
  rows.add(kNatives, "slice", "Int", slicing);
  rows.add(kNatives, "slice-strided", "Int", slicingStrided);
  rows.add(kNatives, "concat", "Int", concatenating);
  rows.add(kNatives, "display", "Int", displaying);
  rows.add(kNatives, "join", "Int", joining(listOf<Int>));
  rows.add(kNatives, "join", "String", joining(listOfTexts));

  rows.add(kNatives, "sort", "String", sortingTexts);
  rows.add(kNatives, "sort-sorted", "Int", sortingNumbers<Int>(Pattern::Sorted));
  rows.add(kNatives, "sort-reversed", "Int", sortingNumbers<Int>(Pattern::Reversed));
  rows.add(kNatives, "sort-nearly", "Int", sortingNumbers<Int>(Pattern::Nearly));
  rows.add(kNatives, "sort-equal", "Int", sortingNumbers<Int>(Pattern::Equal));
  rows.add(kNatives, "sort-adversarial", "Int", sortingNumbers<Int>(Pattern::Adversarial));
}

}  // namespace vorn::bench::report
