#include "runtime/keys/key_rules.h"

#include <string_view>

#include "collections/core/port/collection_key.h"
#include "runtime/equality/collection_comparison.h"
#include "runtime/equality/running_hooks.h"
#include "runtime/objects/object_types.h"
#include "runtime/objects/tuple_object.h"

namespace vorn::runtime {
namespace {

template <class T>
Verdict verdictOnOrder(T left, T right) {
  if (left == right) return Verdict::Same;
  return left < right ? Verdict::Less : Verdict::Greater;
}

// The place of a tag in the order of keys: the numbers share one, and so do the texts.
int rankOf(KeyTag tag) {
  switch (tag) {
    case KeyTag::Unsigned:
    case KeyTag::Floating:
      return static_cast<int>(KeyTag::Integer);
    case KeyTag::LongText:
      return static_cast<int>(KeyTag::ShortText);
    default:
      return static_cast<int>(tag);
  }
}

NativeNumericValue numberOf(const NativeCollectionKey& key) {
  if (key.tag == KeyTag::Integer) return signedNumber(static_cast<std::int64_t>(key.words[0]));
  if (key.tag == KeyTag::Unsigned) return unsignedNumber(key.words[0]);
  return {NativeNumericValue::Kind::Floating, key.words[0]};
}

Verdict judgeNumbers(const NativeCollectionKey& left, const NativeCollectionKey& right) {
  return verdictOnOrder(compareNativeNumericValuesForSort(numberOf(left), numberOf(right)), 0);
}

Verdict judgeTexts(Rule rule, std::string_view left, std::string_view right) {
  if (!isOrder(rule)) return left == right ? Verdict::Same : Verdict::Greater;
  return verdictOnOrder(left.compare(right), 0);
}

Verdict judgeSequences(void* left, void* right) {
  const Family leftFamily = familyOf(left);
  const Family rightFamily = familyOf(right);
  if (leftFamily == rightFamily) return Verdict::Contents;
  return verdictOnOrder(leftFamily, rightFamily);
}

// The topmost class of the line of ancestors that has an ordering hook; null when there is none.
const RuntimeClass* rootOfOrder(const RuntimeClass* type) {
  if (!type->hooks.compare) return nullptr;
  while (type->base != nullptr && type->base->hooks.compare) type = type->base;
  return type;
}

// Hooks usually compare within their own class. Classes that do so must not interleave by address, or three keys of two
// classes could go round in a circle.
Verdict orderWithoutHook(void* left, void* right) {
  const RuntimeClass* leftRoot = rootOfOrder(classOf(left));
  const RuntimeClass* rightRoot = rootOfOrder(classOf(right));
  if (leftRoot != rightRoot) {
    if (leftRoot == nullptr || rightRoot == nullptr) return leftRoot == nullptr ? Verdict::Less : Verdict::Greater;
    return verdictOnOrder(leftRoot->fullName.compare(rightRoot->fullName), 0);
  }
  return verdictOnOrder(reinterpret_cast<std::uintptr_t>(left), reinterpret_cast<std::uintptr_t>(right));
}

Verdict judgeInstances(Rule rule, void* left, void* right) {
  const Rule asked = isOrder(rule) ? Rule::Order : Rule::Equality;
  const bool hookDecides = hasHook(asked, left) || hasHook(asked, right);
  if (asked == Rule::Equality) return hookDecides ? judgeByHook(asked, left, right) : Verdict::Greater;
  const Verdict verdict = hookDecides ? judgeByHook(asked, left, right) : Verdict::Incomparable;
  return verdict == Verdict::Incomparable ? orderWithoutHook(left, right) : verdict;
}

// Tuples are frequent keys, and those of values and texts need none of the machinery for nested contents. Incomparable
// when an element asks for that.
Verdict judgeFlatTuples(Rule rule, const TupleObject& left, const TupleObject& right) {
  const std::uint64_t leftCount = left.itemCount();
  const std::uint64_t rightCount = right.itemCount();
  if (!isOrder(rule) && leftCount != rightCount) return Verdict::Greater;
  for (std::uint64_t i = 0; i < leftCount && i < rightCount; ++i) {
    const NativeCollectionKey leftKey = unhashedKey(left.items[i]);
    const NativeCollectionKey rightKey = unhashedKey(right.items[i]);
    if (leftKey.comparesByUserCode() && rightKey.comparesByUserCode()) return Verdict::Incomparable;
    const Verdict verdict = judgeKeys(rule, leftKey, rightKey);
    if (verdict != Verdict::Same) return verdict;
  }
  return verdictOnOrder(leftCount, rightCount);
}

Verdict verdictOnLookup(const NativeCollectionKey& left, const NativeCollectionKey& right) {
  const LookupScope lookup;
  return judgeWholeKeys(Rule::KeyOrder, left, right);
}

}  // namespace

Verdict judgeKeys(Rule rule, const NativeCollectionKey& left, const NativeCollectionKey& right) {
  const int leftRank = rankOf(left.tag);
  const int rightRank = rankOf(right.tag);
  if (leftRank != rightRank) return verdictOnOrder(leftRank, rightRank);
  switch (left.tag) {
    case KeyTag::Null:
      return Verdict::Same;
    case KeyTag::Integer:
    case KeyTag::Unsigned:
    case KeyTag::Floating:
      return judgeNumbers(left, right);
    case KeyTag::Boolean:
    case KeyTag::Char:
    case KeyTag::CodeUnit:
      return verdictOnOrder(static_cast<std::int64_t>(left.words[0]), static_cast<std::int64_t>(right.words[0]));
    case KeyTag::ShortText:
    case KeyTag::LongText:
      return judgeTexts(rule, left.text(), right.text());
    case KeyTag::Identity:
      return verdictOnOrder(left.words[0], right.words[0]);
    case KeyTag::Sequence:
      if (left.words[0] == right.words[0]) return Verdict::Same;
      return judgeSequences(left.handle(), right.handle());
    case KeyTag::Instance:
      if (left.words[0] == right.words[0]) return Verdict::Same;
      return judgeInstances(rule, left.handle(), right.handle());
  }
  return Verdict::Greater;
}

Verdict judgeWholeKeys(Rule rule, const NativeCollectionKey& left, const NativeCollectionKey& right) {
  Verdict verdict = judgeKeys(rule, left, right);
  if (verdict != Verdict::Contents) return verdict;
  if (const auto* tuple = tupleOf(left.handle())) {
    verdict = judgeFlatTuples(rule, *tuple, *tupleOf(right.handle()));
    if (verdict != Verdict::Incomparable) return verdict;
  }
  return compareContents(rule, left.handle(), right.handle());
}

}  // namespace vorn::runtime

bool nativeCollectionKeysEqual(const NativeCollectionKey& left, const NativeCollectionKey& right) {
  using namespace vorn::runtime;
  if (!left.comparesByUserCode()) return judgeKeys(Rule::KeyEquality, left, right) == Verdict::Same;
  const LookupScope lookup;
  return judgeWholeKeys(Rule::KeyEquality, left, right) == Verdict::Same;
}

int compareNativeCollectionKeys(const NativeCollectionKey& left, const NativeCollectionKey& right) {
  using namespace vorn::runtime;
  const bool plain = !left.comparesByUserCode() || !right.comparesByUserCode();
  Verdict verdict = plain ? judgeKeys(Rule::KeyOrder, left, right) : verdictOnLookup(left, right);
  // Two keys must not pass for one because a hook raised.
  if (verdict == Verdict::Raised) verdict = verdictOnOrder(left.words[0], right.words[0]);
  if (verdict == Verdict::Same) return 0;
  return verdict == Verdict::Less ? -1 : 1;
}
