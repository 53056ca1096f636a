// The object layout that the runtime and this library share.
//
// The library reaches most of the runtime through the functions that the headers beside this one declare. Finding the
// native record behind a handle is the one thing every native does, some of them in two nanoseconds altogether, so that
// part is a compile-time contract instead: the shape of an object's first words, and the inline tests and reads below.
//
// An object is 16-byte aligned and starts with an ObjectRecord. Its header word is, from the lowest byte up: 0xFF, six
// bytes of 0xF8 to 0xFF whose low three bits are derived from the object's own address, and the kind byte. None of the
// seven magic bytes is NUL or can occur in UTF-8 text, and a copy of an object's bytes at another address does not pass
// for an object.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "collections/core/kinds.h"

struct ListData;
struct ArrayData;
struct MapData;
struct SetData;

// The runtime's class descriptor. This library knows its first byte only, and that it outlives every object.
struct RuntimeClass;

// What a class descriptor starts with. Unboxing a value is on the path of every store and search by value, and asking
// for its type name there cost more than everything else together.
struct RuntimeClassHead {
  vorn::collections::PrimitiveType boxedType;  // None for objects that are no boxes
};

// A field of the objects of a class.
struct ObjectField {
  enum class Kind : std::uint8_t { Integer = 1, Floating = 2, Boolean = 3, Handle = 4 };

  Kind kind;
  std::uint32_t offset;   // from the start of the object; every field is one word
  std::string_view name;  // NUL-terminated
};

// What an object is. The value 1 is fixed: a registered record of that kind is an integer box. No kind is 0, so the
// header holds no NUL. The four boxes come first: objects of these kinds are RegisteredObjects.
enum class ObjectKind : std::uint8_t {
  IntegerBox = 1,  // SByte, Byte, Short, UShort, Int, UInt, Long, ULong
  FloatingBox = 2,
  BooleanBox = 3,
  CharacterBox = 4,  // Char, CodeUnit
  String = 5,
  Instance = 6,  // an object of a user class
  Type = 7,
  Tuple = 8,
  List = 9,  // every class whose native record is a ListData
  Array = 10,
  Map = 11,
  Set = 12,
};

// The runtime's record of an object, at the address that the handle holds.
struct ObjectRecord {
  std::uint64_t header;
  const RuntimeClass* runtimeClass;
  void* nativeRecord;  // ListData, ArrayData, MapData or SetData; null when none is attached

  [[nodiscard]] ObjectKind kind() const { return static_cast<ObjectKind>(header >> 56); }
};

// The runtime's record of a boxed value. Only for kind() == ObjectKind::IntegerBox is `integer` the box's value as the
// library may read it; floating boxes keep the bits of a double there, Boolean and character boxes their integer.
struct RegisteredObject : ObjectRecord {
  std::int64_t integer;
};

// The runtime's record of a String.
struct StringObject : ObjectRecord {
  const char* text;  // and a NUL; sixteen bytes are readable at least, and zero from the text's end to the sixteenth
  std::uint64_t length;
};

// The runtime's record of a map or set. The natives keep `size`, which is the object's field of that name, equal to the
// number of entries.
struct SizedObject : ObjectRecord {
  std::int64_t size;
};

// The primitive type of a box; None for every other object.
inline vorn::collections::PrimitiveType boxedTypeOf(const ObjectRecord& object) {
  return reinterpret_cast<const RuntimeClassHead*>(object.runtimeClass)->boxedType;
}

static_assert(std::endian::native == std::endian::little, "the header word is laid out for little-endian machines");
static_assert(sizeof(ObjectRecord) == 24 && sizeof(RegisteredObject) == 32, "boxes are 32 bytes");
static_assert(sizeof(StringObject) == 40, "the text follows the object record");
static_assert(sizeof(SizedObject) == 32, "the size follows the object record");

inline constexpr std::uintptr_t kObjectAlignment = 16;

// The header of an object of the given kind at the given address. A product's bits mix all lower bits of its factor, so
// that the address bits need no shifting into place.
inline std::uint64_t objectHeaderFor(const void* address, ObjectKind kind) {
  const std::uint64_t mixed = reinterpret_cast<std::uintptr_t>(address) * 0x9E3779B97F4A7C15ULL;
  constexpr std::uint64_t kPattern = 0x00F8F8F8F8F8F8FFULL;
  constexpr std::uint64_t kAddressBits = 0x0007070707070700ULL;
  return (mixed & kAddressBits) | kPattern | (static_cast<std::uint64_t>(kind) << 56);
}

#if defined(__SANITIZE_ADDRESS__)
#define VORN_READS_ANY_WORD __attribute__((no_sanitize("address")))
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VORN_READS_ANY_WORD __attribute__((no_sanitize("address")))
#endif
#endif
#ifndef VORN_READS_ANY_WORD
#define VORN_READS_ANY_WORD
#endif

// The word where the header of an object would be, or 0 when the handle cannot be an object. Safe for every readable
// pointer, though a short text may end before the word does: an aligned word never crosses a page, and no text starts as
// a header does, whatever follows it. Null gives 0.
VORN_READS_ANY_WORD inline std::uint64_t objectHeaderAt(const void* handle) {
  using Word = std::uint64_t __attribute__((may_alias));
  if (handle == nullptr || (reinterpret_cast<std::uintptr_t>(handle) & (kObjectAlignment - 1)) != 0) return 0;
  return *static_cast<const Word*>(handle);
}

// Whether the handle points at a live object record of the runtime. Null and text pointers give false.
inline bool hasObjectMagic(const void* handle) {
  constexpr std::uint64_t kMagicBytes = 0x00FFFFFFFFFFFFFFULL;
  const std::uint64_t header = objectHeaderAt(handle);
  return header != 0 && ((header ^ objectHeaderFor(handle, ObjectKind::IntegerBox)) & kMagicBytes) == 0;
}

// Whether the handle is a real object, not a bare text or foreign pointer. Safe for every readable pointer.
inline bool isObjectPointer(const void* handle) { return hasObjectMagic(handle); }

// The object record of a handle that has the magic; null for any other handle.
inline ObjectRecord* getObject(void* handle) {
  return hasObjectMagic(handle) ? static_cast<ObjectRecord*>(handle) : nullptr;
}

// Whether the handle is an object of the language's String. An instance of a class that only bears the name is none.
inline bool isStringObject(const void* handle) {
  return objectHeaderAt(handle) == objectHeaderFor(handle, ObjectKind::String);
}

// The class of an object; null for any other handle.
inline const RuntimeClass* classOfObject(const void* handle) {
  return hasObjectMagic(handle) ? static_cast<const ObjectRecord*>(handle)->runtimeClass : nullptr;
}

// The record of a boxed value, or null when the handle is not an object. Callers look at kind() before `integer`.
inline const RegisteredObject* getRegisteredObjectUnsafe(const void* handle) {
  return hasObjectMagic(handle) ? static_cast<const RegisteredObject*>(handle) : nullptr;
}

// Ends the process with a message that names the handle's type and the family that was expected.
[[noreturn]] __attribute__((cold, visibility("default"))) void runtimeWrongRecordFamily(const void* handle,
                                                                                        ObjectKind expected);

// The native record of an object of one family, or null when the handle is not such an object or has no record: the
// fast paths' way in, which falls back to the getters below.
template <class Record>
inline Record* nativeRecordOrNull(void* handle, ObjectKind family) {
  if (objectHeaderAt(handle) != objectHeaderFor(handle, family)) return nullptr;
  return static_cast<Record*>(static_cast<ObjectRecord*>(handle)->nativeRecord);
}

// The native record of an object of one family. A handle of another family ends the process: one comparison tests
// magic and kind together.
template <class Record>
inline Record* nativeRecordOf(void* handle, ObjectKind family) {
  if (objectHeaderAt(handle) != objectHeaderFor(handle, family)) [[unlikely]]
    runtimeWrongRecordFamily(handle, family);
  return static_cast<Record*>(static_cast<ObjectRecord*>(handle)->nativeRecord);
}

inline ListData* getListData(void* handle) { return nativeRecordOf<ListData>(handle, ObjectKind::List); }
inline ArrayData* getArrayData(void* handle) { return nativeRecordOf<ArrayData>(handle, ObjectKind::Array); }
inline MapData* getMapData(void* handle) { return nativeRecordOf<MapData>(handle, ObjectKind::Map); }
inline SetData* getSetData(void* handle) { return nativeRecordOf<SetData>(handle, ObjectKind::Set); }
