#include <glib.h>

#include <algorithm>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "bench/list_operations.h"

namespace vorn::bench {

namespace {

// A number in a heap block of its own, the size of the runtime's boxes.
struct Box {
  std::int64_t value = 0;
  std::int64_t padding[3] = {};
};

std::vector<std::unique_ptr<Box>> makeBoxes(std::int64_t elements) {
  std::vector<std::unique_ptr<Box>> boxes;
  for (std::int64_t i = 0; i < elements; ++i) boxes.push_back(std::make_unique<Box>(Box{elementAt(i), {}}));
  return boxes;
}

}  // namespace

namespace standard {

namespace {

template <class Number>
std::vector<Number> makeVector(std::int64_t elements) {
  std::vector<Number> numbers;
  for (std::int64_t i = 0; i < elements; ++i) numbers.push_back(static_cast<Number>(elementAt(i)));
  return numbers;
}

// Builds a container anew in every iteration, growth included.
template <class Container, class Append>
void build(benchmark::State& state, std::int64_t elements, Append append) {
  for (auto _ : state) {
    Container container;
    for (std::int64_t i = 0; i < elements; ++i) append(container, static_cast<std::size_t>(i));
    keep(&container);
  }
  countElements(state, elements);
}

// Visits every element of one vector per iteration.
template <class Number, class Visit>
void visit(benchmark::State& state, std::int64_t elements, Visit visitElement) {
  auto numbers = makeVector<Number>(elements);
  keep(&numbers);
  for (auto _ : state) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(elements); ++i) visitElement(numbers, i);
  }
  countElements(state, elements);
}

template <class Number, class Search>
void search(benchmark::State& state, std::int64_t elements, Search searchVector) {
  const auto numbers = makeVector<Number>(elements);
  for (auto _ : state) {
    keep(&numbers);
    keep(searchVector(numbers));
  }
  countElements(state, elements);
}

}  // namespace

void append(benchmark::State& state, std::int64_t elements) {
  build<std::vector<std::int32_t>>(
      state, elements, [](auto& numbers, std::size_t i) { numbers.push_back(static_cast<std::int32_t>(i)); });
}

void appendLocked(benchmark::State& state, std::int64_t elements) {
  std::mutex mutex;
  build<std::vector<std::int32_t>>(state, elements, [&mutex](auto& numbers, std::size_t i) {
    const std::lock_guard<std::mutex> lock(mutex);
    numbers.push_back(static_cast<std::int32_t>(i));
  });
}

void appendFromBox(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  build<std::vector<std::int32_t>>(state, elements, [&boxes](auto& numbers, std::size_t i) {
    numbers.push_back(static_cast<std::int32_t>(boxes[i]->value));
  });
}

void appendPointer(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  build<std::vector<void*>>(state, elements,
                            [&boxes](auto& pointers, std::size_t i) { pointers.push_back(boxes[i].get()); });
}

void insertFromBoxAtEnd(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  build<std::vector<std::int32_t>>(state, elements, [&boxes](auto& numbers, std::size_t i) {
    numbers.insert(numbers.begin() + static_cast<std::ptrdiff_t>(i), static_cast<std::int32_t>(boxes[i]->value));
  });
}

void appendLinked(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  build<std::list<void*>>(state, elements,
                          [&boxes](auto& pointers, std::size_t i) { pointers.push_back(boxes[i].get()); });
}

void iterateLinked(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  std::list<void*> pointers;
  for (const auto& box : boxes) pointers.push_back(box.get());
  for (auto _ : state) {
    for (void* const pointer : pointers) keep(pointer);
  }
  countElements(state, elements);
}

void read(benchmark::State& state, std::int64_t elements) {
  visit<std::int32_t>(state, elements, [](const auto& numbers, std::size_t i) { keep(numbers.at(i)); });
}

void readDouble(benchmark::State& state, std::int64_t elements) {
  visit<double>(state, elements, [](const auto& numbers, std::size_t i) { keep(numbers.at(i)); });
}

void readIntoBox(benchmark::State& state, std::int64_t elements) {
  visit<std::int32_t>(state, elements, [](const auto& numbers, std::size_t i) {
    const auto box = std::make_unique<Box>(Box{numbers.at(i), {}});
    keep(box.get());
  });
}

void writeFromBox(benchmark::State& state, std::int64_t elements) {
  const Box box{42, {}};
  visit<std::int32_t>(state, elements, [&box](auto& numbers, std::size_t i) {
    keep(&box);
    numbers.at(i) = static_cast<std::int32_t>(box.value);
  });
}

void removeLast(benchmark::State& state, std::int64_t elements) {
  std::vector<std::vector<std::int32_t>> vectors(static_cast<std::size_t>(preparedCollections(elements)));
  for (auto _ : state) {
    state.PauseTiming();
    for (auto& numbers : vectors) numbers.assign(static_cast<std::size_t>(elements), 1);
    state.ResumeTiming();
    for (auto& numbers : vectors) {
      for (std::int64_t i = 0; i < elements; ++i) {
        numbers.pop_back();
        keep(&numbers);
      }
    }
  }
  countElements(state, elements * preparedCollections(elements));
}

void size(benchmark::State& state, std::int64_t elements) {
  visit<std::int32_t>(state, elements, [](const auto& numbers, std::size_t) { keep(numbers.size()); });
}

void findInt(benchmark::State& state, std::int64_t elements) {
  search<std::int32_t>(state, elements, [](const auto& numbers) {
    return std::find(numbers.begin(), numbers.end(), kAbsent) - numbers.begin();
  });
}

void countInt(benchmark::State& state, std::int64_t elements) {
  search<std::int32_t>(state, elements,
                       [](const auto& numbers) { return std::count(numbers.begin(), numbers.end(), kAbsent); });
}

void findDouble(benchmark::State& state, std::int64_t elements) {
  search<double>(state, elements, [](const auto& numbers) {
    return std::find(numbers.begin(), numbers.end(), static_cast<double>(kAbsent)) - numbers.begin();
  });
}

void countDouble(benchmark::State& state, std::int64_t elements) {
  search<double>(state, elements, [](const auto& numbers) {
    return std::count(numbers.begin(), numbers.end(), static_cast<double>(kAbsent));
  });
}

void findBox(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  for (auto _ : state) {
    keep(&boxes);
    keep(std::find_if(boxes.begin(), boxes.end(), [](const auto& box) { return box->value == kAbsent; }) -
         boxes.begin());
  }
  countElements(state, elements);
}

}  // namespace standard

namespace glib {

namespace {

template <class Number>
GArray* makeArray(std::int64_t elements) {
  GArray* numbers = g_array_new(FALSE, FALSE, sizeof(Number));
  for (std::int64_t i = 0; i < elements; ++i) {
    const auto number = static_cast<Number>(elementAt(i));
    g_array_append_val(numbers, number);
  }
  return numbers;
}

// Builds a GArray of 32-bit integers anew in every iteration, growth included.
template <class Append>
void build(benchmark::State& state, std::int64_t elements, Append append) {
  for (auto _ : state) {
    GArray* numbers = g_array_new(FALSE, FALSE, sizeof(std::int32_t));
    for (std::int64_t i = 0; i < elements; ++i) append(numbers, static_cast<guint>(i));
    g_array_free(numbers, TRUE);
  }
  countElements(state, elements);
}

// Visits every element of one GArray per iteration.
template <class Number, class Visit>
void visit(benchmark::State& state, std::int64_t elements, Visit visitElement) {
  GArray* numbers = makeArray<Number>(elements);
  keep(numbers);
  for (auto _ : state) {
    for (guint i = 0; i < numbers->len; ++i) visitElement(numbers, i);
  }
  g_array_free(numbers, TRUE);
  countElements(state, elements);
}

template <class Number, class Search>
void search(benchmark::State& state, std::int64_t elements, Search searchArray) {
  GArray* numbers = makeArray<Number>(elements);
  for (auto _ : state) {
    keep(numbers);
    keep(searchArray(numbers));
  }
  g_array_free(numbers, TRUE);
  countElements(state, elements);
}

template <class Number>
gint64 findNumber(const GArray* numbers) {
  for (guint i = 0; i < numbers->len; ++i) {
    if (g_array_index(numbers, Number, i) == static_cast<Number>(kAbsent)) return i;
  }
  return -1;
}

template <class Number>
gint64 countNumber(const GArray* numbers) {
  gint64 count = 0;
  for (guint i = 0; i < numbers->len; ++i) {
    count += g_array_index(numbers, Number, i) == static_cast<Number>(kAbsent) ? 1 : 0;
  }
  return count;
}

}  // namespace

void append(benchmark::State& state, std::int64_t elements) {
  build(state, elements, [](GArray* numbers, guint i) {
    const auto number = static_cast<std::int32_t>(i);
    g_array_append_val(numbers, number);
  });
}

void appendLocked(benchmark::State& state, std::int64_t elements) {
  GMutex mutex;
  g_mutex_init(&mutex);
  build(state, elements, [&mutex](GArray* numbers, guint i) {
    const auto number = static_cast<std::int32_t>(i);
    g_mutex_lock(&mutex);
    g_array_append_val(numbers, number);
    g_mutex_unlock(&mutex);
  });
  g_mutex_clear(&mutex);
}

void appendFromBox(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  build(state, elements, [&boxes](GArray* numbers, guint i) {
    const auto number = static_cast<std::int32_t>(boxes[i]->value);
    g_array_append_val(numbers, number);
  });
}

void appendPointer(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  for (auto _ : state) {
    GPtrArray* pointers = g_ptr_array_new();
    for (const auto& box : boxes) g_ptr_array_add(pointers, box.get());
    g_ptr_array_free(pointers, TRUE);
  }
  countElements(state, elements);
}

void insertFromBoxAtEnd(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  build(state, elements, [&boxes](GArray* numbers, guint i) {
    const auto number = static_cast<std::int32_t>(boxes[i]->value);
    g_array_insert_val(numbers, i, number);
  });
}

void appendLinked(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  for (auto _ : state) {
    GQueue queue = G_QUEUE_INIT;
    for (const auto& box : boxes) g_queue_push_tail(&queue, box.get());
    g_queue_clear(&queue);
  }
  countElements(state, elements);
}

void iterateLinked(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  GQueue queue = G_QUEUE_INIT;
  for (const auto& box : boxes) g_queue_push_tail(&queue, box.get());
  for (auto _ : state) {
    for (const GList* node = queue.head; node != nullptr; node = node->next) keep(node->data);
  }
  g_queue_clear(&queue);
  countElements(state, elements);
}

void read(benchmark::State& state, std::int64_t elements) {
  visit<std::int32_t>(state, elements,
                      [](const GArray* numbers, guint i) { keep(g_array_index(numbers, std::int32_t, i)); });
}

void readDouble(benchmark::State& state, std::int64_t elements) {
  visit<double>(state, elements, [](const GArray* numbers, guint i) { keep(g_array_index(numbers, double, i)); });
}

void readIntoBox(benchmark::State& state, std::int64_t elements) {
  visit<std::int32_t>(state, elements, [](const GArray* numbers, guint i) {
    Box* box = g_slice_new(Box);
    box->value = g_array_index(numbers, std::int32_t, i);
    keep(box);
    g_slice_free(Box, box);
  });
}

void writeFromBox(benchmark::State& state, std::int64_t elements) {
  const Box box{42, {}};
  visit<std::int32_t>(state, elements, [&box](GArray* numbers, guint i) {
    keep(&box);
    g_array_index(numbers, std::int32_t, i) = static_cast<std::int32_t>(box.value);
  });
}

void removeLast(benchmark::State& state, std::int64_t elements) {
  std::vector<GArray*> arrays;
  for (std::int64_t i = 0; i < preparedCollections(elements); ++i) arrays.push_back(makeArray<std::int32_t>(elements));
  for (auto _ : state) {
    state.PauseTiming();
    for (GArray* numbers : arrays) g_array_set_size(numbers, static_cast<guint>(elements));
    state.ResumeTiming();
    for (GArray* numbers : arrays) {
      for (std::int64_t i = 0; i < elements; ++i) g_array_remove_index(numbers, numbers->len - 1);
    }
  }
  for (GArray* numbers : arrays) g_array_free(numbers, TRUE);
  countElements(state, elements * preparedCollections(elements));
}

void size(benchmark::State& state, std::int64_t elements) {
  visit<std::int32_t>(state, elements, [](const GArray* numbers, guint) { keep(numbers->len); });
}

void findInt(benchmark::State& state, std::int64_t elements) {
  search<std::int32_t>(state, elements, findNumber<std::int32_t>);
}

void countInt(benchmark::State& state, std::int64_t elements) {
  search<std::int32_t>(state, elements, countNumber<std::int32_t>);
}

void findDouble(benchmark::State& state, std::int64_t elements) { search<double>(state, elements, findNumber<double>); }

void countDouble(benchmark::State& state, std::int64_t elements) {
  search<double>(state, elements, countNumber<double>);
}

void findBox(benchmark::State& state, std::int64_t elements) {
  const auto boxes = makeBoxes(elements);
  GPtrArray* pointers = g_ptr_array_new();
  for (const auto& box : boxes) g_ptr_array_add(pointers, box.get());
  const Box absent{kAbsent, {}};
  for (auto _ : state) {
    keep(g_ptr_array_find_with_equal_func(
        pointers, &absent,
        [](gconstpointer left, gconstpointer right) -> gboolean {
          return static_cast<const Box*>(left)->value == static_cast<const Box*>(right)->value ? TRUE : FALSE;
        },
        nullptr));
  }
  g_ptr_array_free(pointers, TRUE);
  countElements(state, elements);
}

}  // namespace glib

}  // namespace vorn::bench
