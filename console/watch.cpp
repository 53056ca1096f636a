#include "console/watch.h"

#include <vorn/collections/array_list.h>
#include <vorn/runtime.h>

#include <algorithm>
#include <utility>

#include "console/problems.h"
#include "console/storage_view.h"

namespace vorn::console {

namespace {

constexpr std::size_t kShownValue = 40;

// "add("text")": the call as it would be written.
std::string callText(const NativeRow& row, std::span<const Value> arguments) {
  std::string text = std::string(row.method) + "(";
  for (std::size_t i = row.hasReceiver() ? 1 : 0; i < arguments.size(); ++i) {
    if (text.back() != '(') text += ", ";
    text += shortDisplay(arguments[i], kShownValue);
  }
  return text + ")";
}

// "; xs[3] is "x", a String": the first element that unboxed storage of the type could not hold. Nothing when all are
// of that type, as after a slice assignment, which boxes whatever it is given.
std::string firstForeignElement(const std::string& name, void* list, const std::string& primitiveType) {
  constexpr long long kMostLookedAt = 100'000;
  const long long count = std::min(vorn_collections_ArrayList_size(list), kMostLookedAt);
  Handle element;
  for (long long i = 0; i < count; ++i) {
    element = vorn_collections_ArrayList_operator_index(list, i);
    const std::string type = typeText(element);
    if (type == primitiveType) continue;
    return "; " + name + "[" + std::to_string(i) + "] is " + shortDisplay(Value::object(element), kShownValue) +
           (element == nullptr ? "" : ", of type " + type);
  }
  return {};
}

}  // namespace

std::string storageForm(void* handle) {
  StorageView view;
  if (!viewStorage(handle, view)) return {};
  std::string form = view.live;
  if (view.hashed && view.buckets == 0) form += " without buckets";
  if (view.isInline) form += ", inline";
  return form;
}

void Watches::add(const Session& session, const std::string& name) {
  const Value* value = session.find(name);
  if (value == nullptr) throw Refusal("there is no variable " + name);
  if (!value->isObject() || storageForm(value->handle()).empty()) {
    throw Refusal(name + " has no storage that could change its form");
  }
  watched_.insert_or_assign(name, Watched{*value, storageForm(value->handle())});
}

bool Watches::remove(const std::string& name) { return watched_.erase(name) != 0; }

std::vector<std::string> Watches::names() const {
  std::vector<std::string> names;
  for (const auto& [name, watched] : watched_) names.push_back(name);
  return names;
}

void Watches::afterNative(const NativeRow& row, std::span<const Value> arguments) {
  constexpr std::string_view kUnboxed = "unboxed ";
  for (auto& [name, watched] : watched_) {
    std::string form = storageForm(watched.collection.handle());
    if (form == watched.form) continue;
    std::string line = "watch ";
    line.append(name).append(": ").append(watched.form).append(" -> ").append(form).append(", by ");
    line += callText(row, arguments);
    if (watched.form.starts_with(kUnboxed) && form.starts_with("boxed")) {
      const std::string type = watched.form.substr(kUnboxed.size(), watched.form.find(',') - kUnboxed.size());
      line += firstForeignElement(name, watched.collection.handle(), type);
    }
    lines_.push_back(std::move(line));
    watched.form = std::move(form);
  }
}

void Watches::afterStatement(const Session& session) {
  for (auto it = watched_.begin(); it != watched_.end();) {
    auto& [name, watched] = *it;
    const Value* value = session.find(name);
    if (value == nullptr || !value->isObject() || storageForm(value->handle()).empty()) {
      std::string line = "watch ";
      lines_.push_back(line.append(name).append(": no collection any more"));
      it = watched_.erase(it);
      continue;
    }
    if (value->handle() != watched.collection.handle()) {
      const std::string form = storageForm(value->handle());
      std::string line = "watch ";
      lines_.push_back(line.append(name).append(": another collection now, ").append(form));
      watched = {*value, form};
    }
    ++it;
  }
}

std::vector<std::string> Watches::take() { return std::exchange(lines_, {}); }

}  // namespace vorn::console
