// A mutex that shows whether a native locks a list.
#pragma once

#include "collections/core/port/object_layout.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {

class HeldMutex : public HeldRecordMutex<ListData> {
 public:
  explicit HeldMutex(void* list) : HeldRecordMutex(*getListData(list)) {}
};

}  // namespace vorn::tests
