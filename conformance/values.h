// Short makers of values, by the port alone.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vorn::conformance {

// A handle that stays alive for as long as the check: whatever a native gives, unless it is looked at before anything
// can allocate. The makers below give such handles. For the thread that checks only.
void* held(void* handle);

// A box of the named type.
void* box(std::string_view type, long long value);
void* box(std::string_view type, double value);
inline void* box(std::string_view type, int value) { return box(type, static_cast<long long>(value)); }
inline void* integer(long long value) { return box("Int", value); }

// A String object.
void* string(std::string_view text);

// A handle that is a bare text.
void* bare(const char* text);

// A new object; a failure when there is none.
void* object(const char* className);

// A new list, array, tuple or set of the class with these elements. An array's class names its element type.
void* listOf(const char* className, std::initializer_list<void*> elements);
void* arrayOf(const char* className, std::initializer_list<void*> elements);
void* tupleOf(std::initializer_list<void*> elements);
void* setOf(std::initializer_list<void*> elements);
void* immutableListOf(std::initializer_list<void*> elements);

// The text that a native's toString gave.
std::string textOf(void* handle);

// Takes this thread's errors and expects exactly this one, given as "Class: message".
void expectRaised(std::string_view what, const std::string& error);

// The primitive types: integers (Boolean and the character types are none), and floating ones.
inline constexpr const char* kIntegerTypes[] = {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong"};

// The classes of each family, by their short names.
inline constexpr const char* kListClasses[] = {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"};
inline constexpr const char* kMapClasses[] = {"Map", "HashMapSync", "SortedMap", "SortedMapSync"};
inline constexpr const char* kSetClasses[] = {"HashSet", "HashSetSync"};
inline constexpr const char* kArrayClasses[] = {"Array", "ArraySync"};

}  // namespace vorn::conformance
