// The natives of maps and sets, called through the shared libraries as compiled programs call them.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/inline/borrowed.h>
#include <vorn/collections/inline/boxes.h>
#include <vorn/collections/map.h>
#include <vorn/runtime.h>

#include "bench/keyed_workloads.h"
#include "bench/limits.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/keyed/map_data.h"

namespace vorn::bench::natives {

namespace {

class NativeMap {
 public:
  explicit NativeMap(const char* type = "Map") : map_(vorn_object_new(type)) {}

  void put(void* key, void* value) { vorn_collections_Map_put(map_.get(), key, value); }
  [[nodiscard]] void* find(void* key) const { return vorn_collections_Map__get(map_.get(), key); }
  bool remove(void* key) { return vorn_collections_Map_remove(map_.get(), key); }

  template <class Visit>
  void forEach(Visit visit) const {
    getMapData(map_.get())->forEach([&visit](const NativeCollectionKey&, const NativeMapEntry& entry) {
      visit(entry.value);
    });
  }
  void listKeys() const { keep(vorn_collections_Map_keys(map_.get())); }
  void listValues() const { keep(vorn_collections_Map_values(map_.get())); }
  void listItems() const { keep(vorn_collections_Map_items(map_.get())); }
  void dropBoxes() const {}

 private:
  collections::RootedHandle map_;
};

struct NativeSortedMap : NativeMap {
  NativeSortedMap() : NativeMap("SortedMap") {}
};
struct NativeSyncMap : NativeMap {
  NativeSyncMap() : NativeMap("HashMapSync") {}
};

class NativeSet {
 public:
  void put(void* key, void* /*value*/) { vorn_collections_HashSet_add(set_.get(), key); }
  [[nodiscard]] bool find(void* key) const { return vorn_collections_HashSet_operator_in(set_.get(), key); }
  void listValues() const { keep(vorn_collections_HashSet_items(set_.get())); }
  void dropBoxes() const {}

 private:
  collections::RootedHandle set_{vorn_object_new("HashSet")};
};

class NativeMapOfMaps {
 public:
  void put(void* outer, void* inner, void* value) {
    void* map = vorn_collections_Map__get(maps_.get(), outer);
    if (map == nullptr) {
      map = vorn_object_new("Map");
      vorn_collections_Map_put(maps_.get(), outer, map);
    }
    vorn_collections_Map_put(map, inner, value);
  }
  [[nodiscard]] void* find(void* outer, void* inner) const {
    return vorn_collections_Map__get(vorn_collections_Map__get(maps_.get(), outer), inner);
  }

 private:
  collections::RootedHandle maps_{vorn_object_new("Map")};
};

struct Library {
  static constexpr const char* kName = kOwn;
  static constexpr std::int64_t kLargestGrowth = 10 * kLarge;
  static constexpr std::int64_t kLargestSortedMap = kLarge;

  template <class Key>
  using Box = void*;
  static void* box(Int number) { return vorn_box_int(static_cast<std::int32_t>(number)); }
  static void* box(const Text& text) { return vorn_string_new(text.data(), text.size()); }
  static std::int32_t number(void* value) {
    std::int32_t number = 0;
    vorn_unbox_int(value, &number);
    return number;
  }
  // As compiled code reads the number in what it has looked up.
  static long long numberInline(const void* value) {
    long long number = 0;
    vorn_inline_unbox_integer(value, VORN_INT, &number);
    return number;
  }
  static void drop(void* /*box*/) {}
  template <class Find>
  static void withBorrowed(Int number, Find find) {
    vorn_borrowed_box room;
    find(vorn_borrow_int(&room, static_cast<std::int32_t>(number)));
  }

  template <class Key>
  class Boxes {
   public:
    void reserve(std::int64_t count) { boxes_->reserve(static_cast<std::size_t>(count)); }
    void push(void* box) { boxes_->push_back(box); }
    void* operator[](std::size_t index) const { return *(boxes_->begin() + static_cast<std::ptrdiff_t>(index)); }
    [[nodiscard]] std::size_t size() const { return boxes_->size(); }

   private:
    collections::HandleVector boxes_;
  };

  template <class Key>
  using Map = NativeMap;
  using SortedMap = NativeSortedMap;
  using SyncMap = NativeSyncMap;
  using Set = NativeSet;
  using MapOfMaps = NativeMapOfMaps;
};

}  // namespace

void addKeyed(Benchmarks& benchmarks) { keyed::addTo<Library>(benchmarks); }

}  // namespace vorn::bench::natives
