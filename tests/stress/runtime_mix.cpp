// The runtime under its own threads: they attach and detach, root and drop handles, define classes, intern names, raise
// errors, make values and objects.
#include <vorn/collections/array_list.h>
#include <vorn/runtime.h>

#include <array>
#include <atomic>
#include <cstring>
#include <string>
#include <thread>

#include "collections/core/port/type_names.h"
#include "tests/stress/lists.h"
#include "tests/stress/mix.h"

namespace vorn::tests::stress {

namespace {

constexpr int kClasses = 400;
constexpr int kMeetings = 2'500;
constexpr int kNamesAtOnce = 16;
constexpr int kKept = 8;

class RuntimeMix : public Mix {
 public:
  RuntimeMix() {
    for (auto& slots : kept_) {
      for (Shared& slot : slots) slot = nullptr;
    }
  }

  std::vector<Operation> operations() override {
    std::vector<Operation> all = threads();
    for (const auto more : {&RuntimeMix::roots, &RuntimeMix::classes, &RuntimeMix::errors, &RuntimeMix::values,
                            &RuntimeMix::typedBoxes, &RuntimeMix::objects}) {
      for (Operation& operation : (this->*more)()) all.push_back(std::move(operation));
    }
    return all;
  }

  void finish() override {
    for (int i = 0; i < kClasses; ++i) {
      expect(winners_[i].load() <= 1, "a class was defined twice");
      const std::string name = className(i);
      expect((vorn_object_new(name.c_str()) != nullptr) == (winners_[i].load() == 1), "whether a class is defined");
    }
  }

 private:
  static std::string className(int number) { return "stress.Class" + std::to_string(number); }

  // ---- Threads ------------------------------------------------------------------------------------------------------

  std::vector<Operation> threads() {
    return {
        {"vorn_thread_attach", [](Player&) { vorn_thread_attach(); }},
        {"vorn_thread_detach",
         [](Player&) {
           vorn_thread_detach();
           expect(vorn_error_count() == 0, "errors of before the thread was detached");
         }},
        {"vorn_thread_attach",
         [](Player& player) {
           if (!player.random.oneIn(20)) return;
           const int value = player.random.below(1000);
           std::thread([value] {
             void* slot = nullptr;
             vorn_local_root_add(&slot);
             slot = boxed(value);
             void* const list = vorn_collections_ArrayList_intLiteral(2LL, 1LL, 2LL);
             expect(list != nullptr && vorn_collections_ArrayList_sumInt(list) == 3, "a list of a new thread");
             std::int32_t found = 0;
             expect(vorn_unbox_int(slot, &found) != 0 && found == value, "a root of a new thread");
             vorn_raise("Exception", "it ends with an error");
           }).join();
         }},
        {"vorn_runtime_start", [](Player&) { expect(vorn_runtime_version()[0] != '\0', "no version"); }},
    };
  }

  // ---- Roots --------------------------------------------------------------------------------------------------------

  std::vector<Operation> roots() {
    const auto localRoots = [](const char* name) {
      return Operation{name, [](Player& player) {
                         void* slots[4] = {};
                         for (void*& slot : slots) vorn_local_root_add(&slot);
                         const long long value = player.random.below(1000);
                         for (void*& slot : slots) slot = boxed(value + (&slot - slots));
                         for (void*& slot : slots) {
                           std::int64_t found = 0;
                           expect(vorn_unbox_integer(slot, &found) != 0 && found == value + (&slot - slots),
                                  "a local root");
                         }
                         for (void*& slot : slots) vorn_local_root_remove(&slot);
                       }};
    };
    return {
        {"vorn_root_add",
         [this](Player& player) {
           // What was kept by a slot that exists for long is still there.
           const int which = player.random.below(kKept);
           Shared& slot = kept_[player.number][which];
           long long& value = keptValues_[player.number][which];
           std::int64_t found = 0;
           if (slot != nullptr) {
             expect(vorn_unbox_integer(slot, &found) != 0 && found == value, "what a root holds has changed");
           }
           value = player.random.below(1'000'000);
           slot = boxed(value);
         }},
        {"vorn_root_remove",
         [](Player& player) {
           const long long value = player.random.below(1'000'000);
           Shared slot;
           slot = boxed(value);
           for (int i = 0; i < 20; ++i) boxed(i);
           std::int64_t found = 0;
           expect(vorn_unbox_integer(slot, &found) != 0 && found == value, "what a new root holds has changed");
         }},
        localRoots("vorn_local_root_add"),
        localRoots("vorn_local_root_remove"),
        {"vorn_heap_collect",
         [](Player& player) {
           if (player.random.oneIn(200)) vorn_heap_collect();
         }},
        {"vorn_heap_get_statistics",
         [](Player&) {
           vorn_heap_statistics before;
           vorn_heap_get_statistics(&before);
           boxed(1);
           vorn_heap_statistics after;
           vorn_heap_get_statistics(&after);
           expect(after.allocations >= before.allocations, "fewer allocations than before");
         }},
        {"vorn_heap_fail_allocation",
         [](Player& player) {
           vorn_heap_fail_allocation(0);
           void* const box = vorn_box_long(1);
           expect(box == nullptr && vorn_heap_failure_happened() != 0, "an allocation that had to fail has not");
           vorn_heap_fail_allocation(-1);
           ++player.faults;
         }},
        {"vorn_heap_failure_happened", [](Player&) { (void)vorn_heap_failure_happened(); }},
    };
  }

  // ---- Classes and names --------------------------------------------------------------------------------------------

  std::vector<Operation> classes() {
    return {{"vorn_class_define",
             [this](Player& player) {
               // Several players try to define the same class; one of them does.
               const int number = player.random.below(kClasses);
               const std::string name = className(number);
               const vorn_field_definition field = {"id", VORN_FIELD_INTEGER};
               vorn_class_definition definition = {};
               definition.struct_size = sizeof(definition);
               definition.name = name.c_str();
               definition.fields = &field;
               definition.field_count = 1;
               const bool known = winners_[number].load() != 0;
               if (vorn_class_define(&definition) != 0) {
                 expect(winners_[number].fetch_add(1) == 0, "a class was defined twice");
                 return;
               }
               void* const instance = vorn_object_new(name.c_str());
               expect(instance != nullptr || !known, "a class that was refused is not there");
             }},
            {"vorn_object_new",
             [this](Player& player) {
               const int number = player.random.below(kClasses);
               const bool known = winners_[number].load() != 0;
               const std::string name = className(number);
               void* const instance = vorn_object_new(name.c_str());
               if (instance == nullptr) {
                 expect(!known, "no instance of a class that is defined");
                 return;
               }
               std::int64_t id = 0;
               expect(vorn_field_set_integer(instance, "id", number) != 0 &&
                          vorn_field_get_integer(instance, "id", &id) != 0 && id == number,
                      "a field of an instance");
               expect(vorn_type_name(instance) == name && vorn_is_instance(instance, name.c_str()) != 0, "its type");
             }},
            {"internRuntimeTypeName", [this](Player&) {
               // Two players at a time intern the same few names, and the first waits a little, so that the names are new
               // to both at once.
               const int meeting = meetings_.fetch_add(1) / 2 % kMeetings;
               arrivals_[meeting].fetch_add(1);
               for (int i = 0; i < 200 && arrivals_[meeting].load() % 2 != 0; ++i) std::this_thread::yield();
               for (int i = 0; i < kNamesAtOnce; ++i) intern(meeting * kNamesAtOnce + i);
             }}};
  }

  void intern(int number) {
    const std::string name = "stress.Name" + std::to_string(number);
    const RuntimeTypeName interned = internRuntimeTypeName(name);
    const collections::InternedTypeName* first = nullptr;
    if (!names_[number].compare_exchange_strong(first, interned.name)) {
      expect(first == interned.name, "one name was interned twice");
    }
    expect(interned.get() == name && interned.shortForm().get() == std::string_view(name).substr(7), "a name");
  }

  // ---- Errors -------------------------------------------------------------------------------------------------------

  // Raises errors that tell who raised them, and looks whether these and no others are there.
  static void raiseSome(const Player& player, int count) {
    const std::string message = "of player " + std::to_string(player.number);
    for (int i = 0; i < count; ++i) vorn_raise("StressException", message.c_str());
    expect(vorn_error_count() == static_cast<std::size_t>(count), "the number of errors");
    for (std::size_t i = 0; i < vorn_error_count(); ++i) {
      expect(vorn_error_message(i) == message && std::strcmp(vorn_error_class(i), "StressException") == 0,
             "an error of another thread");
    }
    expect(vorn_error_class(static_cast<std::size_t>(count)) == nullptr, "an error behind the last");
  }

  std::vector<Operation> errors() {
    std::vector<Operation> all;
    for (const char* name :
         {"vorn_raise", "vorn_error_count", "vorn_error_class", "vorn_error_message", "vorn_errors_clear"}) {
      all.push_back({name, [](Player& player) {
                       raiseSome(player, 1 + player.random.below(5));
                       vorn_errors_clear();
                       expect(vorn_error_count() == 0, "errors that were taken back");
                     }});
    }
    all.push_back({"vorn_errors_truncate", [](Player& player) {
                     raiseSome(player, 5);
                     vorn_errors_truncate(2);
                     expect(vorn_error_count() == 2, "errors that were kept");
                     vorn_errors_clear();
                   }});
    return all;
  }

  // ---- Values -------------------------------------------------------------------------------------------------------

  std::vector<Operation> values() {
    const auto named = [](const char* name) {
      return Operation{name, [](Player& player) {
                         const std::int64_t value = player.random.below(100);
                         for (const char* type : {"SByte", "Int", "ULong", "Char"}) {
                           std::int64_t found = -1;
                           expect(vorn_unbox_integer(vorn_box_integer(type, value), &found) != 0 && found == value,
                                  "an integer box");
                         }
                         for (const char* type : {"Float", "Double"}) {
                           double found = -1;
                           expect(vorn_unbox_floating(vorn_box_floating(type, 0.5), &found) != 0 && found == 0.5,
                                  "a floating box");
                         }
                       }};
    };
    const auto texts = [](const char* name) {
      return Operation{name, [](Player& player) {
                         const std::string text = "text " + std::to_string(player.random.below(1000));
                         void* const string = vorn_string_new(text.data(), text.size());
                         void* const bare = vorn_text_new(text.c_str());
                         expect(string != nullptr && vorn_string_text(string) == text, "a String");
                         expect(bare != nullptr && vorn_string_text(bare) == text, "a bare text");
                         expect(vorn_is_object(string) != 0 && vorn_is_object(bare) == 0, "which of them is an object");
                         expect(vorn_equals(string, bare) != 0, "equal texts");
                       }};
    };
    return {named("vorn_box_integer"),
            named("vorn_unbox_integer"),
            named("vorn_box_floating"),
            named("vorn_unbox_floating"),
            texts("vorn_string_new"),
            texts("vorn_text_new"),
            texts("vorn_string_text"),
            texts("vorn_is_object"),
            texts("vorn_equals"),
            {"vorn_box_boolean",
             [](Player& player) {
               const bool value = player.random.oneIn(2);
               bool found = !value;
               expect(vorn_unbox_boolean(vorn_box_boolean(value), &found) != 0 && found == value, "a Boolean");
             }},
            {"vorn_unbox_boolean",
             [](Player&) { expect(vorn_box_boolean(true) == vorn_box_boolean(true), "the Booleans are shared"); }}};
  }

  template <class Number>
  static void addBoxes(std::vector<Operation>& all, const char* boxName, const char* unboxName,
                       void* (*box)(Number value), int (*unbox)(void* handle, Number* value)) {
    for (const char* name : {boxName, unboxName}) {
      all.push_back({name, [box, unbox](Player& player) {
                       const auto value = static_cast<Number>(player.random.below(100));
                       Number found{};
                       expect(unbox(box(value), &found) != 0 && found == value, "a box of its type");
                       expect(unbox(vorn_box_boolean(true), &found) == 0 && found == value, "a box of another type");
                     }});
    }
  }

  std::vector<Operation> typedBoxes() {
    std::vector<Operation> all;
    addBoxes(all, "vorn_box_sbyte", "vorn_unbox_sbyte", vorn_box_sbyte, vorn_unbox_sbyte);
    addBoxes(all, "vorn_box_byte", "vorn_unbox_byte", vorn_box_byte, vorn_unbox_byte);
    addBoxes(all, "vorn_box_short", "vorn_unbox_short", vorn_box_short, vorn_unbox_short);
    addBoxes(all, "vorn_box_ushort", "vorn_unbox_ushort", vorn_box_ushort, vorn_unbox_ushort);
    addBoxes(all, "vorn_box_int", "vorn_unbox_int", vorn_box_int, vorn_unbox_int);
    addBoxes(all, "vorn_box_uint", "vorn_unbox_uint", vorn_box_uint, vorn_unbox_uint);
    addBoxes(all, "vorn_box_long", "vorn_unbox_long", vorn_box_long, vorn_unbox_long);
    addBoxes(all, "vorn_box_ulong", "vorn_unbox_ulong", vorn_box_ulong, vorn_unbox_ulong);
    addBoxes(all, "vorn_box_float", "vorn_unbox_float", vorn_box_float, vorn_unbox_float);
    addBoxes(all, "vorn_box_double", "vorn_unbox_double", vorn_box_double, vorn_unbox_double);
    addBoxes(all, "vorn_box_char", "vorn_unbox_char", vorn_box_char, vorn_unbox_char);
    addBoxes(all, "vorn_box_code_unit", "vorn_unbox_code_unit", vorn_box_code_unit, vorn_unbox_code_unit);
    return all;
  }

  // ---- Objects ------------------------------------------------------------------------------------------------------

  std::vector<Operation> objects() {
    const auto tuples = [](const char* name) {
      return Operation{
          name, [](Player& player) {
            void* const items[] = {boxed(player.random.below(100)), boxed(7)};
            void* const tuple = vorn_tuple_new("Tuple<Int,Int>", items, 2);
            std::int64_t size = 0;
            void* item = nullptr;
            expect(tuple != nullptr && vorn_field_get_integer(tuple, "size", &size) != 0 && size == 2 &&
                       vorn_field_get_handle(tuple, "_1", &item) != 0 && item == items[1],
                   "a tuple");
            expect(vorn_field_set_handle(tuple, "_0", items[1]) != 0 &&
                       vorn_field_get_handle(tuple, "_0", &item) != 0 && item == items[1],
                   "an item that was set");
            double none = 0;
            expect(vorn_field_get_floating(tuple, "_0", &none) == 0 && vorn_field_set_floating(tuple, "_0", 1) == 0,
                   "an item is no floating field");
          }};
    };
    const auto generics = [](const char* name) {
      return Operation{name, [](Player& player) {
                         const std::string type = "LinkedListSync<Name" + std::to_string(player.random.below(40)) + ">";
                         void* const list = vorn_object_new(type.c_str());
                         vorn_list_storage_info info;
                         expect(list != nullptr && vorn_list_get_storage(list, &info) != 0 &&
                                    info.storage == VORN_LIST_LINKED && info.size == 0,
                                "a new list by a generic name");
                         expect(vorn_is_instance(list, "LinkedListSync") != 0 &&
                                    std::strstr(vorn_type_name(list), "LinkedListSync<") != nullptr,
                                "its type");
                       }};
    };
    return {tuples("vorn_tuple_new"),
            tuples("vorn_field_get_handle"),
            tuples("vorn_field_set_handle"),
            tuples("vorn_field_get_integer"),
            tuples("vorn_field_get_floating"),
            tuples("vorn_field_set_integer"),
            tuples("vorn_field_set_floating"),
            generics("vorn_list_get_storage"),
            generics("vorn_type_name"),
            generics("vorn_is_instance"),
            {"vorn_call",
             [](Player& player) {
               void* const list = pairOf(player.random.below(100), 9);
               const vorn_word arguments[] = {{.handle = list}, {.integer = 1}};
               vorn_word result = {};
               const auto native = reinterpret_cast<vorn_function>(vorn_collections_ArrayList_getInt);
               expect(vorn_call("i(hi)", native, arguments, &result) == 0 && result.integer == 9,
                      "a call by its shape");
             }},
            {"vorn_runtime_version", [](Player&) { expect(vorn_runtime_version()[0] != '\0', "no version"); }},
            {"vorn_runtime_parse_options", [](Player&) {
               vorn_runtime_options options;
               expect(vorn_runtime_parse_options("heap=plain", &options) != 0, "options");
             }}};
  }

  std::array<std::array<Shared, kKept>, kPlayers> kept_;
  long long keptValues_[kPlayers][kKept] = {};
  std::array<std::atomic<int>, kClasses> winners_ = {};
  std::atomic<int> meetings_ = 0;
  std::array<std::atomic<int>, kMeetings> arrivals_ = {};
  std::array<std::atomic<const collections::InternedTypeName*>, kMeetings* kNamesAtOnce> names_ = {};
};

}  // namespace

Topic runtimeTopic() { return mixTopic<RuntimeMix>("runtime"); }

}  // namespace vorn::tests::stress
