#include "console/natives.h"

#include <algorithm>
#include <utility>

namespace vorn::console {

namespace {

constexpr std::pair<std::string_view, Family> kClasses[] = {
    {"ArrayList", Family::List},
    {"ArrayListSync", Family::None},
    {"ImmutableList", Family::ImmutableList},
    {"Array", Family::Array},
    {"Map", Family::Map},
    {"HashSet", Family::HashSet},
    {"Tuple", Family::Tuple},
};

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

}  // namespace

bool NativeRow::hasReceiver() const {
  if (slots.empty()) return false;
  // The values of literals are handles as well, but no receivers: literals are new lists of what they are given.
  const bool literal = method.starts_with("literal");
  return slots[0] == Slot::Record || (slots[0] == Slot::Handle && !literal);
}

std::vector<ArgumentName> argumentNames(const NativeRow& row) {
  std::vector<ArgumentName> names;
  std::string_view rest = row.argumentNames;
  while (!rest.empty()) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    const std::string_view entry = withoutBlanks(rest.substr(0, comma));
    constexpr std::string_view kList = ":list";
    const std::size_t equals = std::min(entry.find('='), entry.size());
    ArgumentName name = {entry.substr(0, equals), entry.substr(std::min(equals + 1, entry.size()))};
    name.mustBeList = name.name.ends_with(kList);
    if (name.mustBeList) name.name.remove_suffix(kList.size());
    names.push_back(name);
    rest = rest.substr(std::min(comma + 1, rest.size()));
  }
  return names;
}

std::string signatureText(const NativeRow& row) {
  std::string text;
  const std::vector<ArgumentName> names = argumentNames(row);
  for (std::size_t i = row.hasReceiver() ? 1 : 0; i < names.size(); ++i) {
    // What the console passes by itself is not the caller's to give.
    if (row.slots[i] == Slot::Out || (row.variadic && i == 0)) continue;
    if (!text.empty()) text += ", ";
    text += names[i].name;
    if (!names[i].defaultText.empty()) text += "=" + std::string(names[i].defaultText);
    if (row.variadic) text += "...";
  }
  return text;
}

const std::vector<const NativeRow*>& allNatives() {
  static const std::vector<const NativeRow*> rows = [] {
    std::vector<const NativeRow*> all;
    for (const auto part :
         {listNatives(), listBufferNatives(), sequenceNatives(), arrayNatives(), mapNatives(), setNatives()}) {
      for (const NativeRow& row : part) all.push_back(&row);
    }
    const auto place = [](const NativeRow* row) {
      return std::ranges::find(kClasses, row->className, &std::pair<std::string_view, Family>::first);
    };
    std::ranges::stable_sort(all, [&](const NativeRow* a, const NativeRow* b) { return place(a) < place(b); });
    return all;
  }();
  return rows;
}

const NativeRow* findNative(std::string_view className, std::string_view method) {
  for (const NativeRow* row : allNatives()) {
    if (row->className == className && row->method == method) return row;
  }
  return nullptr;
}

const NativeRow* findMethod(Family family, std::string_view method) {
  const NativeRow* row = findNative(classOf(family), method);
  if (row == nullptr && family == Family::ImmutableList) {
    row = findNative("ArrayList", method);
    if (row != nullptr && row->effect != Effect::Reads) row = nullptr;
  }
  return row != nullptr && row->hasReceiver() ? row : nullptr;
}

std::vector<std::string_view> methodNames(Family family) {
  std::vector<std::string_view> names;
  for (const NativeRow* row : allNatives()) {
    if (findMethod(family, row->method) == row) names.push_back(row->method);
  }
  return names;
}

const std::vector<std::string_view>& nativeClasses() {
  static const std::vector<std::string_view> names = [] {
    std::vector<std::string_view> all;
    for (const auto& [name, family] : kClasses) all.push_back(name);
    return all;
  }();
  return names;
}

bool isNativeClass(std::string_view name) { return std::ranges::count(nativeClasses(), name) != 0; }

std::string_view classOf(Family family) {
  if (family == Family::None) return {};
  return std::ranges::find(kClasses, family, &std::pair<std::string_view, Family>::second)->first;
}

Family familyOfClass(std::string_view className) {
  const auto* found = std::ranges::find(kClasses, className, &std::pair<std::string_view, Family>::first);
  return found != std::end(kClasses) ? found->second : Family::None;
}

}  // namespace vorn::console
