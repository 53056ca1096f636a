// GLib's tables keep pointers: to a number or the bytes of a text as the key, to a block as the value.
#include <glib.h>

#include "bench/keyed_containers.h"
#include "bench/keyed_workloads.h"

namespace vorn::bench::glib {

namespace {

const void* keyOf(const KeyBox<Int>* box) { return &box->value; }
const void* keyOf(const KeyBox<Text>* box) { return box->value.c_str(); }

template <class Key>
GHashTable* newTable() {
  if constexpr (std::is_same_v<Key, Text>) return g_hash_table_new(g_str_hash, g_str_equal);
  return g_hash_table_new(g_int64_hash, g_int64_equal);
}

gint compareIntegers(gconstpointer left, gconstpointer right) {
  const auto a = *static_cast<const Int*>(left);
  const auto b = *static_cast<const Int*>(right);
  return (a > b) - (a < b);
}

template <class Key>
class Table {
 public:
  Table() : table_(newTable<Key>()) {}
  ~Table() { g_hash_table_destroy(table_); }
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  void put(const KeyBox<Key>* key, void* value) { g_hash_table_insert(table_, const_cast<void*>(keyOf(key)), value); }
  [[nodiscard]] const void* find(const KeyBox<Key>* key) const { return g_hash_table_lookup(table_, keyOf(key)); }
  bool remove(const KeyBox<Key>* key) { return g_hash_table_remove(table_, keyOf(key)) != 0; }

  template <class Visit>
  void forEach(Visit visit) const {
    forEachEntry([&visit](gpointer, gpointer value) { visit(value); });
  }
  void listKeys() const { keepAndFree(g_hash_table_get_keys(table_)); }
  void listValues() const { keepAndFree(g_hash_table_get_values(table_)); }

  // A number is the first thing in its box.
  void dropBoxes() const {
    forEachEntry([](gpointer key, gpointer value) {
      delete static_cast<KeyBox<Int>*>(key);
      if (value != key) delete static_cast<KeyBox<Int>*>(value);
    });
  }

 protected:
  [[nodiscard]] GHashTable* table() const { return table_; }

 private:
  template <class Visit>
  void forEachEntry(Visit visit) const {
    GHashTableIter iterator;
    g_hash_table_iter_init(&iterator, table_);
    gpointer key = nullptr;
    gpointer value = nullptr;
    while (g_hash_table_iter_next(&iterator, &key, &value) != 0) visit(key, value);
  }
  static void keepAndFree(GList* list) {
    keep(list);
    g_list_free(list);
  }

  GHashTable* table_;
};

// GLib keeps a set as a table whose values are the keys, in one array for both.
class TableSet : public Table<Int> {
 public:
  void put(const KeyBox<Int>* key, const KeyBox<Int>* /*value*/) {
    g_hash_table_add(table(), const_cast<void*>(keyOf(key)));
  }
};

class Tree {
 public:
  Tree() : tree_(g_tree_new(compareIntegers)) {}
  ~Tree() { g_tree_destroy(tree_); }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  void put(KeyBox<Int>* key, void* value) { g_tree_insert(tree_, &key->value, value); }
  [[nodiscard]] const void* find(const KeyBox<Int>* key) const { return g_tree_lookup(tree_, &key->value); }

  template <class Visit>
  void forEach(Visit visit) const {
    g_tree_foreach(
        tree_,
        [](gpointer, gpointer value, gpointer visitor) -> gboolean {
          (*static_cast<Visit*>(visitor))(value);
          return FALSE;
        },
        &visit);
  }

 private:
  GTree* tree_;
};

class TableOfTables {
 public:
  TableOfTables() : tables_(g_hash_table_new_full(g_int64_hash, g_int64_equal, nullptr, destroyInner)) {}
  ~TableOfTables() { g_hash_table_destroy(tables_); }
  TableOfTables(const TableOfTables&) = delete;
  TableOfTables& operator=(const TableOfTables&) = delete;

  void put(KeyBox<Int>* outer, KeyBox<Int>* inner, void* value) {
    gpointer table = g_hash_table_lookup(tables_, &outer->value);
    if (table == nullptr) {
      table = newTable<Int>();
      g_hash_table_insert(tables_, &outer->value, table);
    }
    g_hash_table_insert(static_cast<GHashTable*>(table), &inner->value, value);
  }
  [[nodiscard]] const void* find(const KeyBox<Int>* outer, const KeyBox<Int>* inner) const {
    gpointer table = g_hash_table_lookup(tables_, &outer->value);
    return table != nullptr ? g_hash_table_lookup(static_cast<GHashTable*>(table), &inner->value) : nullptr;
  }

 private:
  static void destroyInner(gpointer table) { g_hash_table_destroy(static_cast<GHashTable*>(table)); }

  GHashTable* tables_;
};

struct Library : MallocBoxes {
  static constexpr const char* kName = "GLib";
  static constexpr std::int64_t kLargestGrowth = kLarge;
  static constexpr std::int64_t kLargestSortedMap = kSmall;  // a million take some seconds each time

  template <class Key>
  using Map = Table<Key>;
  using SortedMap = Tree;
  using SyncMap = LockedMap<Table<Int>>;
  using Set = TableSet;
  using MapOfMaps = TableOfTables;
};

}  // namespace

void addKeyed(Benchmarks& benchmarks) { keyed::addTo<Library>(benchmarks); }

}  // namespace vorn::bench::glib
