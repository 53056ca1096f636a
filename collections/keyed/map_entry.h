// What a map stores per key, and what a copy of it holds.
#pragma once

struct NativeMapEntry {
  void* key;    // the handle given to put last
  void* value;  // may be null
};

struct MapEntrySnapshot {
  void* key;
  void* value;
};
