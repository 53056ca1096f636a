#include "runtime/equality/pair_rules.h"

#include <cassert>
#include <string_view>

#include "collections/core/pending_error_watch.h"
#include "runtime/equality/running_hooks.h"
#include "runtime/keys/key_rules.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/object_types.h"
#include "runtime/text/text.h"

namespace vorn::runtime {
namespace {

const ClassHooks& hooksOf(const void* handle) {
  static constexpr ClassHooks none;
  return isObjectPointer(handle) ? classOf(handle)->hooks : none;
}

Verdict equalityByHook(void* left, void* right) {
  const bool leftDecides = static_cast<bool>(hooksOf(left).equals);
  void* const self = leftDecides ? left : right;
  void* const other = leftDecides ? right : left;
  const auto& hook = hooksOf(self).equals;
  assert(hook);
  const collections::PendingErrorWatch errors;
  const bool equal = hook.function(self, other, hook.context);
  if (errors.raised()) return Verdict::Raised;
  return equal ? Verdict::Same : Verdict::Greater;
}

Verdict orderByHook(void* left, void* right) {
  const bool leftDecides = static_cast<bool>(hooksOf(left).compare);
  void* const self = leftDecides ? left : right;
  void* const other = leftDecides ? right : left;
  const auto& hook = hooksOf(self).compare;
  assert(hook);
  const collections::PendingErrorWatch errors;
  bool comparable = true;
  const int order = hook.function(self, other, &comparable, hook.context);
  if (errors.raised()) return Verdict::Raised;
  if (!comparable) return Verdict::Incomparable;
  if (order == 0) return Verdict::Same;
  return (order < 0) == leftDecides ? Verdict::Less : Verdict::Greater;
}

Verdict verdictOf(int order) {
  if (order == 0) return Verdict::Same;
  return order < 0 ? Verdict::Less : Verdict::Greater;
}

Verdict judgeNull(Rule rule, const void* left) {
  if (rule == Rule::Equality) return Verdict::Greater;
  return left == nullptr ? Verdict::Less : Verdict::Greater;
}

bool isInstance(const void* handle) {
  const ObjectRecord* object = hasObjectMagic(handle) ? static_cast<const ObjectRecord*>(handle) : nullptr;
  return object != nullptr && object->kind() == ObjectKind::Instance;
}

// Hooks of equality see any other object; ordering is a matter between instances.
bool hookDecides(Rule rule, const void* left, const void* right) {
  if (rule == Rule::Order && !(isInstance(left) && isInstance(right))) return false;
  return hasHook(rule, left) || hasHook(rule, right);
}

}  // namespace

Verdict judgeScalars(Rule rule, const Scalar& left, const Scalar& right) {
  if (isOfKeys(rule)) return judgeKeys(rule, unhashedScalarKey(left), unhashedScalarKey(right));
  if (rule == Rule::Equality) return scalarsEqual(left, right) ? Verdict::Same : Verdict::Greater;
  if (left.family != right.family) return Verdict::Incomparable;
  return verdictOf(compareNativeNumericValuesForSort(left.value, right.value));
}

bool hasHook(Rule rule, const void* handle) {
  const ClassHooks& hooks = hooksOf(handle);
  return rule == Rule::Equality ? static_cast<bool>(hooks.equals) : static_cast<bool>(hooks.compare);
}

Verdict judgeByHook(Rule rule, void* left, void* right) {
  switch (RunningHook::standingOf(rule, left, right)) {
    case RunningHook::Standing::InProgress:
      return Verdict::Same;
    case RunningHook::Standing::EntersAgainForEver:
      return rule == Rule::Equality ? Verdict::Greater : Verdict::Incomparable;
    case RunningHook::Standing::MayRun:
      break;
  }
  const RunningHook running(rule, left, right);
  return rule == Rule::Equality ? equalityByHook(left, right) : orderByHook(left, right);
}

Family familyOf(const void* handle) {
  if (!isObjectPointer(handle)) return Family::None;
  const auto* object = static_cast<const ObjectRecord*>(handle);
  switch (object->kind()) {
    case ObjectKind::Tuple:
      return Family::Tuple;
    case ObjectKind::List:
      return object->runtimeClass->builtin == BuiltinClass::ImmutableList ? Family::ImmutableList : Family::MutableList;
    case ObjectKind::Array:
      return Family::Array;
    case ObjectKind::Map:
      return Family::Map;
    case ObjectKind::Set:
      return Family::Set;
    default:
      return Family::None;
  }
}

Verdict judgePair(Rule rule, void* left, void* right) {
  if (left == right) return Verdict::Same;
  if (isOfKeys(rule)) return judgeKeys(rule, unhashedKey(left), unhashedKey(right));
  if (left == nullptr || right == nullptr) return judgeNull(rule, left);

  Scalar leftScalar;
  Scalar rightScalar;
  if (readScalar(left, leftScalar) && readScalar(right, rightScalar))
    return judgeScalars(rule, leftScalar, rightScalar);

  std::string_view leftText;
  std::string_view rightText;
  if (readText(left, leftText) && readText(right, rightText)) {
    if (rule == Rule::Equality) return leftText == rightText ? Verdict::Same : Verdict::Greater;
    return verdictOf(leftText.compare(rightText));
  }

  if (hookDecides(rule, left, right)) return judgeByHook(rule, left, right);

  // Maps and sets have no order.
  const Family family = familyOf(left);
  const bool decidesByContents = rule == Rule::Equality ? family != Family::None : isSequence(family);
  if (decidesByContents && family == familyOf(right)) return Verdict::Contents;
  return rule == Rule::Equality ? Verdict::Greater : Verdict::Incomparable;
}

}  // namespace vorn::runtime
