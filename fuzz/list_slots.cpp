#include "fuzz/list_slots.h"

#include <cstdlib>
#include <utility>

namespace vorn::fuzz {

namespace {

constexpr std::size_t kListRoots = 8;

RootedSlots<kListRoots>& listRoots() {
  static RootedSlots<kListRoots> roots;
  return roots;
}

RootedSlots<32>& argumentRoots() {
  static RootedSlots<32> roots;
  return roots;
}

}  // namespace

ListSlots::ListSlots(Input& input) : input_(input) {
  static_assert(kLists <= kListRoots && kArguments <= 32);
  listRoots().clear();
  argumentRoots().clear();
  for (std::size_t i = 0; i < kLists; ++i) {
    slots_[i].number = i;
    createIn(slots_[i]);
  }
}

void* ListSlots::Slot::list() const { return listRoots()[number]; }

void** ListSlots::argumentSlots() { return &argumentRoots()[0]; }

ListModel ListSlots::modelOfClass(bool linked, bool synchronised, Type argument) {
  ListModel model;
  model.linked = linked;
  model.synchronised = synchronised;
  model.argument = model.declared = argument;
  return model;
}

std::string ListSlots::classNameOf(const ListModel& model) {
  std::string name = model.immutable ? "ImmutableList" : model.linked ? "LinkedList" : "ArrayList";
  if (model.synchronised) name += "Sync";
  if (model.argument != Type::None) name += std::string("<") + nameOf(model.argument) + ">";
  return name;
}

void ListSlots::create() { createIn(anySlot()); }

void ListSlots::createIn(Slot& chosen) {
  const std::uint8_t kind = input_.byte();
  Type argument = Type::None;
  if (kind / 4 % 2 == 1) {
    constexpr Type kClasses[] = {Type::String, Type::Item, Type::Object, Type::Nowhere};
    const std::uint8_t which = input_.byte();
    argument = which % 16 < 13 ? static_cast<Type>(1 + which % 16) : kClasses[which / 16 % 4];
  }
  ListModel model = modelOfClass(kind % 4 == 3 || kind % 16 == 2, kind % 2 == 1, argument);
  void* const list = vorn_object_new(classNameOf(model).c_str());
  if (list == nullptr) std::abort();
  place(chosen, list, std::move(model));
  require("a new list", chosen);
}

void ListSlots::place(Slot& slot, void* list, ListModel model) {
  listRoots()[slot.number] = list;
  slot.model = std::move(model);
}

void ListSlots::requireError(const char* what, const ExpectedError& error) {
  if (error.exceptionClass == nullptr) return requireNoError(what);
  requireErrors(what, {&error, 1});
}

void ListSlots::require(const char* what, Slot& slot, const ExpectedError& error) {
  requireError(what, error);
  requireList(what, slot.list(), slot.model);
}

void ListSlots::requireAll() {
  for (Slot& slot : slots_) require("a list at the end", slot);
}

Value ListSlots::argumentOf(Type type, std::size_t at) {
  Value value = chooseValue(input_, type);
  value.handle = argumentRoots()[at] = make(value);
  return value;
}

Value ListSlots::argument(const ListModel& model, std::size_t at) {
  const std::uint8_t chosen = input_.byte();
  if (chosen < 150) {
    for (const Type type : {model.name, model.declared}) {
      if (isPrimitive(type) || type == Type::String || type == Type::Item) return argumentOf(type, at);
    }
    if (!model.elements.empty()) return argumentOf(model.elements.back().type, at);
    return argumentOf(Type::Int, at);
  }
  return argumentOf(static_cast<Type>(chosen % 19), at);
}

Value ListSlots::wanted(Slot& slot) {
  if (slot.model.elements.empty() || input_.byte() < 100) return argument(slot.model);
  Value value = slot.model.elements[input_.byte() % slot.model.elements.size()];
  if (value.handle == nullptr && value.type != Type::None) value.handle = make(value);
  argumentRoots()[0] = value.handle;
  return value;
}

std::int64_t ListSlots::indexIn(const Slot& slot) {
  const std::uint8_t chosen = input_.byte();
  if (chosen >= 160 || slot.model.elements.empty()) return input_.index();
  return chosen % slot.model.size() - (chosen >= 120 ? slot.model.size() : 0);
}

void ListSlots::add() {
  Slot& chosen = anySlot();
  const Value value = argument(chosen.model);
  vorn_collections_ArrayList_add(chosen.list(), value.handle);
  require("add", chosen, chosen.model.add(value));
}

void ListSlots::addMany() {
  Slot& chosen = anySlot();
  const Value like = argument(chosen.model);
  const std::size_t count = input_.below(48);
  for (std::size_t i = 0; i < count && chosen.model.size() < kMostElements; ++i) {
    const Value value = argumentOf(like.type);
    vorn_collections_ArrayList_add(chosen.list(), value.handle);
    requireError("add", chosen.model.add(value));
    noteOperation("add");
  }
  require("many adds", chosen);
}

void ListSlots::clear() {
  Slot& chosen = anySlot();
  vorn_collections_ArrayList_clear(chosen.list());
  chosen.model.clear();
  require("clear", chosen);
}

void ListSlots::removeAt() {
  Slot& chosen = anySlot();
  const std::int64_t index = indexIn(chosen);
  vorn_collections_ArrayList_removeAt(chosen.list(), index);
  require("removeAt", chosen, chosen.model.removeAt(index));
}

void ListSlots::reserve() {
  Slot& chosen = anySlot();
  const std::int64_t count = input_.index();
  const bool beyondMemory = count > (1LL << 33) && !chosen.model.linked;
  if (beyondMemory) {
    requireThrows("reserve", [&] { vorn_collections_ArrayList_reserve(chosen.list(), count); });
  } else if (count < 100000) {
    vorn_collections_ArrayList_reserve(chosen.list(), count);
    chosen.model.reserve(count);
  }
  require("reserve", chosen);
}

}  // namespace vorn::fuzz
