// Compares lists with a model after each way to make one from values at once: literals of boxed values and of integers,
// and the buffers that compiled code fills.
#include <vorn/collections/array_list.h>

#include <array>
#include <cstring>
#include <utility>

#include "fuzz/list_slots.h"

namespace vorn::fuzz {
namespace {

constexpr std::size_t kMostLiterals = 20;

class Buffers : public ListSlots {
 public:
  explicit Buffers(Input& input) : ListSlots(input) {}

  // ---- Literals ----

  void literal() {
    constexpr std::size_t kCounts[] = {0, 1, 5, 10, 0, 1, 3, 12};
    const std::size_t which = input().below(std::size(kCounts));
    const bool synchronised = which >= 4 ? input().flag() : input().byte() % 4 == 0;
    const std::size_t count = synchronised && which < 4 && which > 0 ? 2 : kCounts[which];
    const Type type = input().byte() % 4 != 0 ? choosePrimitive(input()) : Type::None;
    Values values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(argumentOf(type, i));
    void* const* const v = argumentSlots();
    void* list = nullptr;
    if (synchronised) {
      list = count == 0   ? vorn_collections_ArrayListSync_literal0()
             : count == 1 ? vorn_collections_ArrayListSync_literal(1LL, v[0])
             : count == 2 ? vorn_collections_ArrayListSync_literal(2LL, v[0], v[1])
             : count == 3 ? vorn_collections_ArrayListSync_literal(3LL, v[0], v[1], v[2])
                          : vorn_collections_ArrayListSync_literal(12LL, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7],
                                                                   v[8], v[9], v[10], v[11]);
    } else if (which >= 4) {
      list = count == 0   ? vorn_collections_ArrayList_literal(0LL)
             : count == 1 ? vorn_collections_ArrayList_literal(1LL, v[0])
             : count == 3 ? vorn_collections_ArrayList_literal(3LL, v[0], v[1], v[2])
                          : vorn_collections_ArrayList_literal(12LL, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7],
                                                               v[8], v[9], v[10], v[11]);
    } else {
      list = count == 0   ? vorn_collections_ArrayList_literal0()
             : count == 1 ? vorn_collections_ArrayList_literal1(v[0])
             : count == 5
                 ? vorn_collections_ArrayList_literal5(v[0], v[1], v[2], v[3], v[4])
                 : vorn_collections_ArrayList_literal10(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9]);
    }
    ListModel model = modelOfClass(false, synchronised, Type::None);
    finish("a literal", list, std::move(model), [&](ListModel& made) { return fillLiteral(made, values); });
  }

  // Unboxed when all values are boxes of one type, which then is the declared one.
  static ExpectedError fillLiteral(ListModel& model, const Values& values) {
    std::vector<RawValue> raws;
    for (const Value& value : values) {
      const auto raw = rawOf(value);
      if (!raw || value.type != values[0].type) break;
      raws.push_back(*raw);
    }
    if (!raws.empty() && raws.size() == values.size()) return model.assignRaw(raws[0].kind, raws[0].name, raws);
    model.elements = values;
    return {};
  }

  void intLiteral() {
    std::array<long long, kMostLiterals> v{};
    constexpr std::size_t kCounts[] = {0, 1, 5, 10, 20, 0, 2, 0};
    const std::size_t which = input().below(std::size(kCounts));
    const std::size_t count = kCounts[which];
    for (std::size_t i = 0; i < count; ++i) v[i] = chooseValue(input(), Type::Long).integer;
    void* list = nullptr;
    bool synchronised = false;
    switch (which) {
      case 0:
        synchronised = input().flag();
        list = synchronised ? vorn_collections_ArrayListSync_intLiteral0() : vorn_collections_ArrayList_intLiteral0();
        break;
      case 1:
        list = vorn_collections_ArrayList_intLiteral1(v[0]);
        break;
      case 2:
        list = vorn_collections_ArrayList_intLiteral5(v[0], v[1], v[2], v[3], v[4]);
        break;
      case 3:
        list = vorn_collections_ArrayList_intLiteral10(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9]);
        break;
      case 4:
        list =
            vorn_collections_ArrayList_intLiteral20(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10],
                                                    v[11], v[12], v[13], v[14], v[15], v[16], v[17], v[18], v[19]);
        break;
      case 6:
        list = vorn_collections_ArrayList_intLiteral(2LL, v[0], v[1]);
        break;
      default:
        list = vorn_collections_ArrayList_intLiteral(which == 5 ? 0LL : -1LL);
        break;
    }
    std::vector<RawValue> raws;
    for (std::size_t i = 0; i < count; ++i) raws.push_back(rawInteger(Kind::Int, Type::Int, v[i]));
    finish("an integer literal", list, modelOfClass(false, synchronised, Type::None),
           [&](ListModel& made) { return made.assignRaw(Kind::Int, Type::Int, raws); });
  }

  void primitiveLiteral() {
    const bool synchronised = input().flag();
    const Type type = bufferType();
    void* const list = synchronised ? vorn_collections_ArrayListSync_primitiveLiteral0(nameOrNull(type))
                                    : vorn_collections_ArrayList_primitiveLiteral0(nameOrNull(type));
    finish("an empty literal", list, modelOfClass(false, synchronised, Type::None), [&](ListModel& made) {
      made.declared = type;
      made.reserve(1);
      return ExpectedError();
    });
  }

  // ---- New lists with a buffer ----

  void newPrimitiveData() {
    const bool synchronised = input().flag();
    const Type type = bufferType();
    const Type name = type == Type::None ? Type::Int : type;
    const std::int64_t count = smallCount();
    void** const out = &argumentSlots()[0];
    void* const data = synchronised ? vorn_collections_ArrayListSync_newPrimitiveData(count, nameOrNull(type), out)
                                    : vorn_collections_ArrayList_newPrimitiveData(count, nameOrNull(type), out);
    if (kindOf(name) == Kind::None) {
      requireError("newPrimitiveData", primitiveStorageExpected());
      requireEqual("no list coming", *out == nullptr && data == nullptr ? 1 : 0, 1);
      return;
    }
    const std::vector<RawValue> raws = someRaws(kindOf(name), name, count, true);
    write(data, raws);
    finish("newPrimitiveData", *out, modelOfClass(false, synchronised, Type::None),
           [&](ListModel& made) { return made.assignRaw(kindOf(name), name, raws); });
  }

  void newIntegerMirror() {
    const Type type = bufferType();
    const Type name = type == Type::None ? Type::Int : type;
    const std::int64_t count = smallCount();
    long long* const data =
        vorn_collections_ArrayList_newPrimitiveI64Data(count, nameOrNull(type), &argumentSlots()[0]);
    fillIntegers(data, argumentSlots()[0], {}, integerKindOf(name), name, count);
  }

  void newDoubleMirror() {
    const Type type = bufferType();
    const Type name = type == Type::None ? Type::Double : type;
    const std::int64_t count = smallCount();
    double* const data = vorn_collections_ArrayList_newDoubleData(count, nameOrNull(type), &argumentSlots()[0]);
    fillDoubles(data, argumentSlots()[0], {}, floatingKindOf(name), name, count);
  }

  // ---- Buffers of lists that there are ----

  void prepareIntegers() {
    Slot& chosen = anySlot();
    const std::int64_t count = smallCount();
    const bool plainInt = input().flag();
    const Type type = plainInt ? Type::Int : bufferType();
    const Type name = type == Type::None ? Type::Int : type;
    long long* const data =
        plainInt ? vorn_collections_ArrayList_prepareIntData(chosen.list(), count)
                 : vorn_collections_ArrayList_preparePrimitiveI64Data(chosen.list(), count, nameOrNull(type));
    if (chosen.model.linked) return requireNoStorage(chosen, name);
    argumentSlots()[0] = chosen.list();
    fillIntegers(data, chosen.list(), chosen.model, integerKindOf(name), name, count, &chosen);
  }

  void prepareDoubles() {
    Slot& chosen = anySlot();
    const std::int64_t count = smallCount();
    const Type type = bufferType();
    const Type name = type == Type::None ? Type::Double : type;
    double* const data = vorn_collections_ArrayList_prepareDoubleData(chosen.list(), count, nameOrNull(type));
    if (chosen.model.linked) return requireNoStorage(chosen, name);
    argumentSlots()[0] = chosen.list();
    fillDoubles(data, chosen.list(), chosen.model, floatingKindOf(name), name, count, &chosen);
  }

  // The mirror of a list that has one of these kinds can be changed and committed, as a whole or in part.
  void integerMirror() {
    Slot& chosen = anySlot();
    long long* const data = vorn_collections_ArrayList_i64DataPtr(chosen.list());
    const bool hasMirror = isInteger(chosen.model.kind) || chosen.model.kind == Kind::Boolean;
    requireEqual("i64DataPtr being null", data == nullptr ? 1 : 0, hasMirror ? 0 : 1);
    if (!hasMirror) return require("i64DataPtr", chosen);
    std::vector<RawValue> raws;
    for (std::size_t i = 0; i < chosen.model.elements.size(); ++i) {
      requireEqual("a mirrored integer", data[i], chosen.model.elements[i].integer);
      raws.push_back(*rawIn(chosen.model, i));
    }
    if (!raws.empty() && input().flag()) {
      const std::size_t at = input().below(raws.size() > 256 ? 256 : raws.size());
      raws[at] = rawInteger(chosen.model.kind, chosen.model.name, chooseValue(input(), Type::Long).integer);
      data[at] = raws[at].integer;
    }
    raws.resize(raws.empty() ? 0 : input().byte() % (raws.size() + 1));
    const bool asInt = isInteger(chosen.model.kind) && input().byte() % 4 == 0;
    const auto count = static_cast<long long>(raws.size());
    if (asInt) {
      vorn_collections_ArrayList_commitIntDataSize(chosen.list(), count);
    } else if (input().flag()) {
      vorn_collections_ArrayList_commitPrimitiveI64DataSize(chosen.list(), count);
    } else {
      vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast(chosen.list(), count);
    }
    require("a commit of integers", chosen,
            chosen.model.assignRaw(asInt ? Kind::Int : chosen.model.kind, asInt ? Type::Int : chosen.model.name, raws));
  }

  void doubleMirror() {
    Slot& chosen = anySlot();
    double* const data = vorn_collections_ArrayList_f64DataPtr(chosen.list());
    const bool hasMirror = isFloating(chosen.model.kind);
    requireEqual("f64DataPtr being null", data == nullptr ? 1 : 0, hasMirror ? 0 : 1);
    if (!hasMirror) return require("f64DataPtr", chosen);
    std::vector<RawValue> raws;
    for (std::size_t i = 0; i < chosen.model.elements.size(); ++i) {
      requireEqualFloating("a mirrored number", data[i], chosen.model.elements[i].floating);
      raws.push_back(*rawIn(chosen.model, i));
    }
    raws.resize(raws.empty() ? 0 : input().byte() % (raws.size() + 1));
    commitDoubles(chosen.list(), static_cast<long long>(raws.size()));
    require("a commit of doubles", chosen, chosen.model.assignRaw(chosen.model.kind, chosen.model.name, raws));
  }

  // The elements themselves.
  void primitiveData() {
    Slot& chosen = anySlot();
    void* const data = vorn_collections_ArrayList_primitiveDataPtr(chosen.list());
    requireEqual("primitiveDataPtr being null", data == nullptr ? 1 : 0, chosen.model.isUnboxed() ? 0 : 1);
    if (!chosen.model.isUnboxed()) return require("primitiveDataPtr", chosen);
    const std::int64_t count = smallCount();
    commitPrimitive(chosen.list(), count);
    const std::vector<RawValue> raws = someRaws(chosen.model.kind, chosen.model.name, count, true);
    write(vorn_collections_ArrayList_primitiveDataPtr(chosen.list()), raws);
    chosen.model.elements.clear();
    for (const RawValue& raw : raws) chosen.model.elements.push_back(stored(raw));
    require("a commit of elements", chosen);
  }

  // What is refused for its storage changes nothing.
  void refusedCommits() {
    Slot& chosen = anySlot();
    const ListModel& model = chosen.model;
    if (!isInteger(model.kind)) {
      vorn_collections_ArrayList_commitIntDataSize(chosen.list(), input().index());
      require("commitIntDataSize", chosen, {"TypeError", "ArrayList<Int> storage expected"});
    }
    if (!isInteger(model.kind) && model.kind != Kind::Boolean) {
      const std::int64_t count = input().index();
      input().flag() ? vorn_collections_ArrayList_commitPrimitiveI64DataSize(chosen.list(), count)
                     : vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast(chosen.list(), count);
      require("commitPrimitiveI64DataSize", chosen, {"TypeError", "ArrayList integer storage expected"});
    }
    if (!isFloating(model.kind)) {
      commitDoubles(chosen.list(), input().index());
      require("commitDoubleDataSize", chosen, {"TypeError", "ArrayList floating storage expected"});
    }
    if (!model.isUnboxed()) {
      commitPrimitive(chosen.list(), input().index());
      require("commitPrimitiveDataSize", chosen, primitiveStorageExpected());
    }
  }

 private:
  static ExpectedError primitiveStorageExpected() { return {"TypeError", "ArrayList primitive storage expected"}; }

  Type bufferType() {
    const std::uint8_t which = input().byte();
    return which % 16 == 15 ? Type::Nowhere : static_cast<Type>(which % 14);
  }
  std::int64_t smallCount() {
    const std::uint8_t which = input().byte();
    return which < 8 ? -which : which % 40;
  }
  static Kind integerKindOf(Type name) {
    const Kind kind = kindOf(name);
    return isInteger(kind) || kind == Kind::Boolean ? kind : Kind::Long;
  }
  static Kind floatingKindOf(Type name) { return name == Type::Float ? Kind::Float : Kind::Double; }

  static std::optional<RawValue> rawIn(const ListModel& model, std::size_t at) {
    const Value& value = model.elements[at];
    return isFloating(model.kind) ? rawFloating(model.kind, model.name, value.floating)
                                  : rawInteger(model.kind, model.name, value.integer);
  }

  // Raw values to write, of which only those of a list's own elements must be what the type allows.
  std::vector<RawValue> someRaws(Kind kind, Type name, std::int64_t count, bool allowed) {
    std::vector<RawValue> raws;
    for (std::int64_t i = 0; i < count; ++i) {
      if (isFloating(kind)) {
        raws.push_back(rawFloating(kind, name, chooseValue(input(), Type::Double).floating));
        continue;
      }
      RawValue raw = rawInteger(kind, name, chooseValue(input(), Type::Long).integer);
      if (allowed && characterError(raw).exceptionClass != nullptr) raw.integer = 'x';
      if (kind == Kind::Boolean) raw.integer = raw.integer != 0 ? 1 : 0;
      raws.push_back(raw);
    }
    return raws;
  }

  // As compiled code would: at the kind's width.
  static void write(void* data, const std::vector<RawValue>& raws) {
    auto* to = static_cast<unsigned char*>(data);
    for (const RawValue& raw : raws) {
      const auto width = static_cast<std::size_t>(widthOf(raw.kind));
      if (raw.kind == Kind::Float) {
        const auto single = static_cast<float>(raw.floating);
        std::memcpy(to, &single, width);
      } else {
        std::memcpy(to, isFloating(raw.kind) ? static_cast<const void*>(&raw.floating) : &raw.integer, width);
      }
      to += width;
    }
  }

  void commitDoubles(void* list, long long count) {
    input().flag() ? vorn_collections_ArrayList_commitDoubleDataSize(list, count)
                   : vorn_collections_ArrayList_commitDoubleDataSizeFast(list, count);
  }
  void commitPrimitive(void* list, long long count) {
    input().flag() ? vorn_collections_ArrayList_commitPrimitiveDataSize(list, count)
                   : vorn_collections_ArrayList_commitPrimitiveDataSizeFast(list, count);
  }

  // A linked list has no unboxed storage, so that preparing empties it and the commit is refused.
  void requireNoStorage(Slot& chosen, Type name) {
    chosen.model.clear();
    chosen.model.declared = name;
    require("preparing a linked list", chosen);
    vorn_collections_ArrayList_commitPrimitiveI64DataSize(chosen.list(), 0);
    require("a commit to a linked list", chosen, {"TypeError", "ArrayList integer storage expected"});
  }

  void fillIntegers(long long* data, void* list, ListModel model, Kind kind, Type name, std::int64_t count,
                    Slot* own = nullptr) {
    std::vector<RawValue> raws = someRaws(kind, name, count, input().byte() % 4 != 0);
    for (std::size_t i = 0; i < raws.size(); ++i) data[i] = raws[i].integer;
    if (!raws.empty() && input().byte() % 4 == 0) raws.pop_back();
    const auto committed = raws.empty() ? count < 0 ? count : 0 : static_cast<long long>(raws.size());
    input().flag() ? vorn_collections_ArrayList_commitPrimitiveI64DataSize(list, committed)
                   : vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast(list, committed);
    finish(
        "a commit of integers", list, prepared(std::move(model), kind, name),
        [&](ListModel& made) { return made.assignRaw(kind, name, raws); }, own);
  }

  void fillDoubles(double* data, void* list, ListModel model, Kind kind, Type name, std::int64_t count,
                   Slot* own = nullptr) {
    const std::vector<RawValue> raws = someRaws(kind, name, count, true);
    for (std::size_t i = 0; i < raws.size(); ++i) data[i] = raws[i].floating;
    commitDoubles(list, count);
    finish(
        "a commit of doubles", list, prepared(std::move(model), kind, name),
        [&](ListModel& made) { return made.assignRaw(kind, name, raws); }, own);
  }

  static ListModel prepared(ListModel model, Kind kind, Type name) {
    model.clear();
    model.kind = kind;
    model.name = model.declared = name;
    return model;
  }

  // Puts the list, which an argument slot roots, in some place, or leaves it in its own.
  template <class Fill>
  void finish(const char* what, void* list, ListModel model, Fill fill, Slot* own = nullptr) {
    Slot& target = own != nullptr ? *own : anySlot();
    const ExpectedError error = fill(model);
    place(target, list, std::move(model));
    require(what, target, error);
  }
};

constexpr Operation<Buffers> kOperations[] = {
    {"create", &Buffers::create},
    {"add", &Buffers::add},
    {"add many", &Buffers::addMany},
    {"clear", &Buffers::clear},
    {"removeAt", &Buffers::removeAt},
    {"reserve", &Buffers::reserve},
    {"literal", &Buffers::literal},
    {"intLiteral", &Buffers::intLiteral},
    {"primitiveLiteral0", &Buffers::primitiveLiteral},
    {"newPrimitiveData", &Buffers::newPrimitiveData},
    {"newPrimitiveI64Data", &Buffers::newIntegerMirror},
    {"newDoubleData", &Buffers::newDoubleMirror},
    {"prepare integers", &Buffers::prepareIntegers},
    {"prepareDoubleData", &Buffers::prepareDoubles},
    {"i64DataPtr", &Buffers::integerMirror},
    {"f64DataPtr", &Buffers::doubleMirror},
    {"primitiveDataPtr", &Buffers::primitiveData},
    {"refused commits", &Buffers::refusedCommits},
};

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return vorn::fuzz::runInput(data, size, vorn::fuzz::kOperations);
}
