// The runtime's equality and order of arbitrary values.
#include <vorn/runtime.h>

#include "collections/core/port/comparison.h"
#include "runtime/equality/collection_comparison.h"
#include "runtime/equality/pair_rules.h"
#include "runtime/text/text.h"

namespace {

using vorn::runtime::Rule;
using vorn::runtime::Verdict;

Verdict judge(Rule rule, void* left, void* right) {
  const Verdict verdict = vorn::runtime::judgePair(rule, left, right);
  return verdict == Verdict::Contents ? vorn::runtime::compareContents(rule, left, right) : verdict;
}

// Lists, arrays and tuples. Those of different families are unequal and have no order.
bool areSequences(const void* left, const void* right) {
  return vorn::runtime::isSequence(vorn::runtime::familyOf(left)) &&
         vorn::runtime::isSequence(vorn::runtime::familyOf(right));
}

// Two texts, or two instances of which one has an ordering hook.
bool areOrderedByContent(const void* left, const void* right) {
  std::string_view text;
  if (vorn::runtime::readText(left, text)) return vorn::runtime::readText(right, text);
  const auto isInstance = [](const void* handle) {
    return isObjectPointer(handle) && static_cast<const ObjectRecord*>(handle)->kind() == ObjectKind::Instance;
  };
  return isInstance(left) && isInstance(right) &&
         (vorn::runtime::hasHook(Rule::Order, left) || vorn::runtime::hasHook(Rule::Order, right));
}

}  // namespace

extern "C" int Vorn_deepEquals(void* left, void* right) {
  return judge(Rule::Equality, left, right) == Verdict::Same ? 1 : 0;
}

bool Vorn_collectionObjectsEqual(void* left, void* right, bool& equal) {
  equal = false;
  if (areSequences(left, right)) {
    equal = Vorn_deepEquals(left, right) != 0;
    return true;
  }
  if (!areOrderedByContent(left, right)) return false;
  const Verdict verdict = judge(Rule::Order, left, right);
  equal = verdict == Verdict::Same;
  return verdict != Verdict::Incomparable && verdict != Verdict::Raised;
}

int compareStringObjects(void* left, void* right) {
  const auto textOf = [](void* string) {
    const auto* object = static_cast<const StringObject*>(string);
    return std::string_view(object->text, object->length);
  };
  return textOf(left).compare(textOf(right));
}

bool Vorn_collectionObjectsLess(void* left, void* right, bool& less) {
  less = false;
  if (!areSequences(left, right) && !areOrderedByContent(left, right)) return false;
  const Verdict verdict = judge(Rule::Order, left, right);
  less = verdict == Verdict::Less;
  return verdict != Verdict::Incomparable && verdict != Verdict::Raised;
}
