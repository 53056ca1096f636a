// The table of all natives: how the language names each, what it takes and gives, and how it is called. Rows are made
// from the functions of the public headers themselves (native_shapes.h), so that names and types cannot differ from
// them; docs and checks read the same rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "console/values.h"

namespace vorn::console {

// What stands in one place of a native's signature.
enum class Slot : std::uint8_t {
  Nothing,
  Handle,
  Integer,
  Floating,
  Boolean,
  Text,     // NUL-terminated, may be null
  Record,   // a list's record
  Out,      // where a handle is stored
  Longs,    // the address of 64-bit integers
  Doubles,  // the address of doubles
};

// One argument as it is passed; the slot says which member counts.
struct RawArgument {
  void* handle = nullptr;  // what Out points at as well
  long long integer = 0;
  double floating = 0;
  bool boolean = false;
  const char* text = nullptr;
  ListData* record = nullptr;
  void** out = nullptr;
};

// What came back; the slot of the result says which member counts.
struct RawResult {
  void* pointer = nullptr;  // a handle, or the address of raw elements
  long long integer = 0;
  double floating = 0;
  bool boolean = false;
  ListData* record = nullptr;
};

// What a result means where its type leaves that open.
enum class Gives : std::uint8_t {
  ByType,  // integers are counts and positions
  Long,    // an element or a sum
  Raw,     // the address of raw elements of the collection's own type
};

// Whether a native changes its receiver. Those that do not serve immutable lists as well.
enum class Effect : std::uint8_t { Reads, Changes };

struct NativeRow {
  std::string_view exportedName;  // vorn_collections_ArrayList_addAll
  std::string_view className;     // ArrayList
  std::string_view method;        // addAll
  // "list, source"; "start=0" has a default, and "other:list" is passed as it is to a native that takes a list on trust,
  // as compilers know the type. The first is the receiver's.
  std::string_view argumentNames;
  std::string_view description;
  std::span<const Slot> slots;  // of the arguments; behind a variadic native's count only one, of all the others
  Slot result = Slot::Nothing;
  Gives gives = Gives::ByType;
  Effect effect = Effect::Reads;
  bool variadic = false;
  void (*invoke)(std::span<const RawArgument> arguments, RawResult& result) = nullptr;

  // Whether the first argument is an existing collection or record: otherwise it is called on the class alone.
  [[nodiscard]] bool hasReceiver() const;
};

// How many values a variadic native takes at most.
constexpr std::size_t kMostVariadic = 256;

// One argument's name and default as the table has them.
struct ArgumentName {
  std::string_view name;
  std::string_view defaultText;  // "" for none
  bool mustBeList = false;
};
std::vector<ArgumentName> argumentNames(const NativeRow& row);

// "list, index, source".
std::string signatureText(const NativeRow& row);

std::span<const NativeRow> listNatives();
std::span<const NativeRow> listBufferNatives();
std::span<const NativeRow> arrayNatives();
std::span<const NativeRow> mapNatives();
std::span<const NativeRow> setNatives();
std::span<const NativeRow> sequenceNatives();

// All rows, class by class.
const std::vector<const NativeRow*>& allNatives();

// The row of a class's native, or null.
const NativeRow* findNative(std::string_view className, std::string_view method);

// The row that a method of a value is: of its own class, or one of the lists' that only read for an immutable list.
const NativeRow* findMethod(Family family, std::string_view method);

// The names of the methods of a value, and the classes that have natives.
std::vector<std::string_view> methodNames(Family family);
const std::vector<std::string_view>& nativeClasses();
bool isNativeClass(std::string_view name);

// The class whose natives serve a family, and the other way around.
std::string_view classOf(Family family);
Family familyOfClass(std::string_view className);

}  // namespace vorn::console
