// Lookups by numbers and texts that are no objects beside the natives with boxes and Strings of them.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include "tests/inline/inline_cases.h"
#include "tests/support/collections.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

class KeyedForms : public RuntimeTest {};

const std::vector<long long>& integerKeys() {
  static const std::vector<long long> all = {0, 1, -1, 2, 255, 1'000'003, 1LL << 40, -(1LL << 40), kMost, kLeast};
  return all;
}

// Of all lengths around those that keys keep whole, with equal beginnings and ends, and with NULs.
std::vector<std::string> textKeys() {
  std::vector<std::string> all;
  for (std::size_t length = 0; length <= 20; ++length) {
    all.push_back(std::string("abcdefghijklmnopqrstuvwxyz").substr(0, length));
    all.push_back(std::string(length, '\xC3') + "\xA4");
  }
  all.push_back(std::string("a\0b", 3));
  all.push_back(std::string(3, '\0'));
  all.emplace_back(100, 'x');
  return all;
}

Handle stringOf(const std::string& text) { return vorn_string_new(text.data(), text.size()); }

// Every other number and text is there, among keys of all other sorts; `more` makes the table a large one.
std::vector<Handle> presentKeys(bool more) {
  std::vector<Handle> keys = {floating("Double", 2.5), boolean(true), integer("Char", 'a'), userKey(1), plain(2),
                              integer("ULong", -1)};
  for (std::size_t i = 0; i < integerKeys().size(); i += 2) keys.push_back(integer("Long", integerKeys()[i]));
  const std::vector<std::string> all = textKeys();
  for (std::size_t i = 0; i < all.size(); i += 2) keys.push_back(stringOf(all[i]));
  for (long long i = 0; more && i < 300; ++i) keys.push_back(integer("Int", 1000 + i));
  return keys;
}

std::vector<Receiver> receiversOf(std::initializer_list<const char*> classes,
                                  const std::function<void(void* receiver, void* key)>& add) {
  std::vector<Receiver> all{{"null", [] { return Handle(nullptr); }}};
  for (const char* const name : classes) {
    all.push_back({std::string("empty ") + name, [name] { return object(name); }});
    for (const bool more : {false, true}) {
      all.push_back({name, [=] {
                       Handle result = object(name);
                       for (const Handle& key : presentKeys(more)) add(result, key);
                       return result;
                     }});
    }
    all.push_back({std::string("small ") + name, [=] {
                     Handle result = object(name);
                     for (const long long number : {1LL, kLeast}) add(result, integer("Int", number));
                     for (const char* const text : {"", "abc", "abcdefghijklmnop"}) add(result, string(text));
                     return result;
                   }});
  }
  return all;
}

std::vector<Receiver> maps() {
  return receiversOf({"Map", "HashMapSync", "SortedMap", "SortedMapSync"},
                     [](void* map, void* key) { vorn_collections_Map_put(map, key, key); });
}
std::vector<Receiver> sets() { return receiversOf({"HashSet", "HashSetSync"}, vorn_collections_HashSet_add); }

// The value is the key in every map, so that what is found is told by its description.
std::string lookedUp(bool found, void* value) { return (found ? "found " : "absent ") + describe(value); }

std::string nativeLookups(void* map, const Handle& key) {
  void* value = map;
  const std::string all =
      describe(vorn_collections_Map__get(map, key)) + describe(vorn_collections_Map_operator_index(map, key));
  const bool found = vorn_collections_Map_tryGet(map, key, &value);
  return all + lookedUp(found, value) + (vorn_collections_Map_operator_in(map, key) ? "in" : "not in");
}

std::string allLookups(Form form, void* map, long long key) {
  if (form == Form::Native) return nativeLookups(map, integer("Long", key));
  void* value = map;
  bool found = false;
  std::string all;
  if (form == Form::Inline) {
    all = describe(vorn_inline_Map__get_integer(map, key)) + describe(vorn_inline_Map_operator_index_integer(map, key));
    found = vorn_inline_Map_tryGet_integer(map, key, &value);
    return all + lookedUp(found, value) + (vorn_inline_Map_operator_in_integer(map, key) ? "in" : "not in");
  }
  all = describe(vorn_proven_Map__get_integer(map, key)) + describe(vorn_proven_Map_operator_index_integer(map, key));
  found = vorn_proven_Map_tryGet_integer(map, key, &value);
  return all + lookedUp(found, value) + (vorn_proven_Map_operator_in_integer(map, key) ? "in" : "not in");
}

std::string allLookups(Form form, void* map, const std::string& key) {
  if (form == Form::Native) return nativeLookups(map, stringOf(key));
  // A copy with nothing behind it, so that reading on would be noticed.
  const std::vector<char> bytes(key.begin(), key.end());
  const char* const text = bytes.data();
  void* value = map;
  bool found = false;
  std::string all;
  if (form == Form::Inline) {
    all = describe(vorn_inline_Map__get_text(map, text, key.size())) +
          describe(vorn_inline_Map_operator_index_text(map, text, key.size()));
    found = vorn_inline_Map_tryGet_text(map, text, key.size(), &value);
    return all + lookedUp(found, value) + (vorn_inline_Map_operator_in_text(map, text, key.size()) ? "in" : "not in");
  }
  all = describe(vorn_proven_Map__get_text(map, text, key.size())) +
        describe(vorn_proven_Map_operator_index_text(map, text, key.size()));
  found = vorn_proven_Map_tryGet_text(map, text, key.size(), &value);
  return all + lookedUp(found, value) + (vorn_proven_Map_operator_in_text(map, text, key.size()) ? "in" : "not in");
}

TEST_F(KeyedForms, MapLookups_AnyMapNumberAndText_AreThoseOfTheNatives) {
  for (const Receiver& receiver : maps()) {
    Triplets triplets(receiver, [](void* map) { return faultOfMap(map); });
    for (const long long key : integerKeys()) {
      triplets.expectSame(std::to_string(key), [&](Form form, void* map) { return allLookups(form, map, key); });
    }
    for (const std::string& key : textKeys()) {
      triplets.expectSame("'" + key + "'", [&](Form form, void* map) { return allLookups(form, map, key); });
    }
  }
}

TEST_F(KeyedForms, SetLookups_AnySetNumberAndText_AreThoseOfTheNative) {
  for (const Receiver& receiver : sets()) {
    Triplets triplets(receiver, [](void* set) { return faultOfSet(set); });
    for (const long long key : integerKeys()) {
      triplets.expectSame(std::to_string(key), [&](Form form, void* set) {
        return std::to_string(form == Form::Native   ? vorn_collections_HashSet_operator_in(set, integer("Long", key))
                              : form == Form::Inline ? vorn_inline_HashSet_operator_in_integer(set, key)
                                                     : vorn_proven_HashSet_operator_in_integer(set, key));
      });
    }
    for (const std::string& key : textKeys()) {
      const std::vector<char> bytes(key.begin(), key.end());
      triplets.expectSame("'" + key + "'", [&](Form form, void* set) {
        return std::to_string(form == Form::Native ? vorn_collections_HashSet_operator_in(set, stringOf(key))
                              : form == Form::Inline
                                  ? vorn_inline_HashSet_operator_in_text(set, bytes.data(), key.size())
                                  : vorn_proven_HashSet_operator_in_text(set, bytes.data(), key.size()));
      });
    }
  }
}

// Natives find nothing while an error is pending.
TEST_F(KeyedForms, Lookups_ErrorPending_FindNothing) {
  for (const Receiver& receiver : maps()) {
    Triplets triplets(receiver, [](void* map) { return faultOfMap(map); });
    triplets.expectSame("1, with an error pending", [&](Form form, void* map) {
      vorn_raise("app.Boom", "before the lookup");
      return allLookups(form, map, 1);
    });
    triplets.expectSame("'abc', with an error pending", [&](Form form, void* map) {
      vorn_raise("app.Boom", "before the lookup");
      return allLookups(form, map, "abc");
    });
  }
  const Handle set = object("HashSet");
  vorn_collections_HashSet_add(set, integer("Int", 1));
  vorn_collections_HashSet_add(set, string("abc"));
  vorn_raise("app.Boom", "before the lookup");
  EXPECT_FALSE(vorn_inline_HashSet_operator_in_integer(set, 1));
  EXPECT_FALSE(vorn_inline_HashSet_operator_in_text(set, "abc", 3));
  EXPECT_RAISED("app.Boom: before the lookup");
}

TEST_F(KeyedForms, Lookups_AnyMap_AllocateNothing) {
  for (const Receiver& receiver : maps()) {
    const Handle map = receiver.make();
    vorn_heap_statistics before;
    vorn_heap_get_statistics(&before);
    for (const long long key : integerKeys()) vorn_inline_Map__get_integer(map, key);
    for (const std::string& key : textKeys()) vorn_inline_Map__get_text(map, key.data(), key.size());
    vorn_heap_statistics after;
    vorn_heap_get_statistics(&after);
    EXPECT_EQ(after.allocations, before.allocations) << receiver.name;
  }
}

TEST_F(KeyedForms, Lookups_MapWithUserKeys_RunNoHook) {
  for (const char* const type : {"Map", "SortedMap"}) {
    const Handle map = object(type);
    for (int i = 0; i < 40; ++i) vorn_collections_Map_put(map, userKey(i), nullptr);
    clearHookCalls();
    for (const long long key : integerKeys()) vorn_inline_Map__get_integer(map, key);
    for (const std::string& key : textKeys()) vorn_inline_Map__get_text(map, key.data(), key.size());
    for (const Hook hook : {Hook::Equality, Hook::Order, Hook::Hash, Hook::Text}) EXPECT_EQ(hookCalls(hook), 0) << type;
  }
}

}  // namespace
}  // namespace vorn::tests
