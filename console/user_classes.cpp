#include "console/user_classes.h"

#include <vorn/runtime.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

#include "console/display_cost.h"
#include "console/problems.h"
#include "console/scalars.h"
#include "console/text.h"

namespace vorn::console {

namespace {

// Hooks of objects that hold each other call each other. Beyond this depth, texts are cut, equality raises, and nothing
// overflows the stack.
constexpr int kDeepestHook = 12;
thread_local int hookDepth = 0;

class HookCall {
 public:
  HookCall(UserClass& type, Hook hook) {
    ++type.calls[static_cast<std::size_t>(hook)];
    ++hookDepth;
  }
  ~HookCall() { --hookDepth; }
  HookCall(const HookCall&) = delete;
  HookCall& operator=(const HookCall&) = delete;
};

bool tooDeep() { return hookDepth > kDeepestHook; }

std::vector<std::unique_ptr<UserClass>>& registry() {
  static std::vector<std::unique_ptr<UserClass>> classes;
  return classes;
}

std::uint64_t currentSession = 0;

void* fieldOf(void* object, const std::string& field) {
  void* value = nullptr;
  vorn_field_get_handle(object, field.c_str(), &value);
  return value;
}

// The fields that a form looks at: all, or the one that it names.
std::vector<std::string> fieldsOf(const UserClass& type, const std::string& form) {
  return form == "fields" ? type.fields : std::vector<std::string>{form};
}

void raise(const UserClass& type, Hook hook) {
  const std::string message =
      "the " + std::string(kHookNames[static_cast<std::size_t>(hook)]) + " hook of " + type.name + " raises";
  vorn_raise("Exception", message.c_str());
}

bool equals(void* self, void* other, void* context) {
  auto& type = *static_cast<UserClass*>(context);
  const HookCall call(type, Hook::Equals);
  if (type.forms.equals == "always") return true;
  if (type.forms.equals == "never") return false;
  if (type.forms.equals == "raises" || tooDeep()) {
    raise(type, Hook::Equals);
    return false;
  }
  if (vorn_is_instance(other, type.fullName.c_str()) == 0) return false;
  return std::ranges::all_of(fieldsOf(type, type.forms.equals), [&](const std::string& field) {
    return vorn_equals(fieldOf(self, field), fieldOf(other, field)) != 0;
  });
}

// The order of two fields: numbers by value, texts by bytes; nothing for others.
std::optional<int> compareFields(void* left, void* right) {
  if (left == right) return 0;
  const std::optional<Number> a = readNumber(left);
  const std::optional<Number> b = readNumber(right);
  if (a && b) {
    if (!a->isFloating() && !b->isFloating()) return a->integer < b->integer ? -1 : a->integer > b->integer ? 1 : 0;
    return a->floating < b->floating ? -1 : a->floating > b->floating ? 1 : 0;
  }
  const char* leftText = left != nullptr ? vorn_string_text(left) : nullptr;
  const char* rightText = right != nullptr ? vorn_string_text(right) : nullptr;
  if (leftText == nullptr || rightText == nullptr) return std::nullopt;
  return std::string_view(leftText).compare(rightText);
}

int compare(void* self, void* other, bool* comparable, void* context) {
  auto& type = *static_cast<UserClass*>(context);
  const HookCall call(type, Hook::Order);
  *comparable = false;
  if (type.forms.order == "raises") raise(type, Hook::Order);
  if (type.forms.order == "raises" || type.forms.order == "never") return 0;
  if (vorn_is_instance(other, type.fullName.c_str()) == 0) return 0;
  const bool reversed = type.forms.order == "reversed";
  for (const std::string& field : fieldsOf(type, reversed ? "fields" : type.forms.order)) {
    const std::optional<int> order = compareFields(fieldOf(self, field), fieldOf(other, field));
    if (!order) return 0;
    *comparable = true;
    if (*order != 0) return reversed ? -*order : *order;
  }
  *comparable = true;
  return 0;
}

// Equal numbers of different types have the same hash, as they are equal; what the hook cannot hash counts as one.
std::uint64_t hashOf(void* value) {
  if (value == nullptr) return 0;
  if (const std::optional<Number> number = readNumber(value)) return std::hash<double>()(number->floating);
  const char* text = vorn_string_text(value);
  return text != nullptr ? std::hash<std::string_view>()(text) : 1;
}

std::uint64_t hash(void* self, void* context) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;  // 2^64 by the golden ratio: spreads neighbours
  auto& type = *static_cast<UserClass*>(context);
  const HookCall call(type, Hook::Hash);
  if (type.forms.hash == "constant") return 1;
  if (type.forms.hash == "raises") {
    raise(type, Hook::Hash);
    return 0;
  }
  std::uint64_t result = 0;
  for (const std::string& field : fieldsOf(type, type.forms.hash)) {
    result = (result ^ hashOf(fieldOf(self, field))) * kMultiplier;
  }
  return result;
}

// A field as it stands in a text: texts as they are, the rest by its display.
std::string fieldText(void* value, bool quoted) {
  const char* text = value != nullptr ? vorn_string_text(value) : nullptr;
  if (text != nullptr && !quoted) return text;
  return displayCost(value) == DisplayCost::Fine ? valueToDisplayString(value) : typeText(value) + "(...)";
}

// The text between quotes of a declaration, with the fields in place of their names between braces.
std::string filledTemplate(const UserClass& type, void* self) {
  const std::string_view form = std::string_view(type.forms.text).substr(1);
  std::string result;
  for (std::size_t at = 0; at < form.size();) {
    const std::size_t end = form[at] == '{' ? form.find('}', at) : std::string_view::npos;
    const std::string field(end != std::string_view::npos ? form.substr(at + 1, end - at - 1) : std::string_view());
    if (std::ranges::count(type.fields, field) != 0) {
      result += fieldText(fieldOf(self, field), false);
      at = end + 1;
    } else {
      result += form[at++];
    }
  }
  return result;
}

std::string textOf(UserClass& type, void* self, bool cut) {
  if (cut) return type.name + "(...)";
  if (type.forms.text == "name") return type.name;
  if (type.forms.text.starts_with('"')) return filledTemplate(type, self);
  if (type.forms.text != "fields") return fieldText(fieldOf(self, type.forms.text), false);
  std::string text = type.name + "(";
  for (const std::string& field : type.fields) {
    if (text.back() != '(') text += ", ";
    text += field + "=" + fieldText(fieldOf(self, field), true);
  }
  return text + ")";
}

void* toString(void* self, void* context) {
  auto& type = *static_cast<UserClass*>(context);
  const HookCall call(type, Hook::Text);
  if (type.forms.text == "raises") {
    raise(type, Hook::Text);
    return nullptr;
  }
  const std::string text = textOf(type, self, tooDeep());
  return vorn_string_new(text.data(), text.size());
}

void checkForm(const UserClass& type, std::string_view hook, const std::string& form,
               std::initializer_list<std::string_view> words) {
  if (form.empty() || form.starts_with('"') || std::ranges::count(words, form) != 0) return;
  if (std::ranges::count(type.fields, form) != 0) return;
  std::string known;
  for (const std::string_view word : words) known += std::string(word) + ", ";
  throw Refusal("'" + std::string(hook) + " " + form + "' is no form of that hook: there are " + known +
                "or a field of " + type.name);
}

void check(const UserClass& type) {
  for (std::size_t i = 0; i < type.fields.size(); ++i) {
    if (std::ranges::count(type.fields, type.fields[i]) > 1)
      throw Refusal("the field " + type.fields[i] + " occurs twice");
  }
  checkForm(type, "equals", type.forms.equals, {"fields", "always", "never", "raises"});
  checkForm(type, "order", type.forms.order, {"fields", "reversed", "never", "raises"});
  checkForm(type, "hash", type.forms.hash, {"fields", "constant", "raises"});
  checkForm(type, "text", type.forms.text, {"fields", "name", "raises"});
}

bool sameHooks(const HookForms& left, const HookForms& right) {
  return left.equals.empty() == right.equals.empty() && left.order.empty() == right.order.empty() &&
         left.hash.empty() == right.hash.empty() && left.text.empty() == right.text.empty();
}

void define(UserClass& type) {
  std::vector<vorn_field_definition> fields;
  for (const std::string& field : type.ownFields) fields.push_back({field.c_str(), VORN_FIELD_HANDLE});
  vorn_class_definition definition = {};
  definition.struct_size = sizeof definition;
  definition.name = type.fullName.c_str();
  definition.base_name = type.base != nullptr ? type.base->fullName.c_str() : nullptr;
  definition.fields = fields.data();
  definition.field_count = fields.size();
  definition.context = &type;
  if (!type.forms.equals.empty()) definition.equals = equals;
  if (!type.forms.order.empty()) definition.compare = compare;
  if (!type.forms.hash.empty()) definition.hash = hash;
  if (!type.forms.text.empty()) definition.to_string = toString;
  if (vorn_class_define(&definition) == 0) throw Refusal("the runtime has a class " + type.name + " already");
}

}  // namespace

void forgetUserClasses() { ++currentSession; }

const UserClass* findUserClass(std::string_view name) {
  for (const auto& type : registry()) {
    if (type->session == currentSession && type->name == name) return type.get();
  }
  return nullptr;
}

std::vector<const UserClass*> userClasses() {
  std::vector<const UserClass*> classes;
  for (const auto& type : registry()) {
    if (type->session == currentSession) classes.push_back(type.get());
  }
  return classes;
}

const UserClass& declareClass(const ClassDeclaration& declaration) {
  auto type = std::make_unique<UserClass>();
  type->name = declaration.name;
  if (!declaration.base.empty()) {
    type->base = findUserClass(declaration.base);
    if (type->base == nullptr) throw Refusal("there is no user class " + declaration.base);
    type->fields = type->base->fields;
  }
  type->ownFields = declaration.fields;
  type->fields.insert(type->fields.end(), declaration.fields.begin(), declaration.fields.end());
  type->forms = declaration.hooks;
  type->session = currentSession;
  check(*type);

  std::size_t namesakes = 0;
  for (const auto& known : registry()) {
    if (known->name != type->name) continue;
    ++namesakes;
    if (known->base == type->base && known->ownFields == type->ownFields && sameHooks(known->forms, type->forms)) {
      if (known->session != currentSession) known->calls = {};
      known->session = currentSession;
      known->forms = type->forms;
      return *known;
    }
    if (known->session == currentSession) {
      throw Refusal("a class stays for the rest of the session; only the forms of its hooks can change: " +
                    declarationText(*known));
    }
  }
  type->fullName = (namesakes == 0 ? "app." : "app" + std::to_string(namesakes + 1) + ".") + type->name;
  define(*type);
  registry().push_back(std::move(type));
  return *registry().back();
}

Value newUserObject(const UserClass& type, std::span<const Value> fields) {
  Value object = newObject(vorn_object_new(type.fullName.c_str()));
  for (std::size_t i = 0; i < fields.size(); ++i) {
    vorn_field_set_handle(object.handle(), type.fields[i].c_str(), fields[i].handle());
  }
  return object;
}

std::string declarationText(const UserClass& type) {
  std::string text = "class " + type.name + "(";
  for (const std::string& field : type.ownFields) {
    if (&field != &type.ownFields.front()) text += ", ";
    text += field;
  }
  text += ")";
  if (type.base != nullptr) text += " : " + type.base->name;
  const std::array<const std::string*, kHookCount> forms = {&type.forms.equals, &type.forms.order, &type.forms.hash,
                                                            &type.forms.text};
  for (std::size_t i = 0; i < kHookCount; ++i) {
    if (forms[i]->empty()) continue;
    text += " " + std::string(kHookNames[i]) + " " + *forms[i];
    if (forms[i]->starts_with('"')) text += '"';
  }
  return text;
}

}  // namespace vorn::console
