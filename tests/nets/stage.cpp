#include "tests/nets/stage.h"

#include <vorn/collections/array.h>
#include <vorn/collections/tuple.h>

#include <algorithm>
#include <new>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "collections/array/array_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/nets/catalogue.h"
#include "tests/support/lists.h"
#include "tests/support/roots.h"

namespace vorn::tests::nets {

// ---- Readable collections -------------------------------------------------------------------------------------------

namespace {

// "ArrayList<Int>" of "vorn.collections.ArrayList<vorn.Int>".
std::string shortTypeName(void* handle) {
  const std::string full = vorn_type_name(handle);
  const std::size_t bracket = full.find('<');
  std::string name = full.substr(0, bracket);
  name.erase(0, name.rfind('.') + 1);
  return bracket == std::string::npos ? name : name + full.substr(bracket);
}

template <class Visit>
void forEachItem(const CollectionClass& type, void* collection, Visit visit) {
  switch (type.family) {
    case Family::List:
    case Family::Immutable:
      for (long long i = 0; i < vorn_collections_ArrayList_size(collection); ++i) {
        visit(Handle(vorn_collections_ArrayList_operator_index(collection, i)));
      }
      break;
    case Family::Array:
      for (long long i = 0; i < vorn_collections_Array_size(collection); ++i) {
        visit(Handle(vorn_collections_Array_operator_index(collection, i)));
      }
      break;
    case Family::Tuple:
      for (long long i = 0; i < vorn_collections_Tuple_size(collection); ++i) {
        visit(Handle(vorn_collections_Tuple_operator_index(collection, i)));
      }
      break;
    case Family::Map:
      getMapData(collection)->forEach([&](const NativeCollectionKey&, const NativeMapEntry& entry) {
        visit(Handle(entry.key));
        visit(Handle(entry.value));
      });
      break;
    case Family::Set:
      getSetData(collection)->forEach([&](const NativeCollectionKey&, void* item) { visit(Handle(item)); });
      break;
  }
}

std::string join(const Texts& texts) {
  std::string all;
  for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
  return all;
}

template <class T>
void describeHandles(std::ostream& out, T* const* handles, std::uint64_t count) {
  for (std::uint64_t i = 0; i < count; ++i) out << ' ' << static_cast<const void*>(handles[i]);
}

}  // namespace

const CollectionClass* classOf(void* handle) {
  if (handle == nullptr || vorn_is_object(handle) == 0) return nullptr;
  const std::string name = shortTypeName(handle);
  for (const CollectionClass& type : kCollectionClasses) {
    if (name.substr(0, name.find('<')) == type.name) return &type;
  }
  return nullptr;
}

std::string describeWhole(void* handle, int depth) {
  const CollectionClass* const type = classOf(handle);
  if (type == nullptr) return describe(handle);
  std::string text = shortTypeName(handle);
  if (depth == 0) return text;
  Texts items;
  forEachItem(*type, handle, [&](const Handle& item) { items.push_back(describeWhole(item, depth - 1)); });
  // Keys without an order of their own are in that of their addresses.
  if (type->sorted()) std::sort(items.begin(), items.end());
  text += " [" + join(items) + "]";
  if (type->family == Family::List || type->family == Family::Immutable) {
    const std::string storage = storageOf(handle);
    const std::string declared = declaredTypeOf(handle);
    if (storage != "objects") text += " as " + storage;
    if (!declared.empty()) text += " of " + declared;
  }
  return text;
}

std::string withoutLocks(std::string description) {
  const auto replaceAll = [&](const std::string& what, const std::string& by) {
    for (std::size_t at = description.find(what); at != std::string::npos;
         at = description.find(what, at + by.size())) {
      description.replace(at, what.size(), by);
    }
  };
  replaceAll("HashMapSync", "Map");
  replaceAll("Sync", "");
  for (const char* opening : {"[", "{"}) {
    for (const char* tag : {"l", "f", "t"})
      replaceAll(tag + ("s:" + std::string(opening)), tag + (":" + std::string(opening)));
    replaceAll("s:" + std::string(opening), opening);
  }
  return description;
}

std::string stateOf(void* handle) {
  const CollectionClass* const type = classOf(handle);
  if (type == nullptr) return {};
  std::ostringstream out;
  switch (type->family) {
    case Family::List:
    case Family::Immutable:
      out << Snapshot(handle);
      break;
    case Family::Array: {
      const ArrayData& data = *getArrayData(handle);
      out << "slots " << static_cast<int>(data.slotKind) << " of \"" << data.elementType.get() << "\", field "
          << sizeField(handle) << ", bytes";
      for (std::uint64_t i = 0; i < data.primitive.size * data.primitive.elementSize; ++i) {
        out << ' ' << static_cast<int>(static_cast<const unsigned char*>(data.primitive.data)[i]);
      }
      out << ", handles";
      describeHandles(out, data.objects.data, data.objects.size);
      break;
    }
    case Family::Map:
      out << "keys \"" << getMapData(handle)->keyType.get() << "\", values \"" << getMapData(handle)->valueType.get()
          << "\", field " << sizeField(handle);
      getMapData(handle)->forEach([&](const NativeCollectionKey&, const NativeMapEntry& entry) {
        out << ' ' << static_cast<const void*>(entry.key) << ':' << static_cast<const void*>(entry.value);
      });
      break;
    case Family::Set:
      out << "field " << sizeField(handle);
      getSetData(handle)->forEach(
          [&](const NativeCollectionKey&, void* item) { out << ' ' << static_cast<const void*>(item); });
      break;
    case Family::Tuple:
      out << "field " << sizeField(handle);
      for (long long i = 0; i < vorn_collections_Tuple_size(handle); ++i) {
        out << ' ' << static_cast<const void*>(vorn_collections_Tuple_operator_index(handle, i));
      }
      break;
  }
  return out.str();
}

// ---- A call ---------------------------------------------------------------------------------------------------------

namespace {

std::string describeResult(const Native& native, const Result& result) {
  switch (result.sort) {
    case Result::Sort::Nothing:
      return {};
    case Result::Sort::Handle:
      if (!native.rawPointer && !native.isBuffer()) return describeWhole(result.handle);
      return result.handle.get() == nullptr ? "null" : "an address";
    case Result::Sort::Pointer:
      return result.pointer ? "a pointer" : "no pointer";
    case Result::Sort::Integer:
      return std::to_string(result.integer);
    case Result::Sort::Real:
      return describeNumber(result.real);
    case Result::Sort::Truth:
      break;
  }
  return result.integer != 0 ? "true" : "false";
}

}  // namespace

std::string textOf(const Ending& ending) {
  std::string text = ending.threw.empty() ? "gave " + ending.outcome : "threw " + ending.threw;
  for (const std::string& error : ending.errors) text += ", raised " + error;
  return text;
}

Stage::Stage(const Native& native, const Subject& subject, const Choices& choices)
    : native_(native), subject_(subject) {
  if (subject.type != nullptr) receiver_ = make(subject);
  if (native.has(Role::Written)) {
    // The buffers then hold the elements, for a commit to find.
    vorn_collections_ArrayList_i64DataPtr(receiver_);
    vorn_collections_ArrayList_f64DataPtr(receiver_);
  }
  for (const Choice& choice : choices) arguments_.push_back(choice.make(subject, receiver_));
  takeErrors();  // some contents fit no declared type
  for (const Argument& argument : arguments_) argumentsBefore_.push_back(stateOf(argument.handle));
  stateBefore_ = state();
  elementsBefore_ = elements();
}

void Stage::leaveOutReceiver() {
  for (std::size_t place = 0; place < arguments_.size(); ++place) {
    if (native_.roles[place] == Role::Receiver || native_.roles[place] == Role::Record) {
      arguments_[place].handle = nullptr;
      argumentsBefore_[place].clear();
    }
  }
}

void* Stage::other() const {
  for (std::size_t place = 0; place < arguments_.size(); ++place) {
    if (native_.roles[place] == Role::Other || native_.roles[place] == Role::OtherList) return arguments_[place].handle;
  }
  return nullptr;
}

std::string Stage::describeElements() const { return describeWhole(receiver_); }

void Stage::expectWhole(void* handle) const {
  if (handle == held_) return;
  if (const CollectionClass* const type = classOf(handle)) {
    EXPECT_EQ(faultOf(*type, handle), "") << describeWhole(handle);
  }
}

Ending Stage::runWhileHeld(void* collection) {
  Ending ending;
  held_ = collection;
  const auto hold = [&](auto& record) {
    const HeldRecordMutex held(record);
    ending = run();
  };
  switch (classOf(collection)->family) {
    case Family::List:
    case Family::Immutable:
      hold(*getListData(collection));
      break;
    case Family::Array:
      hold(*getArrayData(collection));
      break;
    case Family::Map:
      hold(*getMapData(collection));
      break;
    case Family::Set:
      hold(*getSetData(collection));
      break;
    case Family::Tuple:
      ADD_FAILURE() << "tuples have no lock";
  }
  held_ = nullptr;
  expectWhole(collection);
  return ending;
}

Ending Stage::run() {
  Ending ending;
  const std::size_t roots = rootCount();
  try {
    const Result result = native_.call(arguments_);
    EXPECT_EQ(rootCount(), roots + 1) << "a root is left registered, or one too many is gone";
    ending.errors = takeErrors();
    const bool isCollection = result.sort == Result::Sort::Handle && !native_.rawPointer && !native_.isBuffer();
    if (isCollection) expectWhole(result.handle);
    ending.outcome = describeResult(native_, result);
  } catch (const std::bad_alloc&) {
    ending.threw = "bad_alloc";
  } catch (const std::length_error&) {
    ending.threw = "length_error";
  } catch (const std::system_error&) {
    ending.threw = "system_error";
  } catch (const std::exception& exception) {
    ending.threw = exception.what();
  }
  EXPECT_EQ(rootCount(), roots) << "a root is left registered";
  for (std::string& error : takeErrors()) ending.errors.push_back(std::move(error));
  if (receiver_.get() != nullptr) expectWhole(receiver_);
  for (std::size_t place = 0; place < arguments_.size(); ++place) {
    const Handle& handle = arguments_[place].handle;
    if (native_.roles[place] == Role::Slot) {
      if (!ending.outcome.empty()) ending.outcome += ", and ";
      ending.outcome +=
          native_.random ? (handle.get() != nullptr ? shortTypeName(handle) : "null") : describeWhole(handle);
      expectWhole(handle);
      continue;
    }
    expectWhole(handle);
    const bool ofReceiver = handle.get() == receiver_.get();
    EXPECT_TRUE(ofReceiver || stateOf(handle) == argumentsBefore_[place]) << "an argument has changed";
  }
  return ending;
}

// ---- Tests by native ------------------------------------------------------------------------------------------------

std::vector<const Native*> nativesWhere(bool (*applies)(const Native&), bool result) {
  std::vector<const Native*> natives;
  for (const Native& native : allNatives()) {
    if (applies(native) == result) natives.push_back(&native);
  }
  return natives;
}

}  // namespace vorn::tests::nets
