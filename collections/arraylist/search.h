// The search shared by list and immutable list natives.
#pragma once

struct ListData;

// Index of the first (or last) element equal to the value at or after (before) `start`, or -1. The caller holds the
// list's lock. Leaves primitive storage as it is: a value of another type is simply not found. May run user code; an
// error raised by it ends the search with -1.
long long arrayListIndexOfLocked(ListData& list, void* value, long long start, bool last);
