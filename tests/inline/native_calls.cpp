// The wrappers that the linker puts in the place of what forms fall back to (--wrap).
#include <utility>

#include "tests/inline/inline_cases.h"

namespace vorn::tests {
namespace {

std::vector<std::string> calls;

void note(const char* name) { calls.emplace_back(name); }

}  // namespace

std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

}  // namespace vorn::tests

using vorn::tests::note;

// One for each function: its result, name, parameters and arguments.
#define VORN_WRAPPED(Result, name, parameters, arguments) \
  extern "C" Result __real_##name parameters;             \
  extern "C" Result __wrap_##name parameters;             \
  extern "C" Result __wrap_##name parameters {            \
    note(#name);                                          \
    return __real_##name arguments;                       \
  }

VORN_WRAPPED(long long, vorn_collections_ArrayList_size, (void* list), (list))
VORN_WRAPPED(long long, vorn_collections_ArrayList_getInt, (void* list, long long index), (list, index))
VORN_WRAPPED(double, vorn_collections_ArrayList_getDouble, (void* list, long long index), (list, index))
VORN_WRAPPED(void*, vorn_collections_ArrayList_operator_index, (void* list, long long index), (list, index))
VORN_WRAPPED(void, vorn_collections_ArrayList_operator_index_eq, (void* list, long long index, void* value),
             (list, index, value))
VORN_WRAPPED(void, vorn_collections_ArrayList_removeAt, (void* list, long long index), (list, index))
VORN_WRAPPED(void, vorn_collections_ArrayList_add, (void* list, void* value), (list, value))
VORN_WRAPPED(void, vorn_collections_ArrayList_addInt, (void* list, long long value), (list, value))
VORN_WRAPPED(void, vorn_collections_ArrayList_addPrimitiveI64, (void* list, long long value, const char* type),
             (list, value, type))
VORN_WRAPPED(void, vorn_collections_ArrayList_addPrimitiveDouble, (void* list, double value, const char* type),
             (list, value, type))
VORN_WRAPPED(void, vorn_collections_ArrayList_addPrimitiveBool, (void* list, bool value), (list, value))
VORN_WRAPPED(void, vorn_inline_set_boxed_integer, (void* list, long long index, long long value, int type),
             (list, index, value, type))
VORN_WRAPPED(void, vorn_inline_set_boxed_floating, (void* list, long long index, double value, int type),
             (list, index, value, type))
VORN_WRAPPED(long long, vorn_collections_Array_size, (void* array), (array))
VORN_WRAPPED(long long, vorn_collections_Array_getInt, (void* array, long long index), (array, index))
VORN_WRAPPED(double, vorn_collections_Array_getDouble, (void* array, long long index), (array, index))
VORN_WRAPPED(void*, vorn_collections_Array_operator_index, (void* array, long long index), (array, index))
VORN_WRAPPED(void, vorn_collections_Array_setInt, (void* array, long long index, long long value),
             (array, index, value))
VORN_WRAPPED(void, vorn_collections_Array_setDouble, (void* array, long long index, double value),
             (array, index, value))
VORN_WRAPPED(void, vorn_collections_Array_setBool, (void* array, long long index, bool value), (array, index, value))
VORN_WRAPPED(void*, vorn_collections_Tuple_operator_index, (void* tuple, long long index), (tuple, index))
VORN_WRAPPED(bool, vorn_collections_Map_tryGet, (void* map, void* key, void** result), (map, key, result))
VORN_WRAPPED(bool, vorn_collections_HashSet_operator_in, (void* set, void* value), (set, value))
