// What a session has beyond one statement: its variables, who watches the natives that it calls, and what it has done.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "console/natives.h"
#include "console/values.h"

namespace vorn::console {

// Bounds for inputs that nobody has thought about, as those of a fuzzer: a collection that doubles line by line fills
// any memory. None by default.
struct Limits {
  std::uint64_t mostElements = UINT64_MAX;
  bool computationOnly = false;  // no files, and no measurements, which take their time
};

class Session {
 public:
  explicit Session(Limits limits = {}) : limits_(limits) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  using Variables = std::map<std::string, Value, std::less<>>;
  Variables& variables() { return variables_; }
  [[nodiscard]] const Variables& variables() const { return variables_; }
  [[nodiscard]] const Value* find(std::string_view name) const;

  // Calls a native with its arguments as the table names them, those that have a default possibly left out. Refuses
  // arguments of wrong count or type before it calls; what the native raises becomes a RaisedError.
  Value call(const NativeRow& row, std::span<const Value> arguments);

  // The same by name, for the natives that compiled code calls where the language has an operator or a literal.
  Value call(std::string_view className, std::string_view method, std::span<const Value> arguments);

  // How many natives have been called. The address of a buffer is good until there is one more.
  [[nodiscard]] std::uint64_t calls() const { return calls_; }
  [[nodiscard]] const std::set<const NativeRow*>& called() const { return called_; }

  // Called after each native, also after one that raised.
  using Observer = std::function<void(const NativeRow& row, std::span<const Value> arguments)>;
  void observe(Observer observer) { observer_ = std::move(observer); }
  [[nodiscard]] const Observer& observer() const { return observer_; }

  // While natives are clocked: how long the last one took.
  void clockNatives(bool on) { clocked_ = on; }
  [[nodiscard]] double lastNativeNanoseconds() const { return lastNative_; }

  [[nodiscard]] const Limits& limits() const { return limits_; }

 private:
  Limits limits_;
  Variables variables_;
  std::uint64_t calls_ = 0;
  std::set<const NativeRow*> called_;
  Observer observer_;
  bool clocked_ = false;
  double lastNative_ = 0;
};

// Clocks the natives of a session for a scope.
class ClockedNatives {
 public:
  explicit ClockedNatives(Session& session) : session_(session) { session_.clockNatives(true); }
  ~ClockedNatives() { session_.clockNatives(false); }
  ClockedNatives(const ClockedNatives&) = delete;
  ClockedNatives& operator=(const ClockedNatives&) = delete;

 private:
  Session& session_;
};

}  // namespace vorn::console
