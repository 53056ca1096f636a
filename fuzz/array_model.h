// What a fixed array must be after each operation, in plain C++, written from what the language promises.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fuzz/list_model.h"

namespace vorn::fuzz {

using Errors = std::vector<ExpectedError>;

ExpectedError invalidElement();

// A box's value as the field "_value" gives it to those who want a double: the one reading in which a ULong has no sign.
double numericOf(const Value& value);

struct ArrayModel {
  bool synchronised = false;
  Type argument = Type::None;   // the type argument of the class
  Type element = Type::Object;  // the element type
  Values slots;                 // unboxed ones as their boxes would be, without handles

  [[nodiscard]] Kind kind() const { return kindOf(element); }
  [[nodiscard]] bool isUnboxed() const { return kind() != Kind::None; }
  [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(slots.size()); }
  [[nodiscard]] std::optional<std::size_t> place(std::int64_t index) const;
  [[nodiscard]] std::string className() const;

  // As the constructor does: slots that are zero, false or null.
  void construct(std::int64_t size);
  void resize(std::size_t size);
  // What the slot keeps of the value; nothing when the element type refuses it.
  [[nodiscard]] std::optional<Value> fitting(const Value& value) const;
  [[nodiscard]] bool assign(std::size_t at, const Value& value);
  // Raw stores, which convert without a test, but for characters given as integers.
  ExpectedError setInteger(std::int64_t index, std::int64_t integer);
  ExpectedError setFloating(std::int64_t index, double floating);
  ExpectedError setTruth(std::int64_t index, bool truth);
  // Stops at the first value that is refused.
  ExpectedError assignSlice(const Slice& slice, bool isOrderedSource, const Values& values);
  [[nodiscard]] bool equals(std::size_t at, const Value& value) const;
  // The slot's integer and double, as arrays read them.
  [[nodiscard]] std::int64_t integerAt(std::size_t at) const { return integerOf(slots[at]); }
  [[nodiscard]] double floatingAt(std::size_t at) const { return floatingOf(slots[at]); }

 private:
  [[nodiscard]] Value kept(std::int64_t integer, double floating) const;
  ExpectedError setBoxed(std::size_t at, const Value& box);
};

// The text of an array of characters or of code units, empty beside an error.
struct ArrayText {
  std::string text;
  ExpectedError error;
};
ArrayText textOfScalars(const ArrayModel& model);
ArrayText textOfUnits(const ArrayModel& model);

// Ends the process unless the array is sound and what the model says. Learns the handles of new boxes.
void requireArray(const char* what, void* array, ArrayModel& model);

// As adoptOrder for lists; a sort of unboxed slots goes by their kind.
void adoptArrayOrder(const char* what, void* array, ArrayModel& model);

}  // namespace vorn::fuzz
