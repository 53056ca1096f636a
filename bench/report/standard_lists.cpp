// std::vector, std::list, and a mutex where threads share one: element by element.
#include <list>
#include <mutex>
#include <thread>

#include "bench/report/peer_rows.h"

namespace vorn::bench::report {

namespace {

template <class Element>
Ready appending(std::int64_t n) {
  return sharing(
      n, std::vector<Element>(),
      [=](std::vector<Element>& result) {
        std::vector<Element> list;
        for (std::int64_t i = 0; i < n; ++i) {
          list.push_back(indexAs<Element>(i));
          keep(list.data());
        }
        result = std::move(list);
      },
      digestOf<std::vector<Element>>);
}

template <class Element>
Ready reading(std::int64_t n) {
  return sharing(
      n, std::make_pair(vectorOf<Element>(n), PlainSum<Element>()),
      [](auto& state) {
        const std::vector<Element>& list = state.first;
        PlainSum<Element> sum = 0;
        for (std::size_t i = 0; i < list.size(); ++i) sum += list[i];
        state.second = sum;
      },
      [](const auto& state) { return digestOfNumber(state.second); });
}

template <class Element>
Ready writing(std::int64_t n) {
  return sharing(
      n, vectorOf<Element>(n),
      [](std::vector<Element>& list) {
        for (std::size_t i = 0; i < list.size(); ++i) list[i] = static_cast<Element>(i);
        keep(list.data());
      },
      digestOf<std::vector<Element>>);
}

struct Ordered {
  std::vector<Int> list;
  std::vector<std::int32_t> order;
  std::int64_t sum;
};

Ready readingAtRandom(std::int64_t n) {
  return sharing(
      n, Ordered{vectorOf<Int>(n), shuffledOrder(n, kGetOrder), 0},
      [](Ordered& state) {
        std::int64_t sum = 0;
        for (const std::int32_t at : state.order) sum += state.list[static_cast<std::size_t>(at)];
        state.sum = sum;
      },
      [](const Ordered& state) { return digestOfNumber(state.sum); });
}

template <class Work>
Ready onNewVector(std::int64_t n, Work work) {
  return sharing(
      n, std::vector<Int>(),
      [=](std::vector<Int>& result) {
        std::vector<Int> list;
        work(list);
        result = std::move(list);
      },
      [](const std::vector<Int>& list) { return list.empty() ? digestOfNumber(std::int64_t{0}) : digestOf(list); });
}

Ready removingLast(std::int64_t n) {
  return onNewVector(n, [=](std::vector<Int>& list) {
    for (std::int64_t i = 0; i < n; ++i) {
      list.push_back(static_cast<Int>(i));
      keep(list.data());
    }
    for (std::int64_t i = 0; i < n; ++i) {
      list.pop_back();
      keep(&list);
    }
  });
}

Ready insertingFront(std::int64_t n) {
  return onNewVector(n, [=](std::vector<Int>& list) {
    for (std::int64_t i = 0; i < n; ++i) list.insert(list.begin(), static_cast<Int>(i));
  });
}

Ready removingFront(std::int64_t n) {
  return onNewVector(n, [=](std::vector<Int>& list) {
    for (std::int64_t i = 0; i < n; ++i) list.push_back(static_cast<Int>(i));
    for (std::int64_t i = 0; i < n; ++i) list.erase(list.begin());
  });
}

// ---- Objects --------------------------------------------------------------------------------------------------------

template <class List>
struct Objects {
  std::vector<std::unique_ptr<Item>> owner;
  List list;
  std::int64_t sum = 0;
};

template <class List>
Objects<List> objectsOf(std::int64_t n) {
  Objects<List> objects{itemsOf(n), {}};
  for (const auto& item : objects.owner) objects.list.push_back(item.get());
  return objects;
}

template <class List>
Ready appendingObjects(std::int64_t n) {
  return sharing(
      n, Objects<List>{itemsOf(n), {}},
      [](Objects<List>& state) {
        List list;
        for (const auto& item : state.owner) list.push_back(item.get());
        state.list = std::move(list);
      },
      [](const Objects<List>& state) {
        Digest digest;
        for (const Item* const item : state.list) digest.add(item->value);
        return digest.value();
      });
}

template <class List>
Ready readingObjects(std::int64_t n) {
  return sharing(
      n, objectsOf<List>(n),
      [](Objects<List>& state) {
        std::int64_t sum = 0;
        for (const Item* const item : state.list) sum += item->value;
        state.sum = sum;
      },
      [](const Objects<List>& state) { return digestOfNumber(state.sum); });
}

// ---- Small and shared -----------------------------------------------------------------------------------------------

Ready makingSmallLists(std::int64_t n) {
  return sharing(
      n, std::int64_t{0},
      [=](std::int64_t& result) {
        std::int64_t sum = 0;
        for (std::int64_t i = 0; i < n; ++i) {
          std::vector<Int> list;
          for (std::int64_t j = 0; j < 8; ++j) list.push_back(static_cast<Int>(i + j));
          keep(list.data());
          sum += list[7];
        }
        result = sum;
      },
      [](std::int64_t sum) { return digestOfNumber(sum); });
}

struct Locked {
  std::mutex mutex;
  std::vector<Int> list;
  void add(std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) {
      const std::lock_guard lock(mutex);
      list.push_back(1);
    }
  }
};

template <int threads>
Ready addingSynchronised(std::int64_t n) {
  Ready ready = sharing(
      n, std::int64_t{0},
      [=](std::int64_t& result) {
        Locked locked;
        if constexpr (threads == 1) {
          locked.add(n);
        } else {
          std::thread other([&] { locked.add(n / 2); });
          locked.add(n - n / 2);
          other.join();
        }
        result = static_cast<std::int64_t>(locked.list.size());
      },
      [](std::int64_t size) { return digestOfNumber(size); });
  ready.onTheWall = threads > 1;
  return ready;
}

// ---- Arrays ---------------------------------------------------------------------------------------------------------

Ready addingUp(std::int64_t n) {
  return sharing(
      n, vectorOf<Int>(n),
      [](std::vector<Int>& list) {
        auto* const elements = reinterpret_cast<std::uint32_t*>(list.data());
        for (std::size_t i = 1; i < list.size(); ++i) elements[i] += elements[i - 1];
        keep(elements);
      },
      digestOf<std::vector<Int>>);
}

template <class Element>
void addKind(Rows& rows) {
  rows.add(kStandard, "append", kNameOf<Element>, appending<Element>);
  rows.add(kStandard, "read", kNameOf<Element>, reading<Element>);
}

}  // namespace

void addStandardLists(Rows& rows) {
  addKind<Int>(rows);
  addKind<Long>(rows);
  addKind<Double>(rows);
  addKind<Byte>(rows);
  rows.add(kStandard, "write", "Int", writing<Int>);
  rows.add(kStandard, "write", "Double", writing<Double>);
  rows.add(kStandard, "read-random", "Int", readingAtRandom);
  rows.add(kStandard, "append-remove-last", "Int", removingLast);
  rows.add(kStandard, "insert-front", "Int", insertingFront);
  rows.add(kStandard, "remove-front", "Int", removingFront);
  rows.add(kStandard, "append", "Object", appendingObjects<std::vector<Item*>>);
  rows.add(kStandard, "read", "Object", readingObjects<std::vector<Item*>>);
  rows.add(kStandard, "linked-append", "Object", appendingObjects<std::list<Item*>>);
  rows.add(kStandard, "linked-iterate", "Object", readingObjects<std::list<Item*>>);
  rows.add(kStandard, "small-lists", "Int", makingSmallLists);
  rows.add(kStandard, "synchronised-add", "Int", addingSynchronised<1>);
  rows.add(kStandard, "synchronised-add-2", "Int", addingSynchronised<2>);
  rows.add(kStandard, "array-write", "Int", writing<Int>);
  rows.add(kStandard, "array-read", "Int", reading<Int>);
  rows.add(kStandard, "array-prefix-sums", "Int", addingUp);
}

}  // namespace vorn::bench::report
