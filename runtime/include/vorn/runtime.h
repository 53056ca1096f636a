/* The C embedding API of the vorn host runtime: start a runtime, make and read values, call the natives of
 * vorn.collections, read errors. Usable from C11, C++20 and, through the shared libraries, from any language that can
 * call C.
 *
 * Handles are `void*`: an object, a bare NUL-terminated UTF-8 text, or null (the language's null). The collector may
 * run inside every function marked "allocates"; a handle that must survive that is kept in a rooted slot
 * (vorn_root_add) or inside a rooted object. With the `collected` heap, handles on a C stack are found by the collector
 * as well; with the `stress` heap in exact mode only rooted slots count. A result in a form that no collector knows (an
 * integer of another language) is safe on the collected heap until its thread has been handed 16 more blocks; see
 * recent_blocks below.
 *
 * Functions that return int as a status give 1 for success and 0 for failure. Type names are accepted short ("Int",
 * "ArrayList<Int>") and full ("vorn.Int", "vorn.collections.ArrayList<vorn.Int>"). Memory exhaustion in a function
 * marked "allocates" is a null result, never an exception; natives, by contrast, let std::bad_alloc pass.
 */
#ifndef VORN_RUNTIME_H
#define VORN_RUNTIME_H

#include <stddef.h>
#include <stdint.h>

/* What this header declares is exported by the runtime's library. */
#define VORN_RUNTIME_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#else
#include <stdbool.h>
#endif

/* ---- Starting and stopping --------------------------------------------------------------------------------------- */

/* The heaps; docs/heap.md compares them. */
typedef enum vorn_heap_kind {
  VORN_HEAP_COLLECTED = 0, /* libgc: conservative stacks, precise pointer-free blocks */
  VORN_HEAP_PLAIN = 1,     /* calloc, never frees */
  VORN_HEAP_STRESS = 2     /* collects all the time, poisons what it frees; for tests */
} vorn_heap_kind;

/* How the runtime starts. Filled with the defaults by vorn_runtime_parse_options. */
typedef struct vorn_runtime_options {
  size_t struct_size;  /* sizeof(vorn_runtime_options), so that the struct can grow */
  vorn_heap_kind heap; /* stays for the rest of the process */
  /* Stress heap only: also scan thread stacks and registers (0: registered roots only). */
  int stress_scans_stacks;
  /* Stress heap only: collect at each allocation with a probability of 1 in this number; 0 and 1 mean always. */
  unsigned stress_collect_one_in;
  /* Seed of the stress schedule, of nextFastRandomU64 and, at the process's first start, of the hashes of keys. 0 picks
   * a fixed default for the first two and random bits for the hashes, which no order that a program sees depends on. */
  uint64_t seed;
  /* Collected heap only, at the process's first start: the megabytes that the heap has from the beginning, or as much of
   * them as the system gives, and that are allocated at least between two collections. 0 picks the default, 8; at most
   * 262,144. */
  unsigned collected_room_megabytes;
  /* Collected heap only, at the process's first start: beside what is alive, the heap makes room for about this fraction
   * of it, 1 in this number. A larger number takes less memory and more time. 0 picks the default, 1. */
  unsigned collected_free_space_divisor;
  /* How many of the blocks that each thread was handed last stay alive although nothing holds them, so that a handle in
   * a form of its embedder's own (a Python integer, a Go uintptr) survives the collections of other threads until it is
   * rooted. 0 picks the default: 16 on the collected heap, none on the stress heap; VORN_RECENT_NONE is none, and 64 the
   * most. The collected heap reads it at the process's first start only. */
  unsigned recent_blocks;
  /* Collected heap only, at the process's first start: whether a heap of 32 MB or more keeps to small pages too. 0 asks
   * the system for pages of 2 MB there, which large maps and sets are searched faster on. */
  int collected_small_pages;
} vorn_runtime_options;

/* For vorn_runtime_options.recent_blocks: no block stays alive by having been handed out. */
#define VORN_RECENT_NONE UINT32_MAX

/* Starts the runtime; null options mean the collected heap. Everything else starts it with those defaults when nobody
 * has. 0 when it is already running with another heap. The calling thread is attached.
 *
 * The two libraries must be of one version, since the runtime looks into the library's records. When the collections
 * library that is loaded is of another, this prints one line that names both versions on stderr and gives 0; where the
 * runtime would start by itself, it prints that line and aborts. */
VORN_RUNTIME_EXPORT int vorn_runtime_start(const vorn_runtime_options* options);

/* The version of the runtime library that is running, such as "0.1.0"; the text never ends. May be called at any time.
 * <vorn/collections/version.h> tells the version of the headers. */
VORN_RUNTIME_EXPORT const char* vorn_runtime_version(void);

/* Reads options from text such as "heap=stress,stacks=0,one-in=3,seed=7" or "heap=collected,room=64,divisor=3,recent=8"
 * (heap=collected|plain|stress; recent=0 is VORN_RECENT_NONE, huge=0 sets collected_small_pages) into *options, which is
 * first filled with the defaults. 0, with nothing changed, for anything it does not know. */
VORN_RUNTIME_EXPORT int vorn_runtime_parse_options(const char* text, vorn_runtime_options* options);

/* Stops the runtime: clears the calling thread's errors and roots and ends further collection. Objects must not be
 * used afterwards. A stopped runtime can be started again only with the same heap. */
VORN_RUNTIME_EXPORT void vorn_runtime_stop(void);

/* Threads attach by themselves when they first enter the runtime and detach when they end. Attaching early makes the
 * thread's stack known to the collector before it holds handles. */
VORN_RUNTIME_EXPORT void vorn_thread_attach(void);
VORN_RUNTIME_EXPORT void vorn_thread_detach(void);

/* ---- Values ------------------------------------------------------------------------------------------------------ */

/* A new box of an integer-like type: SByte, Byte, Short, UShort, Int, UInt, Long, ULong, Char, CodeUnit or Boolean. All
 * 64 bits are kept. Null for another name. Allocates. */
VORN_RUNTIME_EXPORT void* vorn_box_integer(const char* type_name, int64_t value);

/* A new Float or Double box; null for another name. Allocates. */
VORN_RUNTIME_EXPORT void* vorn_box_floating(const char* type_name, double value);

/* One of the two shared Boolean boxes. */
VORN_RUNTIME_EXPORT void* vorn_box_boolean(bool value);

/* The value of a box: integers, characters and Booleans as an integer, Float and Double as a double. 0, with *value
 * unchanged, for any other handle. */
VORN_RUNTIME_EXPORT int vorn_unbox_integer(void* handle, int64_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_floating(void* handle, double* value);
VORN_RUNTIME_EXPORT int vorn_unbox_boolean(void* handle, bool* value);

/* A new box of one type each, without a look-up of its name: what compiled code calls, and what a loop should. A Char is
 * given as its code point. Null when there is no memory. Allocate. */
VORN_RUNTIME_EXPORT void* vorn_box_sbyte(int8_t value);
VORN_RUNTIME_EXPORT void* vorn_box_byte(uint8_t value);
VORN_RUNTIME_EXPORT void* vorn_box_short(int16_t value);
VORN_RUNTIME_EXPORT void* vorn_box_ushort(uint16_t value);
VORN_RUNTIME_EXPORT void* vorn_box_int(int32_t value);
VORN_RUNTIME_EXPORT void* vorn_box_uint(uint32_t value);
VORN_RUNTIME_EXPORT void* vorn_box_long(int64_t value);
VORN_RUNTIME_EXPORT void* vorn_box_ulong(uint64_t value);
VORN_RUNTIME_EXPORT void* vorn_box_float(float value);
VORN_RUNTIME_EXPORT void* vorn_box_double(double value);
VORN_RUNTIME_EXPORT void* vorn_box_char(uint32_t value);
VORN_RUNTIME_EXPORT void* vorn_box_code_unit(uint16_t value);

/* The value of a box of exactly that type; of an integer outside the type's range, which vorn_box_integer can box, the
 * low bits. 0, with *value unchanged, for any other handle. */
VORN_RUNTIME_EXPORT int vorn_unbox_sbyte(void* handle, int8_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_byte(void* handle, uint8_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_short(void* handle, int16_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_ushort(void* handle, uint16_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_int(void* handle, int32_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_uint(void* handle, uint32_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_long(void* handle, int64_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_ulong(void* handle, uint64_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_float(void* handle, float* value);
VORN_RUNTIME_EXPORT int vorn_unbox_double(void* handle, double* value);
VORN_RUNTIME_EXPORT int vorn_unbox_char(void* handle, uint32_t* value);
VORN_RUNTIME_EXPORT int vorn_unbox_code_unit(void* handle, uint16_t* value);

/* A new String object. `length` bytes of UTF-8, or up to the NUL when it is SIZE_MAX. Allocates. */
VORN_RUNTIME_EXPORT void* vorn_string_new(const char* text, size_t length);

/* A new bare text: a collected copy of the NUL-terminated text, which is its own handle. Allocates. */
VORN_RUNTIME_EXPORT void* vorn_text_new(const char* text);

/* The text of a String object or of a bare text; null for any other handle. Valid while the handle is alive. */
VORN_RUNTIME_EXPORT const char* vorn_string_text(void* handle);

/* ---- Objects ----------------------------------------------------------------------------------------------------- */

/* A new, empty instance of a class: a collection by type name ("ArrayList", "ArrayList<Int>", "LinkedListSync<Foo>",
 * "SortedMap<String,Int>", "HashSet") or a user class. Null for an unknown name. Allocates. */
VORN_RUNTIME_EXPORT void* vorn_object_new(const char* type_name);

/* A new tuple of the named class ("Tuple" for null, "Tuple<String,Int>") with `count` items, which are rooted during
 * the call. Null for a name that is no tuple class. Allocates. */
VORN_RUNTIME_EXPORT void* vorn_tuple_new(const char* type_name, void* const* items, size_t count);

/* Whether the handle is an object (safe for every readable pointer). */
VORN_RUNTIME_EXPORT int vorn_is_object(void* handle);

/* The full type name, such as "vorn.Int"; "vorn.String" for a bare text; null for null. */
VORN_RUNTIME_EXPORT const char* vorn_type_name(void* handle);

/* Whether the handle is an instance of the class or of one derived from it. */
VORN_RUNTIME_EXPORT int vorn_is_instance(void* handle, const char* type_name);

/* Fields by name. 0 when the object has no such field of that type. Tuples, maps and sets have the integer field
 * "size"; the items of a tuple are handle fields "_0", "_1", ... below that size. Setting an item of a tuple, at any
 * number, allocates; nothing else here does. */
VORN_RUNTIME_EXPORT int vorn_field_get_integer(void* handle, const char* field, int64_t* value);
VORN_RUNTIME_EXPORT int vorn_field_get_floating(void* handle, const char* field, double* value);
VORN_RUNTIME_EXPORT int vorn_field_get_handle(void* handle, const char* field, void** value);
VORN_RUNTIME_EXPORT int vorn_field_set_integer(void* handle, const char* field, int64_t value);
VORN_RUNTIME_EXPORT int vorn_field_set_floating(void* handle, const char* field, double value);
VORN_RUNTIME_EXPORT int vorn_field_set_handle(void* handle, const char* field, void* value);

/* Structural equality, as the language's == on objects. May run user hooks. Allocates. */
VORN_RUNTIME_EXPORT int vorn_equals(void* left, void* right);

/* ---- User classes ------------------------------------------------------------------------------------------------ */

/* What a field of a user class holds. */
typedef enum vorn_field_type {
  VORN_FIELD_INTEGER = 0,  /* 64 bits, signed */
  VORN_FIELD_FLOATING = 1, /* a double */
  VORN_FIELD_HANDLE = 2    /* what it refers to stays alive with the object */
} vorn_field_type;

/* A field of a user class. */
typedef struct vorn_field_definition {
  const char* name;     /* an identifier that no field of the class or its bases has */
  vorn_field_type type; /* never converted: it is read and written as what it is */
} vorn_field_definition;

/* A user class. Hooks are optional (null) and inherited from the base; they may call natives, allocate, and raise
 * (vorn_raise). Their result is ignored by callers that see a pending error. `context` is passed through. */
typedef struct vorn_class_definition {
  size_t struct_size;                  /* sizeof(vorn_class_definition) */
  const char* name;                    /* full or short, e.g. "app.Point"; must be new */
  const char* base_name;               /* a user class, or null */
  const vorn_field_definition* fields; /* the class's own, behind those of its base; may be null without any */
  size_t field_count;                  /* of them */
  void* context;                       /* the last argument of each hook */
  /* Equality with any other non-null object. */
  bool (*equals)(void* self, void* other, void* context);
  /* Ordering: negative, zero or positive; *comparable = false when the two cannot be ordered. */
  int (*compare)(void* self, void* other, bool* comparable, void* context);
  /* Hash, consistent with equals. */
  uint64_t (*hash)(void* self, void* context);
  /* A String object or bare text, or null. */
  void* (*to_string)(void* self, void* context);
} vorn_class_definition;

/* Defines a class for the rest of the process; all texts are copied. 0 when the name is taken or malformed, the base
 * is unknown, or a field name occurs twice (base fields included). */
VORN_RUNTIME_EXPORT int vorn_class_define(const vorn_class_definition* definition);

/* ---- Errors ------------------------------------------------------------------------------------------------------ */

/* Records a pending error on this thread, as natives do; for hooks. */
VORN_RUNTIME_EXPORT void vorn_raise(const char* exception_class, const char* message);

/* Number of errors pending on this thread; index 0 is the oldest. The texts are valid until the errors are cleared;
 * null for an index out of range. */
VORN_RUNTIME_EXPORT size_t vorn_error_count(void);
VORN_RUNTIME_EXPORT const char* vorn_error_class(size_t index);
VORN_RUNTIME_EXPORT const char* vorn_error_message(size_t index);

/* Keeps the oldest `count` errors and takes back those behind them, as if they had never been raised. For code that
 * handles the errors of its own calls and leaves alone those that were pending before: `count` is what vorn_error_count
 * gave when that code began. */
VORN_RUNTIME_EXPORT void vorn_errors_truncate(size_t count);

/* Takes all of them back. */
VORN_RUNTIME_EXPORT void vorn_errors_clear(void);

/* ---- Calls from other languages ---------------------------------------------------------------------------------- */

/* What a call takes and gives: a handle or another pointer, a 64-bit integer or a truth value, or a double. */
typedef union vorn_word {
  void* handle;    /* h */
  int64_t integer; /* i, n, b */
  double floating; /* d */
} vorn_word;

/* Any function; it is called as what it is. */
typedef void (*vorn_function)(void); /* NOLINT(modernize-redundant-void-arg): C needs it */

/* Calls a native, or a function of this header, for a program that no C++ exception may pass through, or whose own
 * frames the collector cannot read: from C++ and C, call the function itself.
 *
 * `shape` writes down its type, a letter for the result and for each parameter: h for a handle or any other pointer, i
 * for a 64-bit integer, n for an int, d for a double, b for a bool, v for no result; "h(hi)" is the one of
 * vorn_collections_ArrayList_operator_index. There are shapes for every native of at most seven parameters. The caller
 * must give the function's own shape and a word for each parameter.
 *
 * The result goes to *result, which may be null: a bool as 0 or 1, the neutral one when the function threw. When
 * *result is a rooted slot, a returned handle is at no moment out of the collector's sight.
 *
 * An exception becomes a pending error: "MemoryException" for exhausted memory and for sizes beyond all memory,
 * "NativeException" with the exception's text for any other. Gives the number of errors that the call raised and left
 * pending, and -1, without a call, for an unknown shape. */
VORN_RUNTIME_EXPORT int vorn_call(const char* shape, vorn_function function, const vorn_word* arguments,
                                  vorn_word* result);

/* ---- Roots and heap ---------------------------------------------------------------------------------------------- */

/* Makes *slot a root of the whole process until it is removed; any thread may remove it. A slot may be added once. */
VORN_RUNTIME_EXPORT void vorn_root_add(void** slot);
VORN_RUNTIME_EXPORT void vorn_root_remove(void** slot);

/* The same for a slot in a frame of the calling thread, at a tenth of the cost: a root until this thread, and no other,
 * removes it or detaches. A slot may be added more than once and is then removed as often. The last one added is the
 * fastest to remove. */
VORN_RUNTIME_EXPORT void vorn_local_root_add(void** slot);
VORN_RUNTIME_EXPORT void vorn_local_root_remove(void** slot);

/* Runs a full collection now; nothing on the plain heap. */
VORN_RUNTIME_EXPORT void vorn_heap_collect(void);

/* What a heap has done since it was made. */
typedef struct vorn_heap_statistics {
  uint64_t bytes_live;      /* in use, or the heap's best estimate */
  uint64_t allocations;     /* blocks handed out since start, all threads */
  uint64_t bytes_allocated; /* by these */
  uint64_t collections;     /* full ones; 0 on the plain heap */
} vorn_heap_statistics;

/* Fills in the statistics of the heap, which it starts with the defaults when nobody has. Does not allocate. */
VORN_RUNTIME_EXPORT void vorn_heap_get_statistics(vorn_heap_statistics* statistics);

/* Makes the next `after` allocations succeed and the one behind them fail (0: the very next one), once, on any heap,
 * counting this thread's allocations only. A negative number disarms it. For tests. */
VORN_RUNTIME_EXPORT void vorn_heap_fail_allocation(int64_t after);

/* Whether a failure armed above has happened since it was armed. */
VORN_RUNTIME_EXPORT int vorn_heap_failure_happened(void);

/* ---- Looking into lists ------------------------------------------------------------------------------------------ */

/* Where a list keeps its elements. */
typedef enum vorn_list_storage {
  VORN_LIST_OBJECTS = 0,  /* boxed elements, array-backed */
  VORN_LIST_LINKED = 1,   /* boxed elements, linked nodes */
  VORN_LIST_PRIMITIVE = 2 /* unboxed elements */
} vorn_list_storage;

/* What vorn_list_get_storage tells of a list. The texts live as long as the process. */
typedef struct vorn_list_storage_info {
  vorn_list_storage storage;  /* the one that is in use */
  const char* element_type;   /* the declared element type; "" when untyped */
  const char* primitive_type; /* the type name of unboxed elements; "" otherwise */
  uint64_t size;              /* how many elements there are */
  uint64_t capacity;          /* in elements; the size for linked lists */
  uint64_t bytes_per_element; /* of the list's own storage, boxes not counted */
} vorn_list_storage_info;

/* Describes a list's storage, under its lock. 0 when the handle is not a list. */
VORN_RUNTIME_EXPORT int vorn_list_get_storage(void* list, vorn_list_storage_info* info);

#ifdef __cplusplus
}
#endif

#endif
