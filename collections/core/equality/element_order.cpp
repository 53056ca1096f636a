#include "collections/core/equality/element_order.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>

#include "collections/core/elements/element_types.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/pending_errors.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/text.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"

namespace vc = vorn::collections;

namespace {

// What an operand is to the rules of equality and order. Each operand is looked at once.
enum class OperandClass {
  Plain,     // null or a bare text
  Floating,  // a Float or Double, or an object of a class of that name
  Integer,   // a number of the integer types, a Boolean, or an object of a class of such a name
  String,    // an object of the language's String or of a class of that name
  Other,
};

// An instance counts as what the name of its class says. The first two go by the whole name.
OperandClass classOfInstance(void* instance) {
  const char* const typeName = Vorn_objectTypeName(instance);
  if (isFloatLikeListType(typeName)) return OperandClass::Floating;
  if (isIntLikeListType(typeName)) return OperandClass::Integer;
  const bool isString = typeName != nullptr && shortTypeNameLocal(typeName) == "String";
  return isString ? OperandClass::String : OperandClass::Other;
}

OperandClass classOf(void* handle) {
  if (!isObjectPointer(handle)) return OperandClass::Plain;
  switch (static_cast<const ObjectRecord*>(handle)->kind()) {
    case ObjectKind::FloatingBox:
      return OperandClass::Floating;
    case ObjectKind::IntegerBox:
    case ObjectKind::BooleanBox:
      return OperandClass::Integer;
    case ObjectKind::String:
      return OperandClass::String;
    case ObjectKind::Instance:
      return classOfInstance(handle);
    default:
      return OperandClass::Other;
  }
}

// The value of an operand that meets a floating one. What is not floating itself reads as an integer, whatever it is.
double valueBesideFloating(void* handle, OperandClass operandClass) {
  if (operandClass == OperandClass::Floating) return Vorn_getField_double(handle, vorn::collections::kValueField);
  return static_cast<double>(readListItemI64(handle));
}

// Whether both are numbers to the runtime, and which.
bool readNumbers(void* left, void* right, NativeNumericValue& leftNumber, NativeNumericValue& rightNumber) {
  return tryReadNativeNumericValue(left, leftNumber) && tryReadNativeNumericValue(right, rightNumber);
}

const char* textOf(void* plainValue) { return static_cast<const char*>(plainValue); }

// ---- Equality -------------------------------------------------------------------------------------------------------

// Two objects that are no Strings, or whose toString gave no text.
bool objectsEqual(void* left, OperandClass leftClass, void* right, OperandClass rightClass) {
  if (leftClass == OperandClass::Floating || rightClass == OperandClass::Floating) {
    return valueBesideFloating(left, leftClass) == valueBesideFloating(right, rightClass);
  }
  if (leftClass == OperandClass::Integer && rightClass == OperandClass::Integer) {
    return readListItemI64(left) == readListItemI64(right);
  }
  return Vorn_deepEquals(left, right) != 0;
}

// The text of a String operand; null for any other and when its toString gives none.
const char* textOfString(void* handle, OperandClass operandClass) {
  return operandClass == OperandClass::String ? Vorn_objectToString(handle) : nullptr;
}

// Two operands of which at least one is a String: by text, if both have one.
bool stringsEqual(void* left, OperandClass leftClass, void* right, OperandClass rightClass) {
  const char* leftText = leftClass == OperandClass::Plain ? textOf(left) : textOfString(left, leftClass);
  // A class that merely bears the name String makes its text in user code: it is a new block, and so may the other one
  // be, whose making can collect.
  std::optional<vc::RootedHandle> keepLeftText;
  if (leftClass == OperandClass::String && rightClass == OperandClass::String) {
    keepLeftText.emplace(const_cast<char*>(leftText));
  }
  const char* rightText = rightClass == OperandClass::Plain ? textOf(right) : textOfString(right, rightClass);
  if (leftText != nullptr && rightText != nullptr) return Vorn_strEquals(leftText, rightText) != 0;
  const bool bothAreObjects = leftClass != OperandClass::Plain && rightClass != OperandClass::Plain;
  if (leftText != nullptr || rightText != nullptr || !bothAreObjects) return false;
  return objectsEqual(left, leftClass, right, rightClass);
}

// ---- Order ----------------------------------------------------------------------------------------------------------

int signOf(int value) { return (value > 0) - (value < 0); }

// NaN sorts after the value it meets, whichever side it is on.
int compareFloating(double x, double y) {
  if (std::isnan(x) || std::isnan(y)) return 1;
  return x == y ? 0 : (x > y ? 1 : -1);
}

int compareIntegers(long long x, long long y) { return x == y ? 0 : (x > y ? 1 : -1); }

// Two bare texts, either of which may be null.
int comparePlainValues(void* left, void* right) {
  if (left == nullptr || right == nullptr) return left == right ? 0 : (left == nullptr ? -1 : 1);
  return signOf(std::strcmp(textOf(left), textOf(right)));
}

// The last word on two objects that are no numbers and whose collection order decides nothing: a deterministic order by
// type name, then by identity.
int compareByTypeThenAddress(void* left, void* right) {
  const auto typeNameOf = [](void* object) {
    const char* name = Vorn_objectTypeName(object);
    return name != nullptr ? std::string_view(name) : std::string_view();
  };
  if (const int byType = signOf(typeNameOf(left).compare(typeNameOf(right))); byType != 0) return byType;
  return std::less<void*>{}(left, right) ? -1 : 1;
}

// The runtime's comparisons may run user code, which may raise; the pair then counts as equivalent and the error stays
// pending.
int compareCollections(void* left, void* right) {
  bool equal = false;
  if (!Vorn_collectionObjectsEqual(left, right, equal) || equal) return 0;
  bool less = false;
  if (Vorn_collectionObjectsLess(left, right, less) && less) return -1;
  if (hasPendingError()) return 0;
  less = false;
  if (Vorn_collectionObjectsLess(right, left, less) && less) return 1;
  if (hasPendingError()) return 0;
  return compareByTypeThenAddress(left, right);
}

}  // namespace

const char* stringObjectTextOrNull(void* value) { return textOfString(value, classOf(value)); }

bool listValuesEqual(void* left, void* right) {
  if (left == right) return true;
  NativeNumericValue leftNumber{};
  NativeNumericValue rightNumber{};
  if (readNumbers(left, right, leftNumber, rightNumber)) {
    return compareNativeNumericValues(leftNumber, rightNumber) == 0;
  }
  const OperandClass leftClass = classOf(left);
  const OperandClass rightClass = classOf(right);
  if (leftClass == OperandClass::Plain && rightClass == OperandClass::Plain) {
    return Vorn_strEquals(textOf(left), textOf(right)) != 0;
  }
  if (leftClass == OperandClass::String || rightClass == OperandClass::String) {
    return stringsEqual(left, leftClass, right, rightClass);
  }
  if (leftClass == OperandClass::Plain || rightClass == OperandClass::Plain) return false;
  return objectsEqual(left, leftClass, right, rightClass);
}

int compareListValues(void* left, void* right) {
  if (left == right) return 0;
  // Strings are no numbers and bear no name of one, so that only their texts are left to ask for. Asking at once, and
  // once, makes sorting them several times faster.
  if (isStringObject(left) && isStringObject(right)) return signOf(compareStringObjects(left, right));
  NativeNumericValue leftNumber{};
  NativeNumericValue rightNumber{};
  if (readNumbers(left, right, leftNumber, rightNumber)) {
    return compareNativeNumericValuesForSort(leftNumber, rightNumber);
  }
  const OperandClass leftClass = classOf(left);
  const OperandClass rightClass = classOf(right);
  // A String object and a bare text are ordered by this rule and not by text, unlike in listValuesEqual.
  if (leftClass == OperandClass::Plain || rightClass == OperandClass::Plain) {
    if (leftClass == rightClass) return comparePlainValues(left, right);
    return leftClass == OperandClass::Plain ? -1 : 1;
  }
  if (leftClass == OperandClass::Floating || rightClass == OperandClass::Floating) {
    return compareFloating(valueBesideFloating(left, leftClass), valueBesideFloating(right, rightClass));
  }
  if (leftClass == OperandClass::Integer && rightClass == OperandClass::Integer) {
    return compareIntegers(readListItemI64(left), readListItemI64(right));
  }
  return compareCollections(left, right);
}
