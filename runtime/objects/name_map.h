// A map from names to values that only ever grows and is read without locks.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace vorn::runtime {

// Type names are looked up by every thread all the time and added rarely, and nothing that was handed out may move. The
// bucket count is fixed: programs have hundreds of type names, and at a few thousand a chain still holds one or two.
// Constant-initialised and never destroyed, so that it works before and after static initialisers and destructors.
template <class Value>
class NameMap {
 public:
  struct Entry {
    Entry* next;
    std::size_t hash;
    const std::string name;
    Value value;
  };

  constexpr NameMap() = default;
  NameMap(const NameMap&) = delete;
  NameMap& operator=(const NameMap&) = delete;

  // The entry of a name, or null.
  [[nodiscard]] const Entry* find(std::string_view name) const {
    const std::size_t hash = std::hash<std::string_view>{}(name);
    for (const Entry* entry = bucketOf(hash).load(std::memory_order_acquire); entry != nullptr; entry = entry->next) {
      if (entry->hash == hash && entry->name == name) return entry;
    }
    return nullptr;
  }

  // An entry that stands nowhere yet; std::bad_alloc.
  [[nodiscard]] static std::unique_ptr<Entry> prepare(std::string_view name, Value value) {
    return std::unique_ptr<Entry>(
        new Entry{nullptr, std::hash<std::string_view>{}(name), std::string(name), std::move(value)});
  }

  // Adds an entry, whose name must be new. Cannot fail. Callers serialise additions among themselves.
  const Entry* add(std::unique_ptr<Entry> prepared) noexcept {
    Entry* const entry = prepared.release();
    std::atomic<Entry*>& bucket = bucketOf(entry->hash);
    entry->next = bucket.load(std::memory_order_relaxed);
    bucket.store(entry, std::memory_order_release);
    return entry;
  }

  // The entry of a name, added with the value when there is none. Callers serialise additions among themselves.
  const Entry* findOrAdd(std::string_view name, Value value) {
    const Entry* present = find(name);
    return present != nullptr ? present : add(prepare(name, std::move(value)));
  }

 private:
  static constexpr std::size_t kBuckets = 4096;

  [[nodiscard]] const std::atomic<Entry*>& bucketOf(std::size_t hash) const { return buckets_[hash % kBuckets]; }
  std::atomic<Entry*>& bucketOf(std::size_t hash) { return buckets_[hash % kBuckets]; }

  std::array<std::atomic<Entry*>, kBuckets> buckets_{};
};

}  // namespace vorn::runtime
