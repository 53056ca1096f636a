// GArray, GQueue, GHashTable and GTree. Numbers as keys and values are kept in the pointers, as GLib's users do.
#include <glib.h>

#include "bench/report/peer_rows.h"

namespace vorn::bench::report {

namespace {

using Array = std::shared_ptr<GArray>;

Array newArray(std::size_t elementSize) {
  return {g_array_new(FALSE, FALSE, static_cast<guint>(elementSize)), g_array_unref};
}

template <class Element>
Array arrayOf(std::int64_t n) {
  const Array array = newArray(sizeof(Element));
  const std::vector<Element> elements = vectorOf<Element>(n);
  g_array_append_vals(array.get(), elements.data(), static_cast<guint>(n));
  return array;
}

template <class Element>
std::uint32_t digestOfArray(const Array& array) {
  Digest digest;
  for (guint i = 0; i < array->len; ++i) digest.add(g_array_index(array, Element, i));
  return digest.value();
}

template <class Element, class Work>
Ready onNewArray(std::int64_t n, Work work) {
  return sharing(
      n, Array(),
      [=](Array& result) {
        result = newArray(sizeof(Element));
        work(result.get());
      },
      digestOfArray<Element>);
}

template <class Element>
Ready appending(std::int64_t n) {
  return onNewArray<Element>(n, [=](GArray* array) {
    for (std::int64_t i = 0; i < n; ++i) {
      const auto element = indexAs<Element>(i);
      g_array_append_val(array, element);
    }
  });
}

template <class Element>
Ready reading(std::int64_t n) {
  return sharing(
      n, std::make_pair(arrayOf<Element>(n), PlainSum<Element>()),
      [](auto& state) {
        const GArray* const array = state.first.get();
        PlainSum<Element> sum = 0;
        for (guint i = 0; i < array->len; ++i) sum += g_array_index(array, Element, i);
        state.second = sum;
      },
      [](const auto& state) { return digestOfNumber(state.second); });
}

Ready removingLast(std::int64_t n) {
  return onNewArray<Int>(n, [=](GArray* array) {
    for (std::int64_t i = 0; i < n; ++i) {
      const auto element = static_cast<Int>(i);
      g_array_append_val(array, element);
    }
    while (array->len > 0) g_array_set_size(array, array->len - 1);
  });
}

Ready insertingFront(std::int64_t n) {
  return onNewArray<Int>(n, [=](GArray* array) {
    for (std::int64_t i = 0; i < n; ++i) {
      const auto element = static_cast<Int>(i);
      g_array_prepend_val(array, element);
    }
  });
}

Ready removingFront(std::int64_t n) {
  return onNewArray<Int>(n, [=](GArray* array) {
    for (std::int64_t i = 0; i < n; ++i) {
      const auto element = static_cast<Int>(i);
      g_array_append_val(array, element);
    }
    while (array->len > 0) g_array_remove_index(array, 0);
  });
}

template <class Element>
gint compareElements(gconstpointer left, gconstpointer right) {
  const auto a = *static_cast<const Element*>(left);
  const auto b = *static_cast<const Element*>(right);
  return (a > b) - (a < b);
}

// Sorting a GArray is sorting its memory.
template <class Element>
void sortByGlib(Element* data, std::size_t length) {
  g_qsort_with_data(
      data, static_cast<gint>(length), sizeof(Element),
      [](gconstpointer left, gconstpointer right, gpointer) { return compareElements<Element>(left, right); }, nullptr);
}

// ---- Linked and shared ----------------------------------------------------------------------------------------------

struct QueueOfItems {
  std::vector<std::unique_ptr<Item>> owner;
  std::shared_ptr<GQueue> queue;
  std::int64_t sum = 0;

  void fill() {
    queue = {g_queue_new(), g_queue_free};
    for (const auto& item : owner) g_queue_push_tail(queue.get(), item.get());
  }
};

Ready appendingLinked(std::int64_t n) {
  return sharing(
      n, QueueOfItems{itemsOf(n), nullptr}, [](QueueOfItems& state) { state.fill(); },
      [](const QueueOfItems& state) {
        Digest digest;
        for (const GList* node = state.queue->head; node != nullptr; node = node->next) {
          digest.add(static_cast<const Item*>(node->data)->value);
        }
        return digest.value();
      });
}

Ready iteratingLinked(std::int64_t n) {
  QueueOfItems filled{itemsOf(n), nullptr};
  filled.fill();
  return sharing(
      n, std::move(filled),
      [](QueueOfItems& state) {
        std::int64_t sum = 0;
        for (const GList* node = state.queue->head; node != nullptr; node = node->next) {
          sum += static_cast<const Item*>(node->data)->value;
        }
        state.sum = sum;
      },
      [](const QueueOfItems& state) { return digestOfNumber(state.sum); });
}

Ready addingSynchronised(std::int64_t n) {
  return sharing(
      n, Array(),
      [=](Array& result) {
        result = newArray(sizeof(Int));
        GMutex mutex;
        g_mutex_init(&mutex);
        for (std::int64_t i = 0; i < n; ++i) {
          const Int element = 1;
          g_mutex_lock(&mutex);
          g_array_append_val(result.get(), element);
          g_mutex_unlock(&mutex);
        }
        g_mutex_clear(&mutex);
      },
      [](const Array& array) { return digestOfNumber(std::int64_t{array->len}); });
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

Ready joining(std::int64_t n) {
  return sharing(
      n, std::make_pair(vectorOf<Int>(n), std::shared_ptr<GString>()),
      [](auto& state) {
        GString* const text = g_string_new(nullptr);
        for (std::size_t i = 0; i < state.first.size(); ++i) {
          g_string_append_printf(text, i > 0 ? ", %d" : "%d", state.first[i]);
        }
        state.second = {text, [](GString* string) { g_string_free(string, TRUE); }};
      },
      [](const auto& state) {
        Digest digest;
        digest.add(std::string_view(state.second->str, state.second->len));
        return digest.value();
      });
}

// ---- Tables ---------------------------------------------------------------------------------------------------------

using Table = std::shared_ptr<GHashTable>;

template <class Key>
gpointer pointerTo(const Key& key) {
  if constexpr (std::is_same_v<Key, std::string>) return const_cast<char*>(key.c_str());
  if constexpr (std::is_same_v<Key, Int>) return GINT_TO_POINTER(key);
}

template <class Key>
std::vector<Key> keysFor(std::int64_t n, std::uint32_t seed, bool present) {
  if constexpr (std::is_same_v<Key, std::string>) {
    return textKeysInOrder(n, seed, present ? textKeyOf : absentTextKeyOf);
  } else {
    return keysInOrder(n, seed, present ? keyOf : absentKeyOf);
  }
}

template <class Key>
struct TableState {
  std::vector<Key> keys;
  std::vector<std::int32_t> values;
  std::vector<Key> wanted;
  Table table;
  std::int64_t result = 0;

  TableState(std::int64_t n, bool present)
      : keys(keysFor<Key>(n, kPutOrder, true)),
        values(shuffledOrder(n, kPutOrder)),
        wanted(keysFor<Key>(n, kGetOrder, present)) {}

  void insert(std::size_t index) {
    g_hash_table_insert(table.get(), pointerTo(keys[index]), GINT_TO_POINTER(values[index]));
  }
  // Puts the first `count` keys into a new table.
  void fill(std::size_t count) {
    constexpr bool kTexts = std::is_same_v<Key, std::string>;
    table = {g_hash_table_new(kTexts ? g_str_hash : g_direct_hash, kTexts ? g_str_equal : g_direct_equal),
             g_hash_table_unref};
    for (std::size_t i = 0; i < count; ++i) insert(i);
  }
  void fill() { fill(keys.size()); }
  [[nodiscard]] std::int64_t sum() const {
    GHashTableIter iterator;
    g_hash_table_iter_init(&iterator, table.get());
    gpointer value = nullptr;
    std::int64_t sum = 0;
    while (g_hash_table_iter_next(&iterator, nullptr, &value) != 0) sum += GPOINTER_TO_INT(value);
    return sum;
  }
};

template <class Key>
std::uint32_t digestOfTable(const TableState<Key>& state) {
  return digestOfEntries(g_hash_table_size(state.table.get()), state.sum());
}

template <class Key>
std::uint32_t digestOfResult(const TableState<Key>& state) {
  return digestOfNumber(state.result);
}

template <class Key>
Ready putting(std::int64_t n) {
  return sharing(
      n, TableState<Key>(n, true), [](TableState<Key>& state) { state.fill(); }, digestOfTable<Key>);
}

template <class Key>
Ready getting(std::int64_t n, bool present) {
  TableState<Key> filled(n, present);
  filled.fill();
  return sharing(
      n, std::move(filled),
      [](TableState<Key>& state) {
        std::int64_t sum = 0;
        for (const Key& key : state.wanted) {
          sum += GPOINTER_TO_INT(g_hash_table_lookup(state.table.get(), pointerTo(key)));
        }
        state.result = sum;
      },
      digestOfResult<Key>);
}

template <class Key>
Ready iterating(std::int64_t n) {
  TableState<Key> filled(n, true);
  filled.fill();
  return sharing(
      n, std::move(filled), [](TableState<Key>& state) { state.result = state.sum(); }, digestOfResult<Key>);
}

template <class Key>
Ready removing(std::int64_t n) {
  return sharing(
      n, TableState<Key>(n, true),
      [](TableState<Key>& state) {
        state.fill();
        for (const Key& key : state.wanted) g_hash_table_remove(state.table.get(), pointerTo(key));
      },
      digestOfTable<Key>);
}

// Of twice as many keys, half are in the table at any time.
template <class Key>
Ready churning(std::int64_t n) {
  TableState<Key> first(2 * n, true);
  first.fill(static_cast<std::size_t>(n));
  return sharing(
      n, std::move(first),
      [=, oldest = std::int64_t{0}](TableState<Key>& state) mutable {
        for (std::int64_t i = 0; i < n; ++i) {
          g_hash_table_remove(state.table.get(), pointerTo(state.keys[static_cast<std::size_t>(oldest)]));
          state.insert(static_cast<std::size_t>(oldest < n ? oldest + n : oldest - n));
          oldest = oldest + 1 < 2 * n ? oldest + 1 : 0;
        }
      },
      digestOfTable<Key>);
}

template <class Key>
void addTables(Rows& rows) {
  const char* const kind = kNameOf<Key>;
  rows.add(kGlib, "map-put", kind, putting<Key>);
  rows.add(kGlib, "map-get", kind, [](std::int64_t n) { return getting<Key>(n, true); });
  rows.add(kGlib, "map-miss", kind, [](std::int64_t n) { return getting<Key>(n, false); });
  rows.add(kGlib, "map-iterate", kind, iterating<Key>);
  rows.add(kGlib, "map-remove", kind, removing<Key>);
  rows.add(kGlib, "map-churn", kind, churning<Key>);
}

// ---- Trees ----------------------------------------------------------------------------------------------------------

struct TreeState {
  std::vector<Int> keys;
  std::vector<std::int32_t> values;
  std::vector<Int> wanted;
  std::shared_ptr<GTree> tree;
  std::int64_t result = 0;

  explicit TreeState(std::int64_t n)
      : keys(keysInOrder(n, kPutOrder)), values(shuffledOrder(n, kPutOrder)), wanted(keysInOrder(n, kGetOrder)) {}

  void fill() {
    const GCompareFunc compare = [](gconstpointer left, gconstpointer right) -> gint {
      return GPOINTER_TO_INT(left) - GPOINTER_TO_INT(right);
    };
    tree = {g_tree_new(compare), g_tree_unref};
    for (std::size_t i = 0; i < keys.size(); ++i) {
      g_tree_insert(tree.get(), GINT_TO_POINTER(keys[i]), GINT_TO_POINTER(values[i]));
    }
  }
  [[nodiscard]] std::int64_t sum() const {
    std::int64_t sum = 0;
    const GTraverseFunc add = [](gpointer, gpointer value, gpointer total) -> gboolean {
      *static_cast<std::int64_t*>(total) += GPOINTER_TO_INT(value);
      return FALSE;
    };
    g_tree_foreach(tree.get(), add, &sum);
    return sum;
  }
};

Ready puttingSorted(std::int64_t n) {
  return sharing(
      n, TreeState(n), [](TreeState& state) { state.fill(); },
      [](const TreeState& state) { return digestOfEntries(g_tree_nnodes(state.tree.get()), state.sum()); });
}

Ready onTree(std::int64_t n, void (*work)(TreeState&)) {
  TreeState filled(n);
  filled.fill();
  return sharing(n, std::move(filled), work, [](const TreeState& state) { return digestOfNumber(state.result); });
}

void getSorted(TreeState& state) {
  std::int64_t sum = 0;
  for (const Int key : state.wanted) sum += GPOINTER_TO_INT(g_tree_lookup(state.tree.get(), GINT_TO_POINTER(key)));
  state.result = sum;
}

template <class Element>
void addKind(Rows& rows) {
  rows.add(kGlib, "append", kNameOf<Element>, appending<Element>);
  rows.add(kGlib, "read", kNameOf<Element>, reading<Element>);
  rows.add(kGlib, "sort", kNameOf<Element>, sortingMemory<Element, sortByGlib<Element>>(Pattern::Random));
}

}  // namespace

void addGlib(Rows& rows) {
  addKind<Int>(rows);
  addKind<Long>(rows);
  addKind<Double>(rows);
  addKind<Byte>(rows);
  rows.add(kGlib, "append-remove-last", "Int", removingLast);
  rows.add(kGlib, "insert-front", "Int", insertingFront);
  rows.add(kGlib, "remove-front", "Int", removingFront);
  rows.add(kGlib, "linked-append", "Object", appendingLinked);
  rows.add(kGlib, "linked-iterate", "Object", iteratingLinked);
  rows.add(kGlib, "synchronised-add", "Int", addingSynchronised);
  rows.add(kGlib, "join", "Int", joining);
  addTables<Int>(rows);
  addTables<std::string>(rows);
  rows.add(kGlib, "sorted-put", "Int", puttingSorted);
  rows.add(kGlib, "sorted-get", "Int", [](std::int64_t n) { return onTree(n, getSorted); });
  rows.add(kGlib, "sorted-iterate", "Int",
           [](std::int64_t n) { return onTree(n, [](TreeState& state) { state.result = state.sum(); }); });
}

}  // namespace vorn::bench::report
