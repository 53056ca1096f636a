// Watched variables: one line whenever the storage of one changes its form.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "console/session.h"
#include "console/values.h"

namespace vorn::console {

class Watches {
 public:
  // Begins to watch the collection that a variable holds; refuses what has no storage.
  void add(const Session& session, const std::string& name);
  // Whether the name was watched.
  bool remove(const std::string& name);
  [[nodiscard]] std::vector<std::string> names() const;

  // Looks at all watched collections after a native; lines about what changed are kept for take().
  void afterNative(const NativeRow& row, std::span<const Value> arguments);
  // Follows the variables to other collections after a statement.
  void afterStatement(const Session& session);

  std::vector<std::string> take();

 private:
  struct Watched {
    Value collection;
    std::string form;
  };

  std::map<std::string, Watched> watched_;
  std::vector<std::string> lines_;
};

// The form of a collection's storage in a few words; changes whenever the elements are kept in another way.
std::string storageForm(void* handle);

}  // namespace vorn::console
