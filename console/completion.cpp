#include "console/completion.h"

#include <algorithm>

#include "console/commands/commands.h"
#include "console/construction.h"
#include "console/natives.h"
#include "console/user_classes.h"

namespace vorn::console {

namespace {

bool isWord(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'; }

std::size_t wordStart(std::string_view text) {
  std::size_t start = text.size();
  while (start > 0 && isWord(text[start - 1])) --start;
  return start;
}

void keepMatching(Completion& completion, std::string_view text) {
  const std::string_view word = text.substr(completion.start);
  std::vector<std::string>& candidates = completion.candidates;
  std::erase_if(candidates, [&](const std::string& candidate) { return !candidate.starts_with(word); });
  std::ranges::sort(candidates);
  candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
}

template <class Names>
void add(Completion& completion, const Names& names) {
  for (const auto& name : names) completion.candidates.emplace_back(name);
}

void addVariables(Completion& completion, const Session& session) {
  for (const auto& [name, value] : session.variables()) completion.candidates.push_back(name);
}

void addUserClasses(Completion& completion) {
  for (const UserClass* type : userClasses()) completion.candidates.push_back(type->name);
}

// The natives of what stands before the dot, as far as it can be known: of a variable, of a class, else all.
void addMembers(Completion& completion, const Session& session, std::string_view before) {
  completion.suffix = "(";
  const std::string_view owner = before.substr(wordStart(before));
  if (const Value* value = session.find(owner); value != nullptr && value->isObject() && !value->isNull()) {
    add(completion, methodNames(familyOf(value->handle())));
    if (const UserClass* type = findUserClass(className(value->handle()))) {
      add(completion, type->fields);
      completion.suffix = "";
    }
    return;
  }
  const bool known = isNativeClass(owner);
  for (const NativeRow* row : allNatives()) {
    if (!known || row->className == owner) completion.candidates.emplace_back(row->method);
  }
}

void addArguments(Completion& completion, const Session& session, std::string_view command) {
  if (command == "natives") return add(completion, nativeClasses());
  if (command == "help") {
    for (const HelpTopic& topic : helpTopics()) completion.candidates.emplace_back(topic.name);
    return;
  }
  addVariables(completion, session);
  if (command != "watch" && command != "unwatch") {
    add(completion, reservedNames());
    addUserClasses(completion);
  }
}

}  // namespace

Completion complete(const Session& session, std::string_view text) {
  Completion completion;
  completion.start = wordStart(text);
  const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
  const bool command = first < text.size() && text[first] == ':';
  const std::size_t blank = text.find(' ', first);
  if (command && blank == std::string_view::npos) {
    for (const Command* each : allCommands()) completion.candidates.emplace_back(each->name);
    completion.suffix = " ";
  } else if (completion.start > 0 && text[completion.start - 1] == '.') {
    addMembers(completion, session, text.substr(0, completion.start - 1));
  } else if (command) {
    addArguments(completion, session, text.substr(first + 1, blank - first - 1));
  } else {
    addVariables(completion, session);
    add(completion, reservedNames());
    add(completion, nativeClasses());
    addUserClasses(completion);
  }
  keepMatching(completion, text);
  return completion;
}

std::string commonBeginning(const std::vector<std::string>& candidates) {
  if (candidates.empty()) return {};
  std::string common = candidates.front();
  for (const std::string& candidate : candidates) {
    const auto [end, other] = std::ranges::mismatch(common, candidate);
    common.erase(end, common.end());
  }
  return common;
}

}  // namespace vorn::console
