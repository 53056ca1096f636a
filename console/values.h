// What an expression gives, and what the console asks of it. A value keeps what it refers to alive: handles stand in
// rooted slots, wherever the value itself is.
#pragma once

#include <vorn/runtime.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

struct ListData;

namespace vorn::console {

struct ScalarType;

// The families of classes that natives are made for.
enum class Family : std::uint8_t { None, List, ImmutableList, Array, Map, HashSet, Tuple };

class Value {
 public:
  enum class Kind : std::uint8_t {
    Nothing,  // what a native without a result gives
    Object,   // a handle of the language, null included
    Buffer,   // the raw elements of a list or array, which the handle is
    Record,   // the record of a list, which the handle is
  };

  // The raw elements behind a buffer.
  struct Raw {
    void* data = nullptr;
    const ScalarType* type = nullptr;
    std::int64_t count = 0;
    std::uint64_t callsBefore = 0;  // how many natives the session had called when the address was given
  };

  Value() = default;
  static Value object(void* handle);
  static Value buffer(void* owner, const Raw& raw);
  static Value record(void* owner, ListData* data);

  [[nodiscard]] Kind kind() const { return kind_; }
  [[nodiscard]] bool isObject() const { return kind_ == Kind::Object; }
  [[nodiscard]] bool isNull() const { return isObject() && handle_.get() == nullptr; }
  [[nodiscard]] void* handle() const { return handle_.get(); }
  [[nodiscard]] const Raw& raw() const { return raw_; }
  [[nodiscard]] ListData* data() const { return data_; }

 private:
  Kind kind_ = Kind::Nothing;
  Handle handle_;
  Raw raw_;
  ListData* data_ = nullptr;
};

// What has just been made. Refuses null, which is how the runtime says that there is no memory.
Value newObject(void* handle);

Family familyOf(void* handle);

// The type name without modules, in its type arguments too: "Map<String, Int>". "null" for null.
std::string typeText(void* handle);

// The same without type arguments: "Map".
std::string className(void* handle);

// What a collection's type says of its elements, or "" when it has no type argument.
std::string elementTypeText(void* handle);

// The number of elements, and whether the value has one; user classes and texts have none.
bool isCollection(void* handle);
std::uint64_t sizeOf(void* handle);

// The display text, long collections and long texts cut with their size. May run user hooks; what they raise becomes a
// RaisedError. Allocates.
std::string displayText(const Value& value);

// The same in at most so many characters, without a size.
std::string shortDisplay(const Value& value, std::size_t characters);

// Throws a RaisedError when errors are pending on this thread, and clears them.
void throwPendingErrors();

}  // namespace vorn::console
