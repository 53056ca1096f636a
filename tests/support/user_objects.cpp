#include "tests/support/user_objects.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace vorn::tests {

UserHooks userHooks;

namespace {

std::array<std::atomic<int>, 4> callsOfHooks;

void count(Hook hook) { ++callsOfHooks[static_cast<std::size_t>(hook)]; }

constexpr unsigned bitOf(Hook hook) { return 1U << static_cast<unsigned>(hook); }

bool sameClass(void* self, void* other) { return vorn_is_instance(other, vorn_type_name(self)) != 0; }

bool equals(void* self, void* other, void*) {
  count(Hook::Equality);
  return userHooks.equals ? userHooks.equals(self, other) : honestEquals(self, other);
}

int compare(void* self, void* other, bool* comparable, void*) {
  count(Hook::Order);
  *comparable = true;
  return userHooks.compare ? userHooks.compare(self, other, comparable) : honestCompare(self, other, comparable);
}

std::uint64_t hash(void* self, void*) {
  count(Hook::Hash);
  return userHooks.hash ? userHooks.hash(self) : kHonestHash;
}

void* toString(void* self, void*) {
  count(Hook::Text);
  return userHooks.toString ? userHooks.toString(self) : honestText(self);
}

// An object of the class with these hooks.
Handle make(const char* className, std::initializer_list<Hook> hooks, std::int64_t id) {
  unsigned has = 0;
  for (const Hook hook : hooks) has |= bitOf(hook);
  const vorn_field_definition fields[] = {{"id", VORN_FIELD_INTEGER}, {"next", VORN_FIELD_HANDLE}};
  vorn_class_definition definition = {};
  definition.name = className;
  definition.fields = fields;
  definition.field_count = std::size(fields);
  if ((has & bitOf(Hook::Equality)) != 0) definition.equals = equals;
  if ((has & bitOf(Hook::Order)) != 0) definition.compare = compare;
  if ((has & bitOf(Hook::Hash)) != 0) definition.hash = hash;
  if ((has & bitOf(Hook::Text)) != 0) definition.to_string = toString;
  defineClass(definition);
  Handle result = vorn_object_new(className);
  EXPECT_NE(vorn_field_set_integer(result, "id", id), 0) << className;
  return result;
}

}  // namespace

Handle plain(std::int64_t id) { return make("app.Plain", {}, id); }
Handle item(std::int64_t id) { return make("app.Item", {Hook::Equality}, id); }
Handle ranked(std::int64_t id) { return make("app.Ranked", {Hook::Equality, Hook::Order}, id); }
Handle hooked(std::int64_t id) { return make("app.Hooked", {Hook::Equality, Hook::Order, Hook::Text}, id); }
Handle userKey(std::int64_t id) { return make("app.Key", {Hook::Equality, Hook::Order, Hook::Hash, Hook::Text}, id); }

std::int64_t idOf(void* handle) {
  std::int64_t id = -1;
  vorn_field_get_integer(handle, "id", &id);
  return id;
}

void* nextOf(void* handle) {
  void* next = nullptr;
  vorn_field_get_handle(handle, "next", &next);
  return next;
}

bool honestEquals(void* self, void* other) { return sameClass(self, other) && idOf(self) == idOf(other); }

int honestCompare(void* self, void* other, bool* comparable) {
  *comparable = sameClass(self, other);
  const std::int64_t left = idOf(self);
  const std::int64_t right = idOf(other);
  return left < right ? -1 : left > right ? 1 : 0;
}

void* honestText(void* self) {
  const std::string text = "#" + std::to_string(idOf(self));
  return vorn_string_new(text.data(), text.size());
}

int hookCalls(Hook hook) { return callsOfHooks[static_cast<std::size_t>(hook)]; }

void clearHookCalls() {
  for (std::atomic<int>& calls : callsOfHooks) calls = 0;
}

ScopedHooks::ScopedHooks(UserHooks hooks) : previous_(std::exchange(userHooks, std::move(hooks))) {}
ScopedHooks::~ScopedHooks() { userHooks = std::move(previous_); }

ScopedEquality::ScopedEquality(std::function<bool(void* self, void* other)> equals)
    : ScopedHooks({std::move(equals), nullptr, nullptr, nullptr}) {}
ScopedOrdering::ScopedOrdering(std::function<int(void* self, void* other)> compare)
    : ScopedHooks({nullptr,
                   [compare = std::move(compare)](void* self, void* other, bool*) { return compare(self, other); },
                   nullptr, nullptr}) {}

void defineClass(vorn_class_definition definition) {
  static std::mutex mutex;
  static std::set<std::string> defined;
  const std::lock_guard<std::mutex> lock(mutex);
  if (!defined.insert(definition.name).second) return;
  definition.struct_size = sizeof(definition);
  EXPECT_NE(vorn_class_define(&definition), 0) << definition.name;
}

}  // namespace vorn::tests
