// New lists that natives return.
#pragma once

struct ListData;

// An empty list of the receiver's family: the receiver's own class when it is linked, else an ArrayList or
// ArrayListSync. Null, with *out null, when it cannot be had. Allocates.
void* allocateMutableListResultLike(void* list, ListData** out);

namespace vorn::collections {

// A new, empty list of the named class (the receiver's class when null). Null as above. Allocates.
void* allocateListOfClass(const char* className, ListData** out);

}  // namespace vorn::collections
