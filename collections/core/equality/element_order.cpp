#include "collections/core/equality/element_order.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>

#include "collections/core/elements/element_types.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/pending_errors.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/text.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "collections/core/storage/list_data.h"

namespace {

constexpr const char* kValueField = "_value";

// The integer box behind a handle, or null.
const RegisteredObject* registeredInteger(void* handle) {
  const RegisteredObject* record = getRegisteredObjectUnsafe(handle);
  return record != nullptr && record->kind() == ObjectKind::IntegerBox ? record : nullptr;
}

bool isStringObject(const void* handle) {
  return objectHeaderAt(handle) == objectHeaderFor(handle, ObjectKind::String);
}

bool isFloatLikeObject(void* handle) {
  return isObjectPointer(handle) && isFloatLikeListType(Vorn_objectTypeName(handle));
}

double floatingValue(void* handle) { return Vorn_getField_double(handle, kValueField); }

// The value of an object that meets a float-like one. An object that is not float-like reads as an integer whatever its
// type.
double numberOrInteger(void* handle, bool floatLike) {
  return floatLike ? floatingValue(handle) : static_cast<double>(readListItemI64(handle));
}

// NaN sorts after the value it meets, whichever side it is on.
int compareFloating(double x, double y) {
  if (std::isnan(x) || std::isnan(y)) return 1;
  return x == y ? 0 : (x > y ? 1 : -1);
}

int signOf(int value) { return (value > 0) - (value < 0); }

template <class Value>
int compareValues(const Value& x, const Value& y) {
  return x == y ? 0 : (x > y ? 1 : -1);
}

// The last word on two objects that are neither numbers nor texts and whose collection order decides nothing: a
// deterministic order by type name, then by identity.
int compareByTypeThenAddress(void* a, void* b, std::string_view typeA, std::string_view typeB) {
  if (const int byType = signOf(typeA.compare(typeB)); byType != 0) return byType;
  return std::less<void*>{}(a, b) ? -1 : 1;
}

// Two objects neither of which is numeric in a way the caller handled. The runtime's comparisons may run user code,
// which may raise; the pair then counts as equivalent and the error stays pending.
int compareCollections(void* a, void* b, std::string_view typeA, std::string_view typeB) {
  bool equal = false;
  if (!Vorn_collectionObjectsEqual(a, b, equal) || equal) return 0;
  bool less = false;
  if (Vorn_collectionObjectsLess(a, b, less) && less) return -1;
  if (hasPendingError()) return 0;
  less = false;
  if (Vorn_collectionObjectsLess(b, a, less) && less) return 1;
  if (hasPendingError()) return 0;
  return compareByTypeThenAddress(a, b, typeA, typeB);
}

// Two bare texts, either of which may be null.
int comparePlainValues(void* a, void* b) {
  if (a == nullptr || b == nullptr) return a == b ? 0 : (a == nullptr ? -1 : 1);
  return signOf(std::strcmp(static_cast<const char*>(a), static_cast<const char*>(b)));
}

std::string_view typeNameOf(void* object) {
  const char* name = Vorn_objectTypeName(object);
  return name != nullptr ? std::string_view(name) : std::string_view();
}

// Two objects, neither of them a String.
bool objectsEqual(void* a, void* b) {
  const char* typeA = Vorn_objectTypeName(a);
  const char* typeB = Vorn_objectTypeName(b);
  const bool floatA = isFloatLikeListType(typeA);
  const bool floatB = isFloatLikeListType(typeB);
  if (floatA || floatB) return numberOrInteger(a, floatA) == numberOrInteger(b, floatB);
  if (isIntLikeListType(typeA) && isIntLikeListType(typeB)) return readListItemI64(a) == readListItemI64(b);
  return Vorn_deepEquals(a, b) != 0;
}

int compareObjects(void* a, void* b) {
  const std::string_view typeA = typeNameOf(a);
  const std::string_view typeB = typeNameOf(b);
  const bool floatA = isFloatLikeListType(typeA.data());
  const bool floatB = isFloatLikeListType(typeB.data());
  if (floatA || floatB) return compareFloating(numberOrInteger(a, floatA), numberOrInteger(b, floatB));
  if (isIntLikeListType(typeA.data()) && isIntLikeListType(typeB.data())) {
    return compareValues(readListItemI64(a), readListItemI64(b));
  }
  return compareCollections(a, b, typeA, typeB);
}

const char* textOf(void* plainValue) { return static_cast<const char*>(plainValue); }

}  // namespace

const char* stringObjectTextOrNull(void* value) {
  if (!isObjectPointer(value)) return nullptr;
  if (shortTypeNameLocal(typeNameOf(value)) != "String") return nullptr;
  return Vorn_objectToString(value);
}

bool listValuesEqual(void* left, void* right) {
  if (left == right) return true;
  NativeNumericValue leftNumber{};
  NativeNumericValue rightNumber{};
  if (tryReadNativeNumericValue(left, leftNumber) && tryReadNativeNumericValue(right, rightNumber)) {
    return compareNativeNumericValues(leftNumber, rightNumber) == 0;
  }

  const RegisteredObject* leftInteger = registeredInteger(left);
  const RegisteredObject* rightInteger = registeredInteger(right);
  const bool leftIsObject = isObjectPointer(left);
  const bool rightIsObject = isObjectPointer(right);
  if (rightInteger != nullptr) {
    if (leftInteger != nullptr) return leftInteger->integer == rightInteger->integer;
    if (!leftIsObject && !rightIsObject) return false;
    if (isFloatLikeObject(left)) return floatingValue(left) == static_cast<double>(rightInteger->integer);
  } else {
    if (!leftIsObject && !rightIsObject) {
      return leftInteger == nullptr && Vorn_strEquals(textOf(left), textOf(right)) != 0;
    }
    if (leftInteger != nullptr && isFloatLikeObject(right)) {
      return static_cast<double>(leftInteger->integer) == floatingValue(right);
    }
  }

  const char* leftText = stringObjectTextOrNull(left);
  // A class that merely bears the name String makes its text in user code: it is a new block, and so may the other one
  // be, whose making can collect.
  std::optional<vorn::collections::RootedHandle> keepLeftText;
  if (leftText != nullptr && rightIsObject && getObject(right)->kind() != ObjectKind::String) {
    keepLeftText.emplace(const_cast<char*>(leftText));
  }
  const char* rightText = stringObjectTextOrNull(right);
  if (!rightIsObject) {
    return leftText != nullptr && rightInteger == nullptr && Vorn_strEquals(leftText, textOf(right)) != 0;
  }
  if (!leftIsObject) {
    return rightText != nullptr && leftInteger == nullptr && Vorn_strEquals(textOf(left), rightText) != 0;
  }
  if (leftText == nullptr && rightText == nullptr) return objectsEqual(left, right);
  return leftText != nullptr && rightText != nullptr && Vorn_strEquals(leftText, rightText) != 0;
}

int compareListValues(void* left, void* right) {
  if (left == right) return 0;
  // Strings are no numbers and bear no name of one, so that only their texts are left to ask for. Asking at once, and
  // once, makes sorting them several times faster.
  if (isStringObject(left) && isStringObject(right)) return signOf(compareStringObjects(left, right));
  NativeNumericValue leftNumber{};
  NativeNumericValue rightNumber{};
  if (tryReadNativeNumericValue(left, leftNumber) && tryReadNativeNumericValue(right, rightNumber)) {
    return compareNativeNumericValuesForSort(leftNumber, rightNumber);
  }

  const RegisteredObject* leftInteger = registeredInteger(left);
  const RegisteredObject* rightInteger = registeredInteger(right);
  const bool leftIsObject = isObjectPointer(left);
  const bool rightIsObject = isObjectPointer(right);
  if (rightInteger != nullptr) {
    if (leftInteger != nullptr) return compareValues(leftInteger->integer, rightInteger->integer);
    if (!leftIsObject && !rightIsObject) return -1;
    if (isFloatLikeObject(left)) {
      return compareFloating(floatingValue(left), static_cast<double>(rightInteger->integer));
    }
  } else {
    if (!leftIsObject && !rightIsObject) return leftInteger != nullptr ? 1 : comparePlainValues(left, right);
    if (leftInteger != nullptr && isFloatLikeObject(right)) {
      return compareFloating(static_cast<double>(leftInteger->integer), floatingValue(right));
    }
  }

  // A String object and a bare text are ordered by this rule and not by text, unlike in listValuesEqual.
  if (!leftIsObject) return -1;
  if (!rightIsObject) return 1;
  return compareObjects(left, right);
}
