/* What the inline forms share: the types of elements, the tests of receivers, and loads and stores by offset. Part of
 * <vorn/collections/inline.h>, which tells what may be relied on. */
#ifndef VORN_COLLECTIONS_INLINE_OBJECTS_H
#define VORN_COLLECTIONS_INLINE_OBJECTS_H

/* NOLINTBEGIN(modernize-*): C needs it so */
#include <vorn/collections/export.h>
#include <vorn/collections/inline_layout.h>

#include <stddef.h>
#include <stdint.h>
#include <string.h>

/* How the forms are defined. They are worth their code where the type that they are given is a constant and what
 * surrounds them is known, so compilers are not asked whether. Whoever wants them as functions that can be linked, as
 * libvorn_inline.bc has them, defines this mark first. */
#ifndef VORN_INLINE
#define VORN_INLINE static inline __attribute__((always_inline, unused))
#endif

/* What only the forms call. A build that counts what tests run defines both marks without always_inline: a branch would
 * be counted anew wherever it is inlined. */
#ifndef VORN_INLINE_PART
#define VORN_INLINE_PART static inline __attribute__((always_inline, unused))
#endif

#if !defined(VORN_INLINE_CHECKS) && !defined(NDEBUG)
/* Whether forms for proven receivers check what they are told. Debug builds do. */
#define VORN_INLINE_CHECKS 1
#elif !defined(VORN_INLINE_CHECKS)
#define VORN_INLINE_CHECKS 0
#endif

#if defined(__SANITIZE_THREAD__)
#define VORN_INLINE_CHECKS_THREADS 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VORN_INLINE_CHECKS_THREADS 1
#endif
#endif
#ifndef VORN_INLINE_CHECKS_THREADS
/* Whether a checker of threads looks on. */
#define VORN_INLINE_CHECKS_THREADS 0
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The primitive types, by the numbers that the library has for them. Forms that take one are made for a constant:
 * everything that depends on it is then decided by the compiler. */
typedef enum vorn_element_type {
  VORN_HANDLES = 0,    /* no primitive type: elements are handles */
  VORN_SBYTE = 1,      /* int8_t */
  VORN_BYTE = 2,       /* uint8_t */
  VORN_SHORT = 3,      /* int16_t */
  VORN_USHORT = 4,     /* uint16_t */
  VORN_INT = 5,        /* int32_t */
  VORN_UINT = 6,       /* uint32_t */
  VORN_LONG = 7,       /* int64_t */
  VORN_ULONG = 8,      /* uint64_t */
  VORN_FLOAT = 9,      /* float */
  VORN_DOUBLE = 10,    /* double */
  VORN_BOOLEAN = 11,   /* uint8_t, true unless 0 */
  VORN_CHAR = 12,      /* uint32_t, a Unicode scalar */
  VORN_CODE_UNIT = 13, /* uint16_t */
} vorn_element_type;

/* ---- The version of the layout ------------------------------------------------------------------------------------- */

/* Ends the process with a message that names both, unless the number is that of the layout which the library in use has.
 * Neither allocates nor starts a runtime. */
VORN_EXPORT void vorn_inline_require(int abi);

/* Ends the process with a message that names the handle's type, for a proven receiver that is no object of the kind. */
VORN_EXPORT void vorn_inline_wrong_receiver(void* receiver, int kind);

/* To be called once when a program starts, before any other function of these headers: ends the process with a message
 * when the program was compiled against another layout than the library in use has. */
VORN_INLINE void vorn_inline_check(void) { vorn_inline_require(VORN_INLINE_ABI); }

/* ---- Loads and stores ---------------------------------------------------------------------------------------------- */

/* The word, pointer or byte at an offset. */
VORN_INLINE_PART uint64_t vorn_inline_word(const void* object, int offset) {
  uint64_t word;
  memcpy(&word, (const char*)object + offset, sizeof(word));
  return word;
}
VORN_INLINE_PART void* vorn_inline_pointer(const void* object, int offset) {
  void* pointer;
  memcpy(&pointer, (const char*)object + offset, sizeof(pointer));
  return pointer;
}
VORN_INLINE_PART unsigned vorn_inline_byte(const void* object, int offset) {
  return ((const unsigned char*)object)[offset];
}
VORN_INLINE_PART void vorn_inline_set_word(void* object, int offset, uint64_t word) {
  memcpy((char*)object + offset, &word, sizeof(word));
}

/* ---- Types --------------------------------------------------------------------------------------------------------- */

/* The name of a type, as natives take it; null for VORN_HANDLES. */
VORN_INLINE_PART const char* vorn_inline_type_name(vorn_element_type type) {
  switch (type) {
    case VORN_SBYTE:
      return "SByte";
    case VORN_BYTE:
      return "Byte";
    case VORN_SHORT:
      return "Short";
    case VORN_USHORT:
      return "UShort";
    case VORN_INT:
      return "Int";
    case VORN_UINT:
      return "UInt";
    case VORN_LONG:
      return "Long";
    case VORN_ULONG:
      return "ULong";
    case VORN_FLOAT:
      return "Float";
    case VORN_DOUBLE:
      return "Double";
    case VORN_BOOLEAN:
      return "Boolean";
    case VORN_CHAR:
      return "Char";
    case VORN_CODE_UNIT:
      return "CodeUnit";
    case VORN_HANDLES:
      break;
  }
  return NULL;
}

/* The kind that elements of a type are kept as: characters as the numbers of their width. */
VORN_INLINE_PART unsigned vorn_inline_kind(vorn_element_type type) {
  if (type == VORN_CHAR) return VORN_UINT;
  return type == VORN_CODE_UNIT ? VORN_USHORT : type;
}

VORN_INLINE_PART bool vorn_inline_is_floating(vorn_element_type type) {
  return type == VORN_FLOAT || type == VORN_DOUBLE;
}

/* Whether the type is read and written as an integer. */
VORN_INLINE_PART bool vorn_inline_is_integral(vorn_element_type type) {
  return type != VORN_HANDLES && !vorn_inline_is_floating(type);
}

/* Whether elements of the type's kind may go by another name as well, so that the name must be looked at: the kinds of
 * characters, and those that raw values of unknown types are kept as. */
VORN_INLINE_PART bool vorn_inline_shares_kind(vorn_element_type type) {
  return type == VORN_USHORT || type == VORN_UINT || type == VORN_CHAR || type == VORN_CODE_UNIT || type == VORN_LONG ||
         type == VORN_DOUBLE;
}

/* Whether a type name, which may be null, is that of the type. */
VORN_INLINE_PART bool vorn_inline_names(const void* name, vorn_element_type type) {
  return name != NULL && vorn_inline_byte(name, VORN_INLINE_TYPE_NAME_TYPE) == (unsigned)type;
}

/* Whether the type has the value. */
VORN_INLINE_PART bool vorn_inline_has_value(vorn_element_type type, long long value) {
  switch (type) {
    case VORN_SBYTE:
      return value == (int8_t)value;
    case VORN_BYTE:
      return value == (uint8_t)value;
    case VORN_SHORT:
      return value == (int16_t)value;
    case VORN_USHORT:
    case VORN_CODE_UNIT:
      return value == (uint16_t)value;
    case VORN_INT:
      return value == (int32_t)value;
    case VORN_UINT:
      return value == (uint32_t)value;
    case VORN_CHAR:
      return (uint64_t)value < 0xD800 || (uint64_t)value - 0xE000 < 0x110000 - 0xE000;
    case VORN_ULONG:
      return value >= 0;
    case VORN_LONG:
      return true;
    default:
      return false;
  }
}

/* An element of unboxed storage as the natives for integers read and write it: at its width, extended by its sign or
 * with zeros; a Boolean as 0 or 1. */
VORN_INLINE_PART long long vorn_inline_load_integer(const void* data, uint64_t index, vorn_element_type type) {
  const char* const bytes = (const char*)data;
  if (type == VORN_SBYTE) return ((const signed char*)data)[index];
  if (type == VORN_BYTE) return ((const unsigned char*)data)[index];
  if (type == VORN_BOOLEAN) return ((const unsigned char*)data)[index] != 0;
  if (type == VORN_SHORT) {
    int16_t value;
    memcpy(&value, bytes + index * sizeof(value), sizeof(value));
    return value;
  }
  if (type == VORN_USHORT || type == VORN_CODE_UNIT) {
    uint16_t value;
    memcpy(&value, bytes + index * sizeof(value), sizeof(value));
    return value;
  }
  if (type == VORN_INT) {
    int32_t value;
    memcpy(&value, bytes + index * sizeof(value), sizeof(value));
    return value;
  }
  if (type == VORN_UINT || type == VORN_CHAR) {
    uint32_t value;
    memcpy(&value, bytes + index * sizeof(value), sizeof(value));
    return value;
  }
  int64_t value;
  memcpy(&value, bytes + index * sizeof(value), sizeof(value));
  return value;
}

/* Stores the value's low bits. */
VORN_INLINE_PART void vorn_inline_store_integer(void* data, uint64_t index, vorn_element_type type, long long value) {
  char* const bytes = (char*)data;
  if (type == VORN_SBYTE || type == VORN_BYTE) {
    ((unsigned char*)data)[index] = (unsigned char)value;
  } else if (type == VORN_BOOLEAN) {
    ((unsigned char*)data)[index] = value != 0;
  } else if (type == VORN_SHORT || type == VORN_USHORT || type == VORN_CODE_UNIT) {
    const uint16_t element = (uint16_t)value;
    memcpy(bytes + index * sizeof(element), &element, sizeof(element));
  } else if (type == VORN_INT || type == VORN_UINT || type == VORN_CHAR) {
    const uint32_t element = (uint32_t)value;
    memcpy(bytes + index * sizeof(element), &element, sizeof(element));
  } else {
    memcpy(bytes + index * sizeof(value), &value, sizeof(value));
  }
}

/* The same for the floating types. */
VORN_INLINE_PART double vorn_inline_load_floating(const void* data, uint64_t index, vorn_element_type type) {
  if (type == VORN_FLOAT) {
    float value;
    memcpy(&value, (const char*)data + index * sizeof(value), sizeof(value));
    return (double)value;
  }
  double value;
  memcpy(&value, (const char*)data + index * sizeof(value), sizeof(value));
  return value;
}
VORN_INLINE_PART void vorn_inline_store_floating(void* data, uint64_t index, vorn_element_type type, double value) {
  if (type == VORN_FLOAT) {
    const float element = (float)value;
    memcpy((char*)data + index * sizeof(element), &element, sizeof(element));
  } else {
    memcpy((char*)data + index * sizeof(value), &value, sizeof(value));
  }
}

/* ---- Receivers ----------------------------------------------------------------------------------------------------- */

/* The header word of an object of a kind at an address. */
VORN_INLINE_PART uint64_t vorn_inline_header(const void* address, int kind) {
  const uint64_t mixed = (uint64_t)(uintptr_t)address * 0x9E3779B97F4A7C15U;
  return (mixed & 0x0007070707070700U) | 0x00F8F8F8F8F8F8FFU | ((uint64_t)kind << 56);
}

/* Whether a handle is an object of the kind. Safe for every readable pointer, text among them, and for null. */
VORN_INLINE_PART bool vorn_inline_is(const void* handle, int kind) {
  if (handle == NULL || ((uintptr_t)handle & 15) != 0) return false;
  if (vorn_inline_byte(handle, VORN_INLINE_HEADER) != 0xFF) return false;
  return vorn_inline_word(handle, VORN_INLINE_HEADER) == vorn_inline_header(handle, kind);
}

/* The class of an object; null for null and for what is no object. Safe for every readable pointer. */
VORN_INLINE_PART const void* vorn_inline_class_of(const void* handle) {
  if (handle == NULL || ((uintptr_t)handle & 15) != 0) return NULL;
  if (vorn_inline_byte(handle, VORN_INLINE_HEADER) != 0xFF) return NULL;
  const uint64_t header = vorn_inline_word(handle, VORN_INLINE_HEADER);
  if (header != vorn_inline_header(handle, (int)(header >> 56))) return NULL;
  return vorn_inline_pointer(handle, VORN_INLINE_CLASS);
}

/* The record of a collection, which every one has: compilers need not test it. */
VORN_INLINE_PART void* vorn_inline_attached_record(const void* collection) {
  void* const record = vorn_inline_pointer(collection, VORN_INLINE_RECORD);
  if (record == NULL) __builtin_unreachable();
  return record;
}

/* The record of an object of the kind; null for every other handle. */
VORN_INLINE_PART void* vorn_inline_record(void* handle, int kind) {
  return vorn_inline_is(handle, kind) ? vorn_inline_attached_record(handle) : NULL;
}

/* Checks a proven receiver in debug builds; null may always be one. */
VORN_INLINE_PART void vorn_inline_check_receiver(void* handle, int kind) {
#if VORN_INLINE_CHECKS
  if (handle != NULL && !vorn_inline_is(handle, kind)) vorn_inline_wrong_receiver(handle, kind);
#else
  (void)handle;
  (void)kind;
#endif
}

/* The record of a handle that is null or an object of the kind. */
VORN_INLINE_PART void* vorn_inline_proven_record(void* handle, int kind) {
  vorn_inline_check_receiver(handle, kind);
  return handle != NULL ? vorn_inline_attached_record(handle) : NULL;
}

/* What stands for null below: an object with a record that no form acts on. */
static const uint64_t vorn_inline_no_record[3] __attribute__((unused)) = {UINT64_MAX, UINT64_MAX, UINT64_MAX};
static const void* const vorn_inline_no_object[3] __attribute__((unused)) = {NULL, NULL, vorn_inline_no_record};

/* The same for lists and arrays. The record of an object never changes, which compilers cannot know: they would load it
 * again after every store and call in a loop. An instruction that they do not look into, but know to depend on the object
 * alone, they take out of the loop. They may also execute it where the object is not used, so it must not meet null. */
VORN_INLINE_PART void* vorn_inline_lasting_record(void* handle, int kind) {
  vorn_inline_check_receiver(handle, kind);
  const void* const object = handle != NULL ? handle : (const void*)vorn_inline_no_object;
#if defined(__x86_64__)
  void* record;
  __asm__("movq %c2(%1), %0" : "=r"(record) : "r"(object), "i"(VORN_INLINE_RECORD));
  if (record == NULL) __builtin_unreachable();
  return record;
#elif defined(__aarch64__)
  void* record;
  __asm__("ldr %0, [%1, %2]" : "=r"(record) : "r"(object), "i"(VORN_INLINE_RECORD));
  if (record == NULL) __builtin_unreachable();
  return record;
#else
  return vorn_inline_attached_record(object);
#endif
}

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif
