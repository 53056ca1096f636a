// Compares displays and joins with those of an independent model, over random collections of all kinds that contain
// values, texts, user objects, each other and themselves.
//
// An input is a sequence of operations, each a byte followed by its arguments; a missing byte reads as 0.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "collections/array/array_data.h"
#include "collections/array/array_validation.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/values.h"
#include "collections/core/storage/list_data.h"
#include "collections/core/storage/list_validation.h"
#include "collections/display/display_guard.h"
#include "collections/display/value_display.h"
#include "collections/keyed/keyed_validation.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "fuzz/display_model.h"
#include "fuzz/fuzzer.h"

namespace vorn::fuzz {
namespace {

// ---- The collections ------------------------------------------------------------------------------------------------

const std::vector<Node>* activeNodes = nullptr;

void* showNode(void* self, void*) {
  std::int64_t number = 0;
  vorn_field_get_integer(self, "node", &number);
  const std::string text = valueToDisplayString((*activeNodes)[static_cast<std::size_t>(number)].handle.get());
  return vorn_string_new(text.data(), text.size());
}

void defineShower() {
  const vorn_field_definition fields[] = {{"node", VORN_FIELD_INTEGER}};
  vorn_class_definition definition = {};
  definition.struct_size = sizeof(definition);
  definition.name = "fuzz.Shower";
  definition.fields = fields;
  definition.field_count = 1;
  definition.to_string = showNode;
  static const bool defined = vorn_class_define(&definition) != 0;
  if (!defined) std::abort();
}

void* display(const Node& node) {
  void* const handle = node.handle.get();
  switch (node.kind->family) {
    case Family::List:
      return vorn_collections_ArrayList_toString(handle);
    case Family::Immutable:
      return vorn_collections_ImmutableList_toString(handle);
    case Family::Tuple:
      return vorn_collections_Tuple_toString(handle);
    case Family::Set:
      return vorn_collections_HashSet_toString(handle);
    case Family::Map:
      return vorn_collections_Map_toString(handle);
    case Family::Array:
      return vorn_collections_Array_toString(handle);
  }
  return nullptr;
}

std::string faultOf(const Node& node) {
  void* const handle = node.handle.get();
  switch (node.kind->family) {
    case Family::List:
    case Family::Immutable:
      return collections::validateListData(*getListData(handle));
    case Family::Set:
      return collections::validateSetData(*getSetData(handle));
    case Family::Map:
      return collections::validateMapData(*getMapData(handle));
    case Family::Array:
      return collections::validateArrayData(*getArrayData(handle));
    case Family::Tuple:
      break;
  }
  return {};
}

// One input: its bytes, and the nodes that it makes.
class Scenario {
 public:
  Scenario(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {
    nodes_.reserve(kMostNodes);
    activeNodes = &nodes_;
    addNode();
  }
  ~Scenario() { activeNodes = nullptr; }
  Scenario(const Scenario&) = delete;
  Scenario& operator=(const Scenario&) = delete;

  void run() {
    while (next_ != end_) step();
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      checkDisplay(i);
      checkJoin(i, ", ");
    }
  }

 private:
  static constexpr std::size_t kMostNodes = 24;
  static constexpr std::size_t kMostElements = 12;

  std::uint8_t byte() { return next_ != end_ ? *next_++ : 0; }
  std::size_t anyNode() { return byte() % nodes_.size(); }

  void step() {
    noteOperation("a step");
    switch (byte() % 16) {
      case 0:
      case 1:
      case 2:
        return addNode();
      case 3:
        return checkDisplay(anyNode());
      case 4: {
        constexpr const char* kSeparators[] = {", ", "", nullptr, " and so on "};
        const std::size_t number = anyNode();
        return checkJoin(number, kSeparators[byte() % 4]);
      }
      case 5:
        return clear(nodes_[anyNode()]);
      case 6:
        return removeLast(nodes_[anyNode()]);
      default: {
        const std::size_t number = anyNode();
        return addElement(number);
      }
    }
  }

  void addNode() {
    if (nodes_.size() == kMostNodes) return;
    Node node;
    node.kind = &kKinds[byte() % kKinds.size()];
    const bool mayDeclare = node.kind->family == Family::List || node.kind->family == Family::Array;
    const std::uint8_t argument = byte();
    if (mayDeclare && argument % 2 == 1) node.declared = static_cast<What>(1 + argument / 2 % 8);
    std::string type = node.kind->type;
    if (node.declared != What::Null) type += std::string("<") + typeOf(node.declared) + ">";
    const std::size_t size = byte() % 5;
    if (node.kind->family == Family::Tuple) {
      const std::vector<void*> items(size);
      node.handle = vorn_tuple_new(nullptr, items.data(), size);
      node.elements.resize(size);
    } else {
      node.handle = vorn_object_new(type.c_str());
    }
    if (node.handle.get() == nullptr) std::abort();
    if (node.kind->family == Family::Array) {
      vorn_collections_Array_ctor(node.handle.get(), static_cast<long long>(size));
      node.elements.resize(size, Value{node.declared, 0, 0, {}});
    }
    nodes_.push_back(std::move(node));
  }

  // A value of the wanted primitive type, or of any type.
  Value anyValue(What wanted) {
    Value value;
    value.what = wanted != What::Null ? wanted : static_cast<What>(byte() % 16 > 13 ? 13 : last_ % 14);
    const int serial = ++serial_;
    value.integer = serial;
    switch (value.what) {
      case What::Long:
        value.integer = static_cast<std::int64_t>(byte()) << (byte() % 56) ^ serial;
        break;
      case What::Boolean:
        value.integer = byte() % 2;
        break;
      case What::Char:
      case What::CodeUnit:
        value.integer = 32 + byte() % 90;
        break;
      case What::Float:
        value.floating = serial * 0.25 - byte();
        break;
      case What::Double: {
        std::uint64_t bits = 0;
        for (int i = 0; i < 8; ++i) bits = bits << 8 | byte();
        value.floating = std::bit_cast<double>(bits);
        break;
      }
      case What::String:
      case What::Text: {
        constexpr const char* kTexts[] = {"", "plain", "\"", "\\", "\n\x01", "\xC3\xA9", ", ", "null"};
        value.text = kTexts[byte() % 8] + std::to_string(serial);
        break;
      }
      case What::Shower:
      case What::Node:
        value.integer = static_cast<std::int64_t>(anyNode());
        break;
      default:
        break;
    }
    return value;
  }

  void* make(const Value& value) {
    switch (value.what) {
      case What::Null:
        return nullptr;
      case What::Double:
      case What::Float:
        return vorn_box_floating(typeOf(value.what), value.floating);
      case What::Boolean:
        return vorn_box_boolean(value.integer != 0);
      case What::String:
        return vorn_string_new(value.text.data(), value.text.size());
      case What::Text:
        return vorn_text_new(value.text.c_str());
      case What::Object:
        return vorn_object_new("Object");
      case What::Shower: {
        void* const shower = vorn_object_new("fuzz.Shower");
        vorn_field_set_integer(shower, "node", value.integer);
        return shower;
      }
      case What::Node:
        return nodes_[static_cast<std::size_t>(value.integer)].handle.get();
      default:
        return vorn_box_integer(typeOf(value.what), value.integer);
    }
  }

  void addElement(std::size_t number) {
    Node& node = nodes_[number];
    last_ = byte();
    const Value value = anyValue(node.declared);
    const Handle element(make(value));
    void* const handle = node.handle.get();
    const bool isFull = node.elements.size() >= kMostElements;
    switch (node.kind->family) {
      case Family::List:
        if (isFull) return;
        vorn_collections_ArrayList_add(handle, element.get());
        adopt(node, value);
        node.elements.push_back(value);
        return;
      case Family::Immutable:
        if (isFull) return;
        getListData(handle)->objectPushBack(element.get());
        node.elements.push_back(value);
        return;
      case Family::Set:
        if (isFull || !isNewInSet(node, value)) return;
        vorn_collections_HashSet_add(handle, element.get());
        node.elements.push_back(value);
        return;
      case Family::Map: {
        if (isFull) return;
        const Value key = newKey();
        const Handle keyHandle(make(key));
        vorn_collections_Map_put(handle, keyHandle.get(), element.get());
        node.keys.push_back(key);
        node.elements.push_back(value);
        return;
      }
      case Family::Tuple:
      case Family::Array: {
        if (node.elements.empty()) return;
        const std::size_t at = byte() % node.elements.size();
        if (node.kind->family == Family::Array) {
          vorn_collections_Array_operator_index_eq(handle, static_cast<long long>(at), element.get());
        } else {
          vorn_field_set_handle(handle, ("_" + std::to_string(at)).c_str(), element.get());
        }
        node.elements[at] = value;
        return;
      }
    }
  }

  // Keys ascend, so that sorted maps hold them in the order in which they came.
  Value newKey() {
    Value key;
    key.integer = ++serial_;
    key.what = byte() % 2 == 0 ? What::Int : What::Double;
    if (key.what == What::Double) key.floating = static_cast<double>(key.integer) + 0.5;
    return key;
  }

  // Only values that equal no other: texts and integers are numbered, nodes are themselves. Of sequences, which are
  // equal by content, a set gets one at most.
  bool isNewInSet(const Node& set, const Value& value) {
    switch (value.what) {
      case What::Int:
      case What::String:
      case What::Text:
      case What::Object:
      case What::Shower:
        return true;
      case What::Null:
      case What::Node:
        break;
      default:
        return false;
    }
    for (const Value& element : set.elements) {
      if (element.what != value.what) continue;
      if (value.what == What::Null || element.integer == value.integer) return false;
      if (isSequence(element) && isSequence(value)) return false;
    }
    return true;
  }
  bool isSequence(const Value& value) {
    const Family family = nodes_[static_cast<std::size_t>(value.integer)].kind->family;
    return family == Family::Immutable || family == Family::Tuple;
  }

  // An empty array list of no declared type adopts the type of a primitive value, and gives it up for good when a value
  // of another type comes.
  static void adopt(Node& node, const Value& value) {
    if (node.declared != What::Null || node.kind->linked) return;
    if (node.elements.empty() && node.unboxed == What::Null) {
      if (isPrimitive(value.what)) node.unboxed = value.what;
    } else if (node.unboxed != value.what) {
      node.unboxed = What::Null;
    }
  }

  void clear(Node& node) {
    void* const handle = node.handle.get();
    switch (node.kind->family) {
      case Family::List:
        vorn_collections_ArrayList_clear(handle);
        break;
      case Family::Set:
        vorn_collections_HashSet_clear(handle);
        break;
      case Family::Map:
        vorn_collections_Map_clear(handle);
        break;
      default:
        return;
    }
    node.keys.clear();
    node.elements.clear();
    node.unboxed = What::Null;
  }

  static void removeLast(Node& node) {
    if (node.kind->family != Family::List || node.elements.empty()) return;
    vorn_collections_ArrayList_removeAt(node.handle.get(), -1);
    node.elements.pop_back();
  }

  void checkAtRest(std::size_t number) {
    requireSame("the fault of a record", faultOf(nodes_[number]), "");
    requireSame("the number of errors", std::to_string(vorn_error_count()), "0");
    requireSame("the number of marks", std::to_string(gCollectionDisplayStack.size()), "0");
  }

  void checkDisplay(std::size_t number) {
    try {
      const std::string expected = Printer(nodes_).display(number);
      requireSame("a display", stringValueFromPtr(display(nodes_[number])), expected);
      requireSame("the display of a value", valueToDisplayString(nodes_[number].handle.get()), expected);
      ++compared_;
    } catch (const TooLong&) {
    }
    checkAtRest(number);
  }

  void checkJoin(std::size_t number, const char* separator) {
    const Node& node = nodes_[number];
    const Family family = node.kind->family;
    if (family != Family::List && family != Family::Immutable && family != Family::Array) return;
    // The display inside would wait for the lock of the join.
    std::set<std::size_t> seen;
    if (node.kind->synchronised && reaches(number, number, seen)) return;
    try {
      const std::string expected = Printer(nodes_).join(node, separator != nullptr ? separator : "");
      void* const joined = family == Family::Array ? vorn_collections_Array_join(node.handle.get(), separator)
                                                   : vorn_collections_ArrayList_join(node.handle.get(), separator);
      requireSame("a join", stringValueFromPtr(joined), expected);
      ++compared_;
    } catch (const TooLong&) {
    }
    checkAtRest(number);
  }

  bool reaches(std::size_t from, std::size_t wanted, std::set<std::size_t>& seen) {
    for (const Value& value : nodes_[from].elements) {
      if (value.what != What::Node && value.what != What::Shower) continue;
      const auto next = static_cast<std::size_t>(value.integer);
      if (next == wanted) return true;
      if (seen.insert(next).second && reaches(next, wanted, seen)) return true;
    }
    return false;
  }

  const std::uint8_t* next_;
  const std::uint8_t* end_;
  std::vector<Node> nodes_;
  std::uint8_t last_ = 0;
  int serial_ = 0;
  std::uint64_t compared_ = 0;
};

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vorn::fuzz::startRuntime();
  vorn::fuzz::defineShower();
  vorn::fuzz::beginInput();
  vorn::fuzz::Scenario(data, size).run();
  return 0;
}
