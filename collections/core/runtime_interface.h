// The operations of the runtime that this library calls, each with what the library expects of it.
//
// These functions are the library's only undefined symbols; whoever links the library provides them. What is needed
// at compile time (finding and reading objects) is in runtime_object_layout.h. Conventions for the whole file:
//  - a handle is an untyped pointer to an object, or a bare NUL-terminated UTF-8 text, or null;
//  - `const char*` names and texts are NUL-terminated; a string_view is a byte string that need not be;
//  - "allocates" means that the collector may run inside the call, on this thread: handles that only the caller's
//    frame holds must be rooted (roots.h). The receiver and the arguments of a call are kept alive by its caller;
//  - memory exhaustion inside an allocating operation is std::bad_alloc unless a null result is documented.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "collections/core/array_slot_kind.h"
#include "collections/core/collection_key.h"
#include "collections/core/runtime_object_layout.h"
#include "collections/core/runtime_type_name.h"

#pragma GCC visibility push(default)

// ---- Errors ---------------------------------------------------------------------------------------------------------

extern "C" {

// Records a pending language error of that class with that message on the current thread and returns. Nothing is
// thrown; the native then unwinds its own state and returns its neutral result. Copies both texts.
void Vorn_raise(const char* exceptionClass, const char* message);

// Nonzero while an error raised on this thread has not been handled.
int Vorn_hasPendingError();

// How many errors this thread has raised so far, handled ones included. It only grows, so that code which ran user code
// can tell a new error from one that was pending before.
unsigned long long Vorn_raisedErrorCount();

// How many threads have a pending error: lets hasPendingError, below, answer no without a call.
extern std::atomic<std::uint32_t> Vorn_threadsWithPendingErrors;
}

// The same as Vorn_hasPendingError. A thread's own raise is always seen: it counts its thread before it returns.
inline bool hasPendingError() {
  return Vorn_threadsWithPendingErrors.load(std::memory_order_relaxed) != 0 && Vorn_hasPendingError() != 0;
}

extern "C" {

// ---- Collected memory -----------------------------------------------------------------------------------------------

// A 16-byte aligned block that the collector scans for handles; zeroed or not. Null on exhaustion. Allocates.
void* Vorn_gcAlloc(std::size_t bytes);

// A 16-byte aligned block that the collector never scans; contents undefined. Null on exhaustion. Allocates.
void* Vorn_gcAllocAtomic(std::size_t bytes);

// Adds or removes [start, start + bytes) as roots of this thread. Registrations nest; a range is removed by the same
// start and length that added it. Neither allocates nor fails.
void Vorn_gcRegisterRootRange(void* start, std::size_t bytes);
void Vorn_gcUnregisterRootRange(void* start, std::size_t bytes);

// The same for one handle slot.
void Vorn_gcRegisterRootSlot(void** slot);
void Vorn_gcUnregisterRootSlot(void** slot);

// ---- Objects --------------------------------------------------------------------------------------------------------

// A new ArrayList (ArrayListSync when the flag is set) with an initialised empty record, which is stored in *listData.
// The third argument is a hint that the elements will be handles. Null on failure. Allocates.
void* Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool elementsAreHandles);

// A new instance of the named class: any built-in or user class by short, full or generic name. A list's declared
// element type comes from the name's type argument. Null when there is no such class. Allocates.
void* Vorn_allocObject(const char* className);

// Fields by name. Boxed values keep theirs in "_value". A missing field reads as 0, 0.0, false or null, and a write to
// it is ignored; a numeric field read as another numeric type is converted. Maps, sets and tuples have the integer
// field "size", 0 when new; a tuple's items are "_0", "_1", ..., and writing one that there is no room for makes room.
// Runs no user code; only Vorn_setField_ptr on a tuple allocates.
long long Vorn_getField_i64(void* handle, const char* field);
double Vorn_getField_double(void* handle, const char* field);
bool Vorn_getField_i1(void* handle, const char* field);
void* Vorn_getField_ptr(void* handle, const char* field);
void Vorn_setField_i64(void* handle, const char* field, long long value);
void Vorn_setField_ptr(void* handle, const char* field, void* value);

// The runtime type name, such as "vorn.Int" or "vorn.collections.ArrayList<Int>"; "vorn.String" for a bare text; null
// for null. The text lives as long as the process.
const char* Vorn_objectTypeName(void* handle);

// Whether the handle is an instance of the named class or of a class derived from it; names as in Vorn_allocObject.
bool Vorn_isInstanceOf(void* handle, const char* typeName);
}

// A field of an object by name, or null. Items of a tuple have no description.
ObjectField* findObjectField(ObjectRecord* object, const char* field);

// ---- Values ---------------------------------------------------------------------------------------------------------

extern "C" {
// One of the two shared Boolean boxes. Does not allocate.
void* Vorn_boxBool(bool value);

// Nonzero when both texts are equal; null equals only null.
int Vorn_strEquals(const char* left, const char* right);
}

// A new box of the named integer-like type ("Int", "Byte", "Char", "CodeUnit", ...); all 64 bits are kept. Another
// name boxes as "Int" when the value fits 32 bits, else as "Long". "Boolean" gives the shared box. Allocates.
void* boxIntegerLikeLocal(std::string_view typeName, long long value);

// A new "Float" or "Double" box ("Double" for another name). Allocates.
void* boxFloatingLikeLocal(std::string_view typeName, double value);

// A new String object. Allocates.
void* Vorn_allocString(std::string_view text);

// The text of a String object or of a bare text; the view holds while the handle is alive.
std::string stringValueFromPtr(void* handle);
std::string_view stringTextFromPtr(void* handle);

// ---- Array slots and characters
// ----------------------------------------------------------------------------------------

// The slot kind of an element type name, short or full; Object for every name that is no primitive type. Char has the
// slots of UInt32, CodeUnit those of UInt16.
ArraySlotKind slotKindForArrayElementType(std::string_view typeName);

// Unboxes a value for a slot: integers of the eight types, numbers of those and the floating types, Booleans. False,
// with nothing stored, for any other value. None allocates or runs user code.
bool extractArrayElementInteger(void* value, long long& integer);
bool extractArrayElementDouble(void* value, double& floating);
bool extractArrayElementBool(void* value, bool& truth);

extern "C" {
// The value when it is a Unicode scalar or a 16-bit code unit; otherwise 0, after raising what storing it into a list
// of that type raises.
long long Vorn_intToChar(long long value);
long long Vorn_intToCodeUnit(long long value);

// The UTF-8 text of a code unit that is no surrogate; null above 0xFFFF. Lives as long as the process.
const char* Vorn_codeUnitToString(long long unit);
}

// ---- Type names -----------------------------------------------------------------------------------------------------

// The type name without its module prefix ("vorn.collections.Map<vorn.String, Int>" gives "Map<vorn.String, Int>");
// the local variant is the one used for element types. The result is a suffix of the argument, so that it is
// NUL-terminated when the argument is. Neither allocates.
std::string_view shortTypeName(std::string_view typeName);
std::string_view shortTypeNameLocal(std::string_view typeName);

// The shared, interned handle of a name; the null handle for the empty name. Does not touch the collected heap.
RuntimeTypeName internRuntimeTypeName(std::string_view name);

// The short collection class name without type arguments ("vorn.collections.LinkedList<Int>" gives "LinkedList").
std::string_view runtimeCollectionBaseName(std::string_view typeName);

// Class families of a runtime type name, short or full, generic or not.
bool isArrayListLike(std::string_view typeName);      // ArrayList, ArrayListSync, LinkedList, LinkedListSync
bool isSyncArrayListLike(std::string_view typeName);  // ArrayListSync, LinkedListSync
bool isLinkedListLike(std::string_view typeName);     // LinkedList, LinkedListSync
bool isImmutableListLike(std::string_view typeName);
bool isIListLike(std::string_view typeName);  // the four list classes and ImmutableList
bool isArrayLike(std::string_view typeName);
bool isSyncArrayLike(std::string_view typeName);
bool isTupleLike(std::string_view typeName);
bool isMapLike(std::string_view typeName);
bool isHashSetLike(std::string_view typeName);
bool isSyncHashSetLike(std::string_view typeName);

// Whether a short type name is "Float" or "Double".
bool isFloatingNumberShortType(std::string_view shortName);

namespace vorn::compiler {
struct ClassLoader {
  // Splits a generic type name into its concrete argument names; false when it has none.
  static bool resolveConcreteGenericArgs(std::string_view typeName, std::vector<std::string>& arguments);
};
}  // namespace vorn::compiler

// ---- Keys -----------------------------------------------------------------------------------------------------------

// The key of a map for a non-null handle. A key borrows: the text of a long text key and the object behind the last
// three tags live as long as the handle does. The hash of an instance comes from its class's hook, so user code may run
// and raise; then an error is pending and the key must not be used. May allocate.
NativeCollectionKey makeNativeCollectionKey(void* handle);

// The same key for an ordered table, which never looks at hashes: it has none, and making it runs no user code, raises
// nothing and does not allocate.
NativeCollectionKey makeNativeOrderedCollectionKey(void* handle);

// The key of a text, which it borrows: the same as that of a String object with that text.
NativeCollectionKey makeNativeStringCollectionKey(std::string_view text);

// The key of a set's element: as for a map, and null has a key too.
NativeCollectionKey makeNativeSetCollectionKey(void* handle);

// The type name to record for a map key: the short name of its class, "String" for texts; empty for null. Lives as
// long as the process.
std::string_view mapKeyRuntimeTypeName(void* key);

// The key type name of a whole map: the recorded one, or "Object". Read under the map's lock. Lives as long as the
// process.
std::string_view resolveMapKeyTypeName(void* map);

// The text of a map key that is a floating number, without quotes; the empty string for any other handle.
std::string mapKeyString(void* key);

// ---- Numbers, equality, order ---------------------------------------------------------------------------------------

// A number of any kind, exactly. Zero-initialised it is the signed integer 0.
struct NativeNumericValue {
  enum class Kind : std::uint8_t { Signed = 0, Unsigned = 1, Floating = 2 };
  Kind kind;
  std::uint64_t payload;  // the integer's bits, or the double's
};

// Whether the handle is a boxed number (the eight integer types, Float, Double), and which. Runs no user code.
bool tryReadNativeNumericValue(void* handle, NativeNumericValue& value);

// 0 exactly when the two numbers are equal across kinds, without rounding; a NaN equals nothing, itself included.
int compareNativeNumericValues(const NativeNumericValue& left, const NativeNumericValue& right);

// A total preorder for sorting: by value across kinds, -0.0 equal to 0.0, NaNs equal to each other and last.
int compareNativeNumericValuesForSort(const NativeNumericValue& left, const NativeNumericValue& right);

// Nonzero when two values are structurally equal. May run user code, raise and allocate.
extern "C" int Vorn_deepEquals(void* left, void* right);

// True when both objects could be compared as collections (or by the runtime's own content rule); `equal` then tells
// the result. May run user code, raise and allocate.
bool Vorn_collectionObjectsEqual(void* left, void* right, bool& equal);

// Negative, zero or positive: the order of two String objects, all at once what the two questions here ask for. Runs
// no user code and does not allocate.
int compareStringObjects(void* left, void* right);

// True when the two objects could be ordered; `less` then tells whether left comes first. May run user code, raise and
// allocate.
bool Vorn_collectionObjectsLess(void* left, void* right, bool& less);

// ---- Text -----------------------------------------------------------------------------------------------------------

// The language's toString of an object: NUL-terminated text, or null. The text of a String object or a bare text is
// its own; that of a collection is its display; otherwise user code may run, and the text is a new collected block. The
// texts of numbers and Booleans are those of the two functions below, "true" and "false". Allocates.
extern "C" const char* Vorn_objectToString(void* handle);

// The decimal text of an integer boxed as the named type: unsigned for "ULong", whose values are passed by their bits,
// signed for every other name.
std::string integerLikeToDisplayString(std::string_view shortName, long long value);

// The text of a floating number: the shortest that reads back, always with a point or an exponent; "NaN", "Infinity",
// "-Infinity".
std::string formatVornFloat(double value);

// A text as it stands between double quotes: quotes, backslashes and control characters (below U+0020) escaped as in
// JSON, and all else as it is.
std::string escapeDisplayString(std::string_view text);

// The default text of an object that is no number, text or collection, under the given class name: a character's own
// text, what the toString of a user class gives, else the class name with the fields. May run user code, raise and
// allocate.
std::string formatObjectDefault(void* object, std::string_view className);

// Pseudo-random bits for shuffling. Thread-safe.
std::uint64_t nextFastRandomU64();

#pragma GCC visibility pop
