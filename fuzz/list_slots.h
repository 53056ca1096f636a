// Lists beside their models, and the operations that all fuzzers of lists need to come to interesting ones.
#pragma once

#include <vorn/collections/array_list.h>

#include <array>
#include <initializer_list>

#include "fuzz/list_model.h"

namespace vorn::fuzz {

class ListSlots {
 public:
  explicit ListSlots(Input& input);
  ListSlots(const ListSlots&) = delete;
  ListSlots& operator=(const ListSlots&) = delete;

  // ---- Operations ----

  // Puts a new list of any class in some place.
  void create();
  void add();
  // Adds several values of one type.
  void addMany();
  void clear();
  void removeAt();
  void reserve();

  // Compares all lists with their models.
  void requireAll();

 protected:
  static constexpr std::size_t kLists = 4;
  static constexpr std::size_t kArguments = 24;
  static constexpr std::int64_t kMostElements = 400;

  struct Slot {
    std::size_t number;
    ListModel model;
    [[nodiscard]] void* list() const;
  };

  Input& input() { return input_; }
  Slot& anySlot() { return slots_[input_.below(kLists)]; }
  Slot& slot(std::size_t number) { return slots_[number]; }

  void createIn(Slot& chosen);
  // Another list takes the place of the slot's.
  void place(Slot& slot, void* list, ListModel model);
  // A list of that class, which may be generic.
  static ListModel modelOfClass(bool linked, bool synchronised, Type argument);
  static std::string classNameOf(const ListModel& model);

  // Compares the list of the slot with its model, and the errors that are pending with the one that must be.
  void require(const char* what, Slot& slot, const ExpectedError& error = {});
  static void requireError(const char* what, const ExpectedError& error);
  // Runs something that must run out of memory, or find its size beyond all memory.
  template <class Work>
  static void requireThrows(const char* what, Work work) {
    try {
      work();
    } catch (const std::exception&) {
      return;
    }
    diverge(what, "no exception", "an exception");
  }

  // A value that stays rooted in argument `at` until that is chosen anew; mostly one that the list may take unboxed.
  Value argument(const ListModel& model, std::size_t at = 0);
  Value argumentOf(Type type, std::size_t at = 0);
  // One of the list's own elements, or a value like them.
  Value wanted(Slot& slot);
  void** argumentSlots();
  // A type name as natives take it, or null.
  static const char* nameOrNull(Type type) { return type == Type::None ? nullptr : nameOf(type); }
  // A place in the list or near it.
  std::int64_t indexIn(const Slot& slot);

 private:
  Input& input_;
  std::array<Slot, kLists> slots_;
};

}  // namespace vorn::fuzz
