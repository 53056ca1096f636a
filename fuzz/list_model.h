// What a list must be after each operation, in plain C++: the rules of what it accepts, of when its elements are unboxed,
// and of what an operation leaves. Written from what the language promises; it knows nothing of the library.
//
// Each operation changes the model as the native must change the list, and gives the error that the native must raise.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fuzz/fuzzer.h"
#include "fuzz/values.h"

namespace vorn::fuzz {

using Values = std::vector<Value>;

// An unboxed value in its two forms, with its kind and the type name it comes under.
struct RawValue {
  Kind kind = Kind::None;
  Type name = Type::None;
  std::int64_t integer = 0;
  double floating = 0;
};

struct ListModel {
  bool linked = false;
  bool synchronised = false;
  bool immutable = false;
  Type argument = Type::None;  // the type argument of the list's class
  Type declared = Type::None;  // the declared element type
  Kind kind = Kind::None;      // of unboxed elements
  Type name = Type::None;      // the type they are kept under
  Values elements;             // unboxed ones as their boxes would be, without handles

  [[nodiscard]] bool isUnboxed() const { return kind != Kind::None; }
  [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(elements.size()); }
  // Counted from the end when negative; none when it is outside the list.
  [[nodiscard]] std::optional<std::size_t> place(std::int64_t index) const;

  ExpectedError add(const Value& value);
  ExpectedError addAt(std::int64_t index, const Value& value);
  ExpectedError assignAt(std::int64_t index, const Value& value);
  // Appends a raw value, converted to the declared type where that takes it.
  ExpectedError addConverted(const RawValue& raw);
  // Appends it as it is.
  ExpectedError addRaw(const RawValue& raw);
  ExpectedError addAll(std::int64_t index, const Values& values);
  ExpectedError removeAt(std::int64_t index);
  void clear();
  void materialise();
  void reserve(std::int64_t count);
  // Replaces all by unboxed elements of a kind, which becomes the declared type as well; refused as a whole.
  ExpectedError assignRaw(Kind newKind, Type newName, const std::vector<RawValue>& values);

  // The search of those natives that may turn the list into boxed storage: all places, ascending.
  std::vector<std::size_t> find(const Value& value);
  std::int64_t indexOf(const Value& value, std::int64_t start) const;
  std::int64_t lastIndexOf(const Value& value, std::int64_t start) const;

  // Null, or the error of a value that the declared type refuses.
  [[nodiscard]] ExpectedError refusal(const Value& value) const;

 private:
  [[nodiscard]] bool takesUnboxed(Kind valueKind, Type valueName) const;
  [[nodiscard]] std::optional<RawValue> unboxedFormOf(const Value& value) const;
  [[nodiscard]] std::vector<std::size_t> findUnboxed(const RawValue& raw) const;
  ExpectedError insertRaw(std::size_t index, const RawValue& raw);
};

ExpectedError indexOutOfBounds();

// A primitive box as a raw value.
std::optional<RawValue> rawOf(const Value& value);
RawValue rawInteger(Kind kind, Type name, std::int64_t integer);
RawValue rawFloating(Kind kind, Type name, double floating);
// As elements of a declared type keep it, if they can.
std::optional<RawValue> converted(Kind declaredKind, Type declaredName, const RawValue& raw);
// What the unboxed storage of a kind keeps of a raw value, as its box would be.
Value stored(const RawValue& raw);
// The box of a raw value, which keeps all its bits.
Value boxed(const RawValue& raw);
// The error that storing a raw value under its name raises, if any.
ExpectedError characterError(const RawValue& raw);

// The positions that a slice selects.
struct Slice {
  std::int64_t start;
  std::int64_t stop;
  std::int64_t step;
  bool hasStart;
  bool hasStop;
};
std::vector<std::size_t> positionsOf(const Slice& slice, std::int64_t size);

// Ends the process unless the list is sound and what the model says. Learns the handles of new boxes.
void requireList(const char* what, void* list, ListModel& model);

// Takes over the order that the list now has, after requiring that it holds the elements of the model and, for a sort,
// that they are in order where they have one.
void adoptOrder(const char* what, void* list, ListModel& model, bool sorted);

}  // namespace vorn::fuzz
