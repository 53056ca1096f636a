// Receivers of every family and storage, and what natives are given beside them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/nets/native.h"

namespace vorn::tests::nets {

// What a collection is filled with.
struct Content {
  const char* name;
  const char* element;  // the declared element type; "" for none
  std::vector<Handle> (*elements)();
  Handle (*value)();  // fits, and is among the elements if there are any
};

const std::vector<Content>& contents();
const Content& contentNamed(std::string_view name);

// A receiver to be: a class and what it is filled with.
struct Subject {
  const CollectionClass* type = nullptr;  // null for a native without a receiver
  const Content* content = nullptr;
};
std::string nameOf(const Subject& subject);

// A new collection of the kind.
Handle make(const Subject& subject);

// The class with a lock to one without; null where there is none.
const CollectionClass* synchronisedTwin(const CollectionClass& type);

// Whether there is time for everything: a call costs ten times as much on the stress heap and under ThreadSanitizer, where
// a few receivers of each class stand for all.
bool inFull();

enum class Which { Plain, Synchronised };

// Everything that the native takes as a receiver: for a native without one, a single subject without a class.
std::vector<Subject> subjectsOf(const Native& native, Which which = Which::Plain);

// ---- Arguments ------------------------------------------------------------------------------------------------------

// One way to fill a parameter, for a receiver (which may be null).
struct Choice {
  std::string name;
  std::function<Argument(const Subject& subject, void* receiver)> make;
};

// The first is what a program would pass; the others go to the ends of what can be passed at all.
std::vector<Choice> choicesOf(const Native& native, std::size_t place, const Subject& subject);

// For an index: the ends of what 32 and 64 bits hold, and what is next to the ends of the collection. Numbers of
// elements leave out those that memory could be found for, and that would fill it.
std::vector<Choice> extremesOf(const Native& native, std::size_t place, const Subject& subject);

// A choice for each parameter.
using Choices = std::vector<Choice>;

// Every combination, unless these are too many: then one at a time.
std::vector<Choices> combinations(const Native& native, const Subject& subject);

// The ordinary choices, and these with one of them replaced by every other.
std::vector<Choices> oneAtATime(const Native& native, const Subject& subject,
                                std::vector<Choice> (*others)(const Native&, std::size_t, const Subject&) = choicesOf);
Choices ordinary(const Native& native, const Subject& subject);
std::string nameOf(const Native& native, const Choices& choices);

}  // namespace vorn::tests::nets
