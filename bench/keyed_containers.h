// Containers with the interface of std::map as a library of keyed_workloads.h: what the C++ standard library and Abseil
// have in common. Numbers and texts come out of heap blocks of their own, as they do from boxes; the containers keep
// them by content, in their own memory, beside pointers to the blocks.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "bench/keyed_operations.h"

namespace vorn::bench {

// A key and its block, the size of the runtime's boxes or larger for texts.
template <class Key>
struct KeyBox {
  Key value;
  std::int64_t padding[3] = {};
};

// How every library but ours makes boxes.
struct MallocBoxes {
  template <class Key>
  using Box = KeyBox<Key>*;

  static Box<Int> box(Int number) { return new KeyBox<Int>{number}; }
  static Box<Text> box(Text text) { return new KeyBox<Text>{std::move(text)}; }
  static Int number(const void* value) { return static_cast<const KeyBox<Int>*>(value)->value; }
  static void drop(Box<Int> box) { delete box; }

  template <class Key>
  class Boxes {
   public:
    void reserve(std::int64_t count) { boxes_.reserve(static_cast<std::size_t>(count)); }
    void push(Box<Key> box) { boxes_.emplace_back(box); }
    Box<Key> operator[](std::size_t index) const { return boxes_[index].get(); }
    [[nodiscard]] std::size_t size() const { return boxes_.size(); }

   private:
    std::vector<std::unique_ptr<KeyBox<Key>>> boxes_;
  };
};

// What the natives store for a key.
struct KeyAndValue {
  const void* key;
  const void* value;
};

// Container maps a Key to KeyAndValue.
template <class Container>
class ContainerMap {
 public:
  using Key = typename Container::key_type;

  void put(const KeyBox<Key>* key, const void* value) { map_[key->value] = {key, value}; }
  [[nodiscard]] const void* find(const KeyBox<Key>* key) const {
    const auto found = map_.find(key->value);
    return found != map_.end() ? found->second.value : nullptr;
  }
  bool remove(const KeyBox<Key>* key) { return map_.erase(key->value) != 0; }

  template <class Visit>
  void forEach(Visit visit) const {
    for (const auto& entry : map_) visit(entry.second.value);
  }
  void listKeys() const {
    list([](const KeyAndValue& entry) { return entry.key; });
  }
  void listValues() const {
    list([](const KeyAndValue& entry) { return entry.value; });
  }

  void dropBoxes() const {
    for (const auto& entry : map_) {
      delete static_cast<const KeyBox<Key>*>(entry.second.key);
      delete static_cast<const KeyBox<Int>*>(entry.second.value);
    }
  }

 private:
  template <class Choose>
  void list(Choose choose) const {
    std::vector<const void*> listed;
    listed.reserve(map_.size());
    for (const auto& entry : map_) listed.push_back(choose(entry.second));
    keep(listed.data());
  }

  Container map_;
};

// Container maps an Int to the box that holds it.
template <class Container>
class ContainerSet {
 public:
  void put(const KeyBox<Int>* key, const KeyBox<Int>* /*value*/) { set_[key->value] = key; }
  [[nodiscard]] bool find(const KeyBox<Int>* key) const { return set_.find(key->value) != set_.end(); }

  void listValues() const {
    std::vector<const void*> listed;
    listed.reserve(set_.size());
    for (const auto& entry : set_) listed.push_back(entry.second);
    keep(listed.data());
  }
  void dropBoxes() const {
    for (const auto& entry : set_) delete entry.second;
  }

 private:
  Container set_;
};

// Container maps an Int to containers that map an Int to KeyAndValue.
template <class Container>
class ContainerOfMaps {
 public:
  void put(const KeyBox<Int>* outer, const KeyBox<Int>* inner, const void* value) {
    maps_[outer->value][inner->value] = {inner, value};
  }
  [[nodiscard]] const void* find(const KeyBox<Int>* outer, const KeyBox<Int>* inner) const {
    const auto map = maps_.find(outer->value);
    if (map == maps_.end()) return nullptr;
    const auto found = map->second.find(inner->value);
    return found != map->second.end() ? found->second.value : nullptr;
  }

 private:
  Container maps_;
};

// A map and its mutex.
template <class Map>
class LockedMap {
 public:
  void put(const KeyBox<Int>* key, const void* value) {
    const std::lock_guard<std::mutex> lock(mutex_);
    map_.put(const_cast<KeyBox<Int>*>(key), const_cast<void*>(value));
  }
  [[nodiscard]] const void* find(const KeyBox<Int>* key) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return map_.find(key);
  }

 private:
  Map map_;
  std::mutex mutex_;
};

// A library of containers: HashMap and TreeMap are templates of a key and what is stored for it.
template <template <class, class> class HashMap, template <class, class> class TreeMap>
struct Containers : MallocBoxes {
  static constexpr std::int64_t kLargestGrowth = kLarge;
  static constexpr std::int64_t kLargestSortedMap = kLarge;

  template <class Key>
  using Map = ContainerMap<HashMap<Key, KeyAndValue>>;
  using SortedMap = ContainerMap<TreeMap<Int, KeyAndValue>>;
  using SyncMap = LockedMap<Map<Int>>;
  using Set = ContainerSet<HashMap<Int, const KeyBox<Int>*>>;
  using MapOfMaps = ContainerOfMaps<HashMap<Int, HashMap<Int, KeyAndValue>>>;
};

}  // namespace vorn::bench
