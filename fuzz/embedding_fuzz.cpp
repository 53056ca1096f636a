// Calls the embedding API in any order that is allowed: boxes, texts, objects and their fields, classes, errors, calls by
// shape, roots of both sorts, collections, allocations that fail, and threads that attach and detach, against a model of
// what the objects hold.
#include <vorn/collections/array_list.h>
#include <vorn/collections/tuple.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "fuzz/boxes.h"
#include "fuzz/values.h"

namespace vorn::fuzz {
namespace {

constexpr std::size_t kObjects = 10;
constexpr std::size_t kMostClasses = 24;

enum class Content { Nothing, Box, Text, Instance, List, Tuple };

// What an object of the API must be. Handles in it are compared and never followed, but for their type.
struct Model {
  Content content = Content::Nothing;
  Value value;       // of a box
  std::string text;  // of a text
  bool isBare = false;
  std::size_t classNumber = 0;
  std::int64_t integer = 0;  // the fields of an instance
  double floating = 0;
  void* handle = nullptr;
  std::vector<std::int64_t> elements;  // of a list of Long
  std::vector<void*> items;            // of a tuple
};

struct UserClass {
  std::string name;
  bool isDerived = false;  // from the first one
};

std::vector<UserClass>& classes() {
  static std::vector<UserClass> all;
  return all;
}

class Embedding {
 public:
  explicit Embedding(Input& input) : input_(input) {
    vorn_errors_clear();
    roots().clear();
    if (classes().empty()) defineClass();
  }
  ~Embedding() { dropLocalRoots(); }
  Embedding(const Embedding&) = delete;
  Embedding& operator=(const Embedding&) = delete;

  // ---- Making ----

  void box() {
    Model model;
    model.content = Content::Box;
    model.value = chooseValue(input_, choosePrimitive(input_));
    const bool isExact = input_.flag();
    place(isExact ? exactBox(model.value) : make(model.value), model);
  }

  void text() {
    Model model;
    model.content = Content::Text;
    model.isBare = input_.flag();
    const std::size_t size = input_.below(30);
    for (std::size_t i = 0; i < size; ++i) model.text += static_cast<char>('!' + input_.byte() % 90);
    if (model.isBare) return place(vorn_text_new(model.text.c_str()), model);
    const bool counted = input_.flag();
    place(vorn_string_new(model.text.c_str(), counted ? model.text.size() : SIZE_MAX), model);
  }

  void instance() {
    Model model;
    model.content = Content::Instance;
    model.classNumber = input_.below(classes().size());
    place(vorn_object_new(classes()[model.classNumber].name.c_str()), model);
  }

  void list() {
    Model model;
    model.content = Content::List;
    place(vorn_object_new("ArrayList<Long>"), model);
  }

  void tuple() {
    Model model;
    model.content = Content::Tuple;
    const std::size_t count = input_.below(6);
    for (std::size_t i = 0; i < count; ++i) model.items.push_back(object(any()));
    place(vorn_tuple_new(input_.flag() ? nullptr : "Tuple<Int,Int>", model.items.data(), count), model);
  }

  void defineClass() {
    const bool isTaken = classes().size() == kMostClasses;
    const bool isDerived = !classes().empty() && input_.flag();
    const std::string name = "fuzz.api.C" + std::to_string(isTaken ? 0 : classes().size());
    const vorn_field_definition fields[] = {
        {"a", VORN_FIELD_INTEGER}, {"b", VORN_FIELD_FLOATING}, {"c", VORN_FIELD_HANDLE}};
    vorn_class_definition definition = {};
    definition.struct_size = sizeof(definition);
    definition.name = name.c_str();
    definition.base_name = isDerived ? classes()[0].name.c_str() : nullptr;
    definition.fields = isDerived ? nullptr : fields;
    definition.field_count = isDerived ? 0 : 3;
    requireEqual("vorn_class_define", vorn_class_define(&definition), isTaken ? 0 : 1);
    if (!isTaken) classes().push_back({name, isDerived});
    definition.name = "1.malformed";
    requireEqual("a malformed name", vorn_class_define(&definition), 0);
    definition.name = "fuzz.api.Orphan";
    definition.base_name = "fuzz.api.Nobody";
    requireEqual("an unknown base", vorn_class_define(&definition), 0);
  }

  // ---- Looking and changing ----

  void check() { requireModel(any()); }

  void setFields() {
    const std::size_t at = any();
    Model& model = models_[at];
    const bool isInstance = model.content == Content::Instance;
    const std::int64_t integer = input_.index();
    const double floating = chooseValue(input_, Type::Double).floating;
    void* const handle = object(any());
    requireEqual("setting an integer", vorn_field_set_integer(object(at), "a", integer), isInstance ? 1 : 0);
    requireEqual("setting a double", vorn_field_set_floating(object(at), "b", floating), isInstance ? 1 : 0);
    requireEqual("setting a handle", vorn_field_set_handle(object(at), "c", handle), isInstance ? 1 : 0);
    requireEqual("a field of another type", vorn_field_set_integer(object(at), "b", integer), 0);
    if (isInstance) {
      model.integer = integer;
      model.floating = floating;
      model.handle = handle;
    }
    requireModel(at);
  }

  void setItem() {
    const std::size_t at = any();
    Model& model = models_[at];
    if (model.content != Content::Tuple || model.items.empty()) return;
    const std::size_t item = input_.below(model.items.size());
    model.items[item] = object(any());
    requireEqual("setting an item",
                 vorn_field_set_handle(object(at), ("_" + std::to_string(item)).c_str(), model.items[item]), 1);
    requireModel(at);
  }

  // By the shape of the native, which is called as a program of another language would.
  void call() {
    const std::size_t at = any();
    Model& model = models_[at];
    if (model.content != Content::List) return;
    vorn_word arguments[2] = {};
    arguments[0].handle = object(at);
    arguments[1].integer = input_.index();
    vorn_word result{};
    if (input_.flag()) {
      const int errors =
          vorn_call("v(hi)", reinterpret_cast<vorn_function>(vorn_collections_ArrayList_addInt), arguments, nullptr);
      requireEqual("the errors of a call", errors, 0);
      model.elements.push_back(arguments[1].integer);
    } else {
      const auto size = static_cast<std::int64_t>(model.elements.size());
      const std::int64_t index = arguments[1].integer < 0 ? arguments[1].integer + size : arguments[1].integer;
      const bool isInside = index >= 0 && index < size;
      const int errors =
          vorn_call("i(hi)", reinterpret_cast<vorn_function>(vorn_collections_ArrayList_getInt), arguments, &result);
      requireEqual("the errors of a call", errors, isInside ? 0 : 1);
      requireEqual("the result of a call", result.integer,
                   isInside ? model.elements[static_cast<std::size_t>(index)] : 0);
      vorn_errors_truncate(vorn_error_count() - static_cast<std::size_t>(errors));
    }
    requireEqual("an unknown shape",
                 vorn_call("x(y)", reinterpret_cast<vorn_function>(vorn_heap_collect), arguments, &result), -1);
    requireModel(at);
  }

  // A call beyond all memory becomes an error.
  void callBeyondMemory() {
    const std::size_t at = any();
    if (models_[at].content != Content::List) return;
    vorn_word arguments[2] = {};
    arguments[0].handle = object(at);
    arguments[1].integer = INT64_MAX;
    const std::size_t before = vorn_error_count();
    requireEqual(
        "the errors of a call beyond memory",
        vorn_call("v(hi)", reinterpret_cast<vorn_function>(vorn_collections_ArrayList_reserve), arguments, nullptr), 1);
    requireSame("the error of a call beyond memory", vorn_error_class(before), "MemoryException");
    vorn_errors_truncate(before);
    requireModel(at);
  }

  void compare() {
    const std::size_t left = any();
    const std::size_t right = any();
    const Model& a = models_[left];
    const Model& b = models_[right];
    bool equal = object(left) == object(right);
    if (a.content == Content::Box && b.content == Content::Box) {
      Value x = a.value;
      Value y = b.value;
      x.handle = object(left);
      y.handle = object(right);
      equal = areDeepEqual(x, y);
    } else if (a.content == b.content && a.content == Content::Text) {
      equal = a.text == b.text;
    } else if (a.content == b.content && a.content == Content::List) {
      equal = a.elements == b.elements;
    } else if (a.content == Content::Tuple && b.content == Content::Tuple) {
      return;  // what its items are, nobody here knows
    }
    requireEqual("vorn_equals", vorn_equals(object(left), object(right)), equal ? 1 : 0);
  }

  // ---- Errors ----

  void raise() {
    if (vorn_error_count() > 20) vorn_errors_clear();
    const std::size_t before = vorn_error_count();
    const std::string message = "m" + std::to_string(input_.byte());
    vorn_raise("fuzz.Error", message.c_str());
    requireEqual("the number of errors", static_cast<std::int64_t>(vorn_error_count()),
                 static_cast<std::int64_t>(before + 1));
    requireSame("the class of an error", vorn_error_class(before), "fuzz.Error");
    requireSame("the message of an error", vorn_error_message(before), message);
    if (vorn_error_class(before + 1) != nullptr) diverge("an error that is not there", "a text", "null");
    const std::size_t kept = input_.below(before + 3);
    vorn_errors_truncate(kept);
    requireEqual("the number of errors kept", static_cast<std::int64_t>(vorn_error_count()),
                 static_cast<std::int64_t>(std::min(kept, before + 1)));
  }

  // ---- Roots, memory and threads ----

  // What only a root of this thread holds must stay.
  void localRoot() {
    if (localCount_ == locals_.size()) return dropLocalRoots();
    void** const slot = &locals_[localCount_++];
    vorn_local_root_add(slot);
    *slot = vorn_box_long(static_cast<std::int64_t>(localCount_));
    if (input_.flag()) {
      vorn_local_root_add(slot);
      vorn_local_root_remove(slot);
    }
  }

  void globalRoot() {
    Handle held = vorn_box_long(input_.byte());
    std::int64_t before = 0;
    vorn_unbox_long(held, &before);
    const Handle copy = held;
    held = nullptr;
    collect();
    std::int64_t after = -1;
    vorn_unbox_long(copy, &after);
    requireEqual("a box under a root", after, before);
  }

  void collect() {
    vorn_heap_statistics before;
    vorn_heap_get_statistics(&before);
    vorn_heap_collect();
    vorn_heap_statistics after;
    vorn_heap_get_statistics(&after);
    if (after.collections < before.collections || after.allocations < before.allocations) {
      diverge("the statistics", "less", "more");
    }
  }

  void failAllocation() {
    noteFault();
    vorn_heap_fail_allocation(0);
    void* const failed = vorn_box_long(1);
    requireEqual("a failure having happened", vorn_heap_failure_happened(), 1);
    if (failed != nullptr) diverge("an allocation that fails", "an object", "null");
    vorn_heap_fail_allocation(input_.below(4));
    const std::size_t at = any();
    Model model;
    model.content = Content::Text;
    model.text = "after a failure";
    void* const made = vorn_string_new(model.text.c_str(), SIZE_MAX);
    const bool happened = vorn_heap_failure_happened() != 0;
    vorn_heap_fail_allocation(-1);
    if (happened != (made == nullptr))
      diverge("a text while allocations fail", made == nullptr ? "null" : "a text", "the other");
    if (made == nullptr) return noteFault();
    roots()[at] = made;
    models_[at] = model;
  }

  // The operations that follow run on a thread of their own, which attaches early or by itself and detaches or just ends.
  void onThread();

  void requireAll() {
    for (std::size_t i = 0; i < kObjects; ++i) requireModel(i);
  }

 private:
  static RootedSlots<kObjects>& roots() {
    static RootedSlots<kObjects> made;
    return made;
  }
  static void* object(std::size_t at) { return roots()[at]; }
  std::size_t any() { return input_.below(kObjects); }

  void place(void* handle, const Model& model) {
    if (handle == nullptr) diverge("a new object", "null", "an object");
    const std::size_t at = any();
    roots()[at] = handle;
    models_[at] = model;
    requireModel(at);
  }

  void requireModel(std::size_t at) {
    const Model& model = models_[at];
    void* const handle = object(at);
    requireEqual("being an object", vorn_is_object(handle), handle != nullptr && !model.isBare ? 1 : 0);
    switch (model.content) {
      case Content::Nothing:
        return;
      case Content::Box:
        return requireBox(handle, model.value);
      case Content::Text:
        requireSame("a text", vorn_string_text(handle), model.text);
        return requireSame("the type of a text", vorn_type_name(handle), "vorn.String");
      case Content::Instance:
        return requireInstance(handle, model);
      case Content::List:
        return requireLongs(handle, model);
      case Content::Tuple:
        requireEqual("the size of a tuple", vorn_collections_Tuple_size(handle),
                     static_cast<std::int64_t>(model.items.size()));
        for (std::size_t i = 0; i < model.items.size(); ++i) {
          void* item = nullptr;
          requireEqual("an item", vorn_field_get_handle(handle, ("_" + std::to_string(i)).c_str(), &item), 1);
          if (item != model.items[i]) diverge("an item", describe(item), "the one given");
          if (item != nullptr) requireAlive(item);
        }
        return;
    }
  }

  static void requireAlive(void* handle) {
    if (vorn_type_name(handle) == nullptr) diverge("a handle in an object", "no value", "a value");
  }

  static void requireInstance(void* handle, const Model& model) {
    const UserClass& type = classes()[model.classNumber];
    requireSame("the class of an instance", vorn_type_name(handle), type.name);
    requireEqual("being of the class", vorn_is_instance(handle, type.name.c_str()), 1);
    requireEqual("being of the base", vorn_is_instance(handle, classes()[0].name.c_str()),
                 type.isDerived || model.classNumber == 0 ? 1 : 0);
    std::int64_t integer = -1;
    double floating = -1;
    void* held = nullptr;
    requireEqual("the field of an integer", vorn_field_get_integer(handle, "a", &integer), 1);
    requireEqual("the field of a double", vorn_field_get_floating(handle, "b", &floating), 1);
    requireEqual("the field of a handle", vorn_field_get_handle(handle, "c", &held), 1);
    requireEqual("an integer in a field", integer, model.integer);
    requireEqualFloating("a double in a field", floating, model.floating);
    if (held != model.handle) diverge("a handle in a field", describe(held), "the one given");
    if (held != nullptr) requireAlive(held);
  }

  static void requireLongs(void* handle, const Model& model) {
    vorn_list_storage_info info;
    requireEqual("being a list", vorn_list_get_storage(handle, &info), 1);
    requireEqual("the size of a list", static_cast<std::int64_t>(info.size),
                 static_cast<std::int64_t>(model.elements.size()));
    requireSame("the declared type of a list", info.element_type, "Long");
    for (std::size_t i = 0; i < model.elements.size(); ++i) {
      requireEqual("an element", vorn_collections_ArrayList_getInt(handle, static_cast<long long>(i)),
                   model.elements[i]);
    }
  }

  // Also requires that they still hold what they were given.
  void dropLocalRoots() {
    while (localCount_ > 0) {
      void** const slot = &locals_[localCount_ - 1];
      std::int64_t number = 0;
      vorn_unbox_long(*slot, &number);
      requireEqual("a box under a root of a thread", number, static_cast<std::int64_t>(localCount_));
      vorn_local_root_remove(slot);
      --localCount_;
    }
  }

  Input& input_;
  std::array<Model, kObjects> models_;
  std::array<void*, 8> locals_{};
  std::size_t localCount_ = 0;
  bool isOnThread_ = false;
};

constexpr Operation<Embedding> kOperations[] = {
    {"box", &Embedding::box},
    {"box", &Embedding::box},
    {"text", &Embedding::text},
    {"instance", &Embedding::instance},
    {"instance", &Embedding::instance},
    {"list", &Embedding::list},
    {"tuple", &Embedding::tuple},
    {"class", &Embedding::defineClass},
    {"check", &Embedding::check},
    {"fields", &Embedding::setFields},
    {"fields", &Embedding::setFields},
    {"item", &Embedding::setItem},
    {"call", &Embedding::call},
    {"call", &Embedding::call},
    {"call beyond memory", &Embedding::callBeyondMemory},
    {"equality", &Embedding::compare},
    {"error", &Embedding::raise},
    {"root of the thread", &Embedding::localRoot},
    {"root of the process", &Embedding::globalRoot},
    {"collection", &Embedding::collect},
    {"allocation that fails", &Embedding::failAllocation},
    {"thread", &Embedding::onThread},
};

void Embedding::onThread() {
  if (isOnThread_ || input_.byte() % 4 != 0) return;
  dropLocalRoots();
  isOnThread_ = true;
  const std::uint8_t manner = input_.byte();
  std::thread([&] {
    for (int attachment = 0; attachment < 1 + manner / 4 % 2; ++attachment) {
      if (manner % 2 == 0) vorn_thread_attach();
      requireNoError("a new thread");
      const std::size_t count = input_.below(24);
      for (std::size_t i = 0; i < count; ++i) {
        const Operation<Embedding>& operation = kOperations[input_.below(std::size(kOperations))];
        noteOperation(operation.name);
        (this->*operation.run)();
      }
      dropLocalRoots();
      // What is pending goes with the thread, and so it does when it detaches.
      if (manner / 2 % 2 == 0) {
        vorn_thread_detach();
      } else {
        vorn_errors_clear();
      }
    }
  }).join();
  isOnThread_ = false;
}

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return vorn::fuzz::runInput(data, size, vorn::fuzz::kOperations);
}
