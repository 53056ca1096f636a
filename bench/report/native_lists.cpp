// Lists element by element: by the natives, by their inline forms, and on the list's buffer where a loop can have it.
#include <thread>
#include <vector>

#include "bench/report/native_rows.h"

namespace vorn::bench::report {

namespace {

// ---- Building -------------------------------------------------------------------------------------------------------

// `append(list, i)` appends the i-th element to a new list.
template <class Element, auto append>
Ready building(std::int64_t n) {
  const Shared list = share();
  return {n,
          [=] {
            *list = vorn_object_new(KindOf<Element>::kList);
            void* const target = *list;
            for (std::int64_t i = 0; i < n; ++i) append(target, i);
          },
          [=] { return digestOfList<Element>(*list); }};
}

template <class Element>
void appendByNative(void* list, std::int64_t i) {
  if constexpr (std::is_same_v<Element, Int>) {
    vorn_collections_ArrayList_addInt(list, indexAs<Element>(i));
  } else if constexpr (std::is_same_v<Element, Double>) {
    vorn_collections_ArrayList_addPrimitiveDouble(list, indexAs<Element>(i), KindOf<Element>::kName);
  } else {
    vorn_collections_ArrayList_addPrimitiveI64(list, indexAs<Element>(i), KindOf<Element>::kName);
  }
}

template <class Element>
void appendInline(void* list, std::int64_t i) {
  if constexpr (std::is_same_v<Element, Int>) {
    vorn_proven_ArrayList_addInt(list, indexAs<Element>(i));
  } else if constexpr (std::is_same_v<Element, Double>) {
    vorn_proven_ArrayList_addPrimitiveDouble(list, indexAs<Element>(i), KindOf<Element>::kType);
  } else {
    vorn_proven_ArrayList_addPrimitiveI64(list, indexAs<Element>(i), KindOf<Element>::kType);
  }
}

// Compiled loops that know how many elements come write them into the buffer of a new list.
template <class Element>
Ready fillingBuffer(std::int64_t n) {
  const Shared list = share();
  return {n,
          [=] {
            auto* const elements = static_cast<Element*>(
                vorn_collections_ArrayList_newPrimitiveData(n, KindOf<Element>::kName, list->out()));
            for (std::int64_t i = 0; i < n; ++i) elements[i] = indexAs<Element>(i);
            vorn_collections_ArrayList_commitPrimitiveDataSizeFast(*list, n);
          },
          [=] { return digestOfList<Element>(*list); }};
}

// By a copy: an index of a linked list is walked to.
std::uint32_t digestOfObjects(void* list) {
  const Handle copy = vorn_object_new("ArrayList<Object>");
  vorn_collections_ArrayList_addAll(copy, list);
  Digest digest;
  const std::int64_t size = vorn_collections_ArrayList_size(copy);
  for (std::int64_t i = 0; i < size; ++i) digest.add(intIn(vorn_collections_ArrayList_operator_index(copy, i)));
  return digest.value();
}

// Appends objects that were made before to a new list of the class.
template <auto append>
MakeReady buildingOfObjects(const char* type) {
  return [type](std::int64_t n) -> Ready {
    const Shared owner = share(listOf<Object>(n));
    const Shared list = share();
    auto objects = std::make_shared<std::vector<void*>>();  // alive by the list beside it
    for (std::int64_t i = 0; i < n; ++i) objects->push_back(vorn_collections_ArrayList_operator_index(*owner, i));
    return {n,
            [=] {
              (void)owner;
              *list = vorn_object_new(type);
              void* const target = *list;
              for (void* const object : *objects) append(target, object);
            },
            [=] { return digestOfObjects(*list); }};
  };
}

// ---- Reading and writing --------------------------------------------------------------------------------------------

// Adds up what `get(list, i)` gives.
template <class Element, auto get>
Ready reading(std::int64_t n) {
  const Shared list = share(listOf<Element>(n));
  const auto result = std::make_shared<SumOf<Element>>();
  return {n,
          [=] {
            void* const source = *list;
            SumOf<Element> sum = 0;
            for (std::int64_t i = 0; i < n; ++i) sum += get(source, i);
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

template <class Element>
SumOf<Element> getByNative(void* list, std::int64_t i) {
  if constexpr (std::is_same_v<Element, Double>) {
    return vorn_collections_ArrayList_getDouble(list, i);
  } else {
    return vorn_collections_ArrayList_getInt(list, i);
  }
}

template <class Element>
SumOf<Element> getInline(void* list, std::int64_t i) {
  if constexpr (std::is_same_v<Element, Double>) {
    return vorn_proven_ArrayList_getDouble(list, i, VORN_DOUBLE);
  } else {
    return vorn_proven_ArrayList_getInt(list, i, KindOf<Element>::kType);
  }
}

template <class Element>
Ready readingBuffer(std::int64_t n) {
  const Shared list = share(listOf<Element>(n));
  const auto result = std::make_shared<SumOf<Element>>();
  return {n,
          [=] {
            vorn_span span;
            if (!vorn_inline_ArrayList_span(*list, KindOf<Element>::kType, &span)) std::abort();
            const auto* const elements = static_cast<const Element*>(span.data);
            SumOf<Element> sum = 0;
            for (std::int64_t i = 0; i < span.size; ++i) sum += elements[i];
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

std::int64_t getObject(void* list, std::int64_t i) { return intIn(vorn_collections_ArrayList_operator_index(list, i)); }
std::int64_t getObjectInline(void* list, std::int64_t i) {
  return intInlineIn(vorn_proven_ArrayList_operator_index(list, i));
}

template <auto get>
Ready readingObjects(std::int64_t n) {
  const Shared list = share(listOf<Object>(n));
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            void* const source = *list;
            std::int64_t sum = 0;
            for (std::int64_t i = 0; i < n; ++i) sum += get(source, i);
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

// Compiled loops that know the list to be theirs alone read its handles side by side.
Ready readingHandles(std::int64_t n) {
  const Shared list = share(listOf<Object>(n));
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            vorn_span span;
            if (!vorn_inline_ArrayList_span(*list, VORN_HANDLES, &span)) std::abort();
            void* const* const handles = static_cast<void**>(span.data);
            std::int64_t sum = 0;
            for (std::int64_t i = 0; i < span.size; ++i) sum += intInlineIn(handles[i]);
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

template <auto get>
Ready readingAtRandom(std::int64_t n) {
  const Shared list = share(listOf<Int>(n));
  const auto order = std::make_shared<std::vector<std::int32_t>>(shuffledOrder(n, kGetOrder));
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            void* const source = *list;
            std::int64_t sum = 0;
            for (const std::int32_t at : *order) sum += get(source, at);
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

Ready readingBufferAtRandom(std::int64_t n) {
  const Shared list = share(listOf<Int>(n));
  const auto order = std::make_shared<std::vector<std::int32_t>>(shuffledOrder(n, kGetOrder));
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            vorn_span span;
            if (!vorn_inline_ArrayList_span(*list, VORN_INT, &span)) std::abort();
            const auto* const elements = static_cast<const Int*>(span.data);
            std::int64_t sum = 0;
            for (const std::int32_t at : *order) sum += elements[at];
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

// `set(list, i)` writes i at the index i.
template <class Element, auto set>
Ready writing(std::int64_t n) {
  const Shared list = share(listOf<Element>(n));
  return {n,
          [=] {
            void* const target = *list;
            for (std::int64_t i = 0; i < n; ++i) set(target, i);
          },
          [=] { return digestOfList<Element>(*list); }};
}

template <class Element>
void setByNative(void* list, std::int64_t i) {
  if constexpr (std::is_same_v<Element, Double>) {
    vorn_collections_ArrayList_operator_index_eq(list, i, vorn_box_double(static_cast<double>(i)));
  } else {
    vorn_collections_ArrayList_operator_index_eq(list, i, vorn_box_int(static_cast<Int>(i)));
  }
}

template <class Element>
void setInline(void* list, std::int64_t i) {
  if constexpr (std::is_same_v<Element, Double>) {
    vorn_proven_ArrayList_setDouble(list, i, static_cast<double>(i), VORN_DOUBLE);
  } else {
    vorn_proven_ArrayList_setInt(list, i, i, VORN_INT);
  }
}

template <class Element>
Ready writingBuffer(std::int64_t n) {
  const Shared list = share(listOf<Element>(n));
  return {n,
          [=] {
            auto* const elements = elementsOf<Element>(*list);
            for (std::int64_t i = 0; i < n; ++i) elements[i] = static_cast<Element>(i);
          },
          [=] { return digestOfList<Element>(*list); }};
}

// ---- At the ends ----------------------------------------------------------------------------------------------------

template <auto append, auto removeAt>
Ready removingLast(std::int64_t n) {
  const Shared list = share();
  return {n,
          [=] {
            *list = vorn_object_new("ArrayList<Int>");
            void* const target = *list;
            for (std::int64_t i = 0; i < n; ++i) append(target, i);
            for (std::int64_t i = n; i > 0; --i) removeAt(target, i - 1);
          },
          [=] { return digestOfNumber(std::int64_t{vorn_collections_ArrayList_size(*list)}); }};
}

Ready insertingFront(std::int64_t n) {
  const Shared list = share();
  return {n,
          [=] {
            *list = vorn_object_new("ArrayList<Int>");
            void* const target = *list;
            for (std::int64_t i = 0; i < n; ++i) {
              vorn_collections_ArrayList_addAt(target, 0, vorn_box_int(static_cast<Int>(i)));
            }
          },
          [=] { return digestOfList<Int>(*list); }};
}

Ready removingFront(std::int64_t n) {
  const Shared list = share();
  return {n,
          [=] {
            *list = vorn_object_new("ArrayList<Int>");
            void* const target = *list;
            for (std::int64_t i = 0; i < n; ++i) vorn_collections_ArrayList_addInt(target, i);
            for (std::int64_t i = 0; i < n; ++i) vorn_collections_ArrayList_removeAt(target, 0);
          },
          [=] { return digestOfNumber(std::int64_t{vorn_collections_ArrayList_size(*list)}); }};
}

// ---- Linked, small and shared ---------------------------------------------------------------------------------------

Shared linkedObjects(std::int64_t n) {
  const Handle objects = listOf<Object>(n);
  Shared list = share(vorn_object_new("LinkedList<Object>"));
  vorn_collections_ArrayList_addAll(*list, objects);
  return list;
}

// Without a walk the quick way through all elements is a copy of their handles: an index is walked to from the nearer
// end.
Ready iteratingLinked(std::int64_t n) {
  const Shared list = linkedObjects(n);
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            const Handle copy = vorn_object_new("ArrayList<Object>");
            vorn_collections_ArrayList_addAll(copy, *list);
            std::int64_t sum = 0;
            for (std::int64_t i = 0; i < n; ++i) sum += getObjectInline(copy, i);
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

Ready walkingLinked(std::int64_t n) {
  return summingByWalk<vorn_inline_ArrayList_walk, vorn_inline_ArrayList_next, &vorn_walk::key>(linkedObjects(n), n);
}

Ready makingSmallLists(std::int64_t n) {
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            Handle list;
            std::int64_t sum = 0;
            for (std::int64_t i = 0; i < n; ++i) {
              list = vorn_object_new("ArrayList<Int>");
              void* const target = list;
              for (std::int64_t j = 0; j < 8; ++j) vorn_proven_ArrayList_addInt(target, i + j);
              sum += vorn_proven_ArrayList_getInt(target, 7, VORN_INT);
            }
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

template <int threads>
Ready addingSynchronised(std::int64_t n) {
  const Shared list = share();
  const auto add = [](void* target, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) vorn_collections_ArrayList_addInt(target, 1);
  };
  return {.operations = n,
          .run =
              [=] {
                *list = vorn_object_new("ArrayListSync<Int>");
                void* const target = *list;
                if constexpr (threads == 1) {
                  add(target, n);
                } else {
                  std::thread other(add, target, n / 2);
                  add(target, n - n / 2);
                  other.join();
                }
              },
          .checksum = [=] { return digestOfNumber(std::int64_t{vorn_collections_ArrayList_size(*list)}); },
          .onTheWall = threads > 1};
}

// ---- The table ------------------------------------------------------------------------------------------------------

template <class Element>
void addKind(Rows& rows) {
  const char* const kind = KindOf<Element>::kName;
  rows.add(kNatives, "append", kind, building<Element, appendByNative<Element>>);
  rows.add(kInline, "append", kind, building<Element, appendInline<Element>>);
  rows.add(kBuffer, "append", kind, fillingBuffer<Element>);
  rows.add(kNatives, "read", kind, reading<Element, getByNative<Element>>);
  rows.add(kInline, "read", kind, reading<Element, getInline<Element>>);
  rows.add(kBuffer, "read", kind, readingBuffer<Element>);
}

template <class Element>
void addWrites(Rows& rows) {
  const char* const kind = KindOf<Element>::kName;
  rows.add(kNatives, "write", kind, writing<Element, setByNative<Element>>);
  rows.add(kInline, "write", kind, writing<Element, setInline<Element>>);
  rows.add(kBuffer, "write", kind, writingBuffer<Element>);
}

}  // namespace

void addNativeLists(Rows& rows) {
  addKind<Int>(rows);
  addKind<Long>(rows);
  addKind<Double>(rows);
  addKind<Byte>(rows);
  addWrites<Int>(rows);
  addWrites<Double>(rows);

  rows.add(kNatives, "append", "Object", buildingOfObjects<vorn_collections_ArrayList_add>("ArrayList<Object>"));
  rows.add(kInline, "append", "Object", buildingOfObjects<vorn_proven_ArrayList_add>("ArrayList<Object>"));
  rows.add(kNatives, "read", "Object", readingObjects<getObject>);
  rows.add(kInline, "read", "Object", readingObjects<getObjectInline>);
  rows.add(kBuffer, "read", "Object", readingHandles);
  rows.add(kNatives, "read-random", "Int", readingAtRandom<getByNative<Int>>);
  rows.add(kInline, "read-random", "Int", readingAtRandom<getInline<Int>>);
  rows.add(kBuffer, "read-random", "Int", readingBufferAtRandom);

  rows.add(kNatives, "append-remove-last", "Int",
           removingLast<vorn_collections_ArrayList_addInt, vorn_collections_ArrayList_removeAt>);
  rows.add(kInline, "append-remove-last", "Int",
           removingLast<vorn_proven_ArrayList_addInt, vorn_proven_ArrayList_removeAt>);
  rows.add(kNatives, "insert-front", "Int", insertingFront);
  rows.add(kNatives, "remove-front", "Int", removingFront);
  rows.add(kNatives, "linked-append", "Object",
           buildingOfObjects<vorn_collections_ArrayList_add>("LinkedList<Object>"));
  rows.add(kNatives, "linked-iterate", "Object", iteratingLinked);
  rows.add(kInline, "linked-iterate", "Object", walkingLinked);
  rows.add(kNatives, "small-lists", "Int", makingSmallLists);
  rows.add(kNatives, "synchronised-add", "Int", addingSynchronised<1>);
  rows.add(kNatives, "synchronised-add-2", "Int", addingSynchronised<2>);
}

}  // namespace vorn::bench::report
