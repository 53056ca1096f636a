// collection_key.h and keys.h: the keys of maps and sets.
#include "collections/core/port/keys.h"

#include <vorn/collections/map.h>

#include <limits>

#include "collections/core/port/objects.h"
#include "collections/core/port/pending_errors.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

using Key = NativeCollectionKey;

const char* const kLongText = "a text that is longer than sixteen bytes";

bool areEqual(const Key& left, const Key& right) { return NativeCollectionKeyEqual()(left, right); }

// Whether a table finds the one by the other.
void expectSameKey(const char* what, void* left, void* right, bool expected) {
  expect(what, areEqual(makeNativeCollectionKey(left), makeNativeCollectionKey(right)), expected);
}

// Keys that are not equal, in their order.
std::vector<Key> ascendingKeys() {
  std::vector<void*> const handles = {nullptr,
                                      integer(-3),
                                      box("Double", -2.5),
                                      integer(7),
                                      box("Double", 7.5),
                                      box("ULong", -1),
                                      box("Double", std::numeric_limits<double>::quiet_NaN()),
                                      Vorn_boxBool(false),
                                      Vorn_boxBool(true),
                                      box("Char", 65),
                                      box("Char", 66),
                                      box("CodeUnit", 65),
                                      string(""),
                                      string("a"),
                                      string(kLongText),
                                      string("b"),
                                      object("ArrayList"),
                                      tupleOf({}),
                                      tupleOf({integer(1)}),
                                      tupleOf({integer(1), string("a")}),
                                      tupleOf({integer(2)}),
                                      immutableListOf({}),
                                      immutableListOf({integer(1)})};
  std::vector<Key> keys;
  keys.reserve(handles.size());
  for (void* handle : handles) {
    keys.push_back(handle == nullptr ? makeNativeSetCollectionKey(handle) : makeNativeOrderedCollectionKey(handle));
  }
  return keys;
}

int hashCalls = 0;
std::uint64_t countedHash(void*) {
  ++hashCalls;
  return 1;
}
std::uint64_t raisingHash(void*) {
  Vorn_raise("ValueException", "no hash");
  return 1;
}
bool equalAll(void*, void*) { return true; }

}  // namespace

Checks keyChecks() {
  return {
      {"Vorn_keyHashSeed", "is random in all its words before the first object is given out",
       [] {
         const KeyHashSeed& seed = Vorn_keyHashSeed;
         for (const std::uint64_t word : {seed.multiplierLow, seed.multiplierHigh, seed.addend,
                                          seed.secondMultiplierLow, seed.secondMultiplierHigh}) {
           expectTrue("a word has more than a few bits set",
                      __builtin_popcountll(word) > 8 && __builtin_popcountll(word) < 56);
         }
         expectTrue("words differ", seed.multiplierLow != seed.multiplierHigh && seed.addend != seed.multiplierLow);
       }},
      {"makeNativeCollectionKey", "gives an integer of any type the key that the library makes of its value",
       [] {
         for (const char* type : kIntegerTypes) {
           for (const long long value : {0LL, 1LL, 120LL}) {
             const Key key = makeNativeCollectionKey(box(type, value));
             const Key expected = integerCollectionKey(value);
             expect(std::string("the tag of ") + type, static_cast<int>(key.tag), static_cast<int>(expected.tag));
             expect(std::string("the hash of ") + type, static_cast<long long>(key.hash),
                    static_cast<long long>(expected.hash));
             expectTrue(std::string("the key of ") + type, areEqual(key, expected));
           }
         }
       }},
      {"makeNativeCollectionKey", "gives equal numbers one key, whatever their types",
       [] {
         expectSameKey("1 and 1.0", integer(1), box("Double", 1.0), true);
         expectSameKey("1 and 1.0 as Float", integer(1), box("Float", 1.0), true);
         expectSameKey("1 and 1.5", integer(1), box("Double", 1.5), false);
         expectSameKey("two boxes of 1.5", box("Float", 1.5), box("Double", 1.5), true);
         expectSameKey("the two zeros", box("Double", -0.0), integer(0), true);
         expectSameKey("two NaNs", box("Double", std::numeric_limits<double>::quiet_NaN()),
                       box("Double", -std::numeric_limits<double>::quiet_NaN()), true);
         expectSameKey("-1 and the largest ULong", integer(-1), box("ULong", -1), false);
         expectSameKey("2^63 in two types", box("ULong", std::numeric_limits<long long>::min()), box("Double", 0x1p63),
                       true);
       }},
      {"makeNativeCollectionKey", "keeps characters, Booleans and numbers apart",
       [] {
         expectSameKey("a Char and itself", box("Char", 65), box("Char", 65), true);
         expectSameKey("a Char and a number", box("Char", 65), integer(65), false);
         expectSameKey("a Char and a CodeUnit", box("Char", 65), box("CodeUnit", 65), false);
         expectSameKey("true and 1", Vorn_boxBool(true), integer(1), false);
       }},
      {"makeNativeCollectionKey",
       "gives texts of the same bytes one key, as Strings or bare texts, with the library's hash for short ones",
       [] {
         for (const char* text : {"", "a", "sixteen letters!", "seventeen letters", kLongText}) {
           expectSameKey(text, string(text), bare(text), true);
           expectSameKey(text, string(text), string(std::string(text) + "x"), false);
         }
         const Key key = makeNativeCollectionKey(string("short"));
         expect("the hash of a short text", static_cast<long long>(key.hash),
                static_cast<long long>(shortTextKeyHash(key.words[0], key.words[1])));
         expect("the length of a short text", int{key.shortLength}, 5);
         expectSameKey("texts that differ in a NUL at their end", string(std::string_view("a\0", 2)), string("a"),
                       false);
       }},
      {"makeNativeCollectionKey",
       "gives tuples and immutable lists one key by their elements, and all else its identity",
       [] {
         expectSameKey("equal tuples", tupleOf({integer(1), string("a")}), tupleOf({box("Double", 1.0), bare("a")}),
                       true);
         expectSameKey("tuples that differ", tupleOf({integer(1)}), tupleOf({integer(2)}), false);
         expectSameKey("equal immutable lists", immutableListOf({integer(1)}), immutableListOf({integer(1)}), true);
         expectSameKey("a tuple and an immutable list", tupleOf({integer(1)}), immutableListOf({integer(1)}), false);
         expectSameKey("nested tuples", tupleOf({tupleOf({integer(1)})}), tupleOf({tupleOf({integer(1)})}), true);
         void* const list = listOf("ArrayList", {integer(1)});
         expectSameKey("a list and itself", list, list, true);
         expectSameKey("equal lists", list, listOf("ArrayList", {integer(1)}), false);
         expectSameKey("tuples of equal lists", tupleOf({list}), tupleOf({listOf("ArrayList", {integer(1)})}), false);
       }},
      {"makeNativeCollectionKey", "asks the hash of a user class, whose error is pending then",
       [] {
         adapter().defineClass({.name = "conformance.Raising", .equals = equalAll, .hash = raisingHash});
         makeNativeCollectionKey(object("conformance.Raising"));
         expectRaised("the hash hook", "ValueException: no hash");
         hashCalls = 0;
         adapter().defineClass({.name = "conformance.Hashed", .equals = equalAll, .hash = countedHash});
         expectSameKey("two equal instances", object("conformance.Hashed"), object("conformance.Hashed"), true);
         expect("how often the hash was asked", hashCalls, 2);
       },
       Needs::Hooks},
      {"makeNativeOrderedCollectionKey", "gives the same key but for its hash, and runs no user code",
       [] {
         for (void* handle : {integer(5), box("Double", 2.5), string("short"), string(kLongText), box("Char", 65),
                              Vorn_boxBool(true)}) {
           Key ordered = makeNativeOrderedCollectionKey(handle);
           const Key hashed = makeNativeCollectionKey(handle);
           ordered.hash = hashed.hash;
           expectTrue("the key is that of a hash map", areEqual(ordered, hashed));
         }
         if (!adapter().hasHooks) return;
         hashCalls = 0;
         adapter().defineClass({.name = "conformance.Hashed", .equals = equalAll, .hash = countedHash});
         makeNativeOrderedCollectionKey(object("conformance.Hashed"));
         expect("how often the hash was asked", hashCalls, 0);
       }},
      {"makeNativeStringCollectionKey", "gives a text the key of a String with that text",
       [] {
         for (const char* text : {"", "short", kLongText}) {
           expectTrue(text, areEqual(makeNativeStringCollectionKey(text), makeNativeCollectionKey(string(text))));
         }
       }},
      {"makeNativeSetCollectionKey", "gives null a key of its own, and all else that of a map",
       [] {
         const Key null = makeNativeSetCollectionKey(nullptr);
         expectTrue("null is one key", areEqual(null, makeNativeSetCollectionKey(nullptr)));
         expect("null's key is that of 0", areEqual(null, makeNativeSetCollectionKey(integer(0))), false);
         expect("null's key is that of an empty text", areEqual(null, makeNativeSetCollectionKey(string(""))), false);
         expectTrue("the key of a tuple", areEqual(makeNativeSetCollectionKey(tupleOf({integer(1)})),
                                                   makeNativeCollectionKey(tupleOf({integer(1)}))));
       }},
      {"nativeCollectionKeysEqual", "compares long texts by bytes and sequences by their elements",
       [] {
         const auto equal = [](void* left, void* right) {
           return nativeCollectionKeysEqual(makeNativeCollectionKey(left), makeNativeCollectionKey(right));
         };
         expectTrue("equal long texts", equal(string(kLongText), bare(kLongText)));
         Key left = makeNativeCollectionKey(string(kLongText));
         Key right = makeNativeCollectionKey(string(std::string(kLongText) + "!"));
         right.hash = left.hash;  // as it may happen
         expect("long texts that differ", nativeCollectionKeysEqual(left, right), false);
         expectTrue("equal tuples", equal(tupleOf({integer(1)}), tupleOf({integer(1)})));
         left = makeNativeCollectionKey(tupleOf({integer(1)}));
         right = makeNativeCollectionKey(tupleOf({integer(2)}));
         right.hash = left.hash;
         expect("tuples that differ", nativeCollectionKeysEqual(left, right), false);
       }},
      {"nativeCollectionKeysEqual", "ends for a tuple that holds itself",
       [] {
         void* const tuples[] = {tupleOf({nullptr, nullptr}), tupleOf({nullptr, nullptr})};
         for (void* tuple : tuples) {
           Vorn_setField_ptr(tuple, "_0", tuple);
           Vorn_setField_ptr(tuple, "_1", tuple);
         }
         expectSameKey("two tuples that hold themselves", tuples[0], tuples[1], true);
       }},
      {"compareNativeCollectionKeys",
       "orders null, numbers, Booleans, Chars, CodeUnits, texts, identities, tuples, immutable lists, each by value",
       [] {
         const std::vector<Key> keys = ascendingKeys();
         for (std::size_t i = 0; i < keys.size(); ++i) {
           for (std::size_t j = 0; j < keys.size(); ++j) {
             expect("the order of key " + std::to_string(i) + " and key " + std::to_string(j) + " of ascending ones",
                    signOf(compareNativeCollectionKeys(keys[i], keys[j])),
                    static_cast<int>(i > j) - static_cast<int>(i < j));
           }
         }
       }},
      {"mapKeyRuntimeTypeName", "gives the short name of a key's class, String for a text, nothing for null",
       [] {
         expect("an Int", mapKeyRuntimeTypeName(integer(1)), "Int");
         expect("a String", mapKeyRuntimeTypeName(string("a")), "String");
         expect("a bare text", mapKeyRuntimeTypeName(bare("a")), "String");
         expect("a list", mapKeyRuntimeTypeName(object("ArrayList<Int>")), "ArrayList<Int>");
         expect("null", mapKeyRuntimeTypeName(nullptr), "");
       }},
      {"resolveMapKeyTypeName", "gives the key type that a map has recorded, or Object",
       [] {
         void* const map = object("Map");
         expect("an empty map", resolveMapKeyTypeName(map), "Object");
         vorn_collections_Map_put(map, string("a"), integer(1));
         expect("a map of texts", resolveMapKeyTypeName(map), "String");
         vorn_collections_Map_put(map, integer(1), integer(1));
         expect("a map of texts and numbers", resolveMapKeyTypeName(map), "Object");
       }},
      {"mapKeyString", "gives the text of a floating number, and nothing for any other key",
       [] {
         expect("1.5", mapKeyString(box("Double", 1.5)), "1.5");
         expect("2.0", mapKeyString(box("Float", 2.0)), "2.0");
         expect("an Int", mapKeyString(integer(1)), "");
         expect("a text", mapKeyString(string("1.5")), "");
       }},
  };
}

}  // namespace vorn::conformance
