// What stands behind a collection: the one place of the console that looks into the library's records.
#pragma once

#include <cstdint>
#include <string>

namespace vorn::console {

struct StorageView {
  std::string live;      // which storage holds the elements: "unboxed Int", "boxed", "linked nodes", "hash table"
  std::string declared;  // the declared element type, or what a map has recorded; "" for none
  std::uint64_t size = 0;
  std::uint64_t capacity = 0;  // in elements; 0 where there is no such bound
  bool isInline = false;       // whether the elements stand in the object itself
  std::uint64_t bytesPerElement = 0;
  std::uint64_t buckets = 0;  // of a hash table that has grown to have them
  bool hashed = false;
  bool synchronised = false;
};

// Reads the record under its lock. False for what is no collection with a record (tuples, user objects, texts).
bool viewStorage(void* handle, StorageView& view);

}  // namespace vorn::console
