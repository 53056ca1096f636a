// Sorting handles; shared with immutable lists and arrays.
#pragma once

#include <cstdint>

struct ListData;

namespace vorn::collections {

// Sorts handles by the element ordering, in place and unstably. The caller has rooted them: the ordering may run user
// code. Strings are sorted beside a copy of their beginnings; throws std::bad_alloc, with nothing changed, when there
// is no memory for it. Once that has raised, no more of it runs and the handles are in some order; false then.
bool sortHandles(void** handles, std::uint64_t count);

// The same, going on after errors: pairs whose comparison raised count as equal.
void sortHandlesThroughErrors(void** handles, std::uint64_t count);

// Sorts a list's object or linked storage: all-numeric array-backed lists by value (stably up to 32 elements, without a
// heap block), everything else by the element ordering. The caller holds the lock. User code that raises leaves the
// list as it was; user code that changes the list meets a write-back that stays within what is there. Allocates.
void sortObjects(ListData& list);

}  // namespace vorn::collections
