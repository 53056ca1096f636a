// Searches by value. The caller holds the list's lock. All of them may run user equality, which may change an
// unsynchronised list underneath; an error that it raises ends the search with the neutral result.
#pragma once

struct ListData;

// Index of the first (or last) element equal to the value at or after (before) `start`, or -1; shared with immutable
// lists. Leaves primitive storage as it is: a value of another type is simply not found.
long long arrayListIndexOfLocked(ListData& list, void* value, long long start, bool last);

namespace vorn::collections {

// The three below turn a primitive list into boxed storage for good when the value is not of the elements' own type.
// Allocates then.

// Number of elements equal to the value.
long long countEqual(ListData& list, void* value);

// Whether an element equals the value.
bool containsEqual(ListData& list, void* value);

// Removes the first element equal to the value. When equality itself changed the list, so that the element it matched
// no longer stands at its place, nothing is removed and the result is false.
bool removeEqual(ListData& list, void* value);

}  // namespace vorn::collections
