// The rows that a program of the report can measure, by form, workload and kind.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>

namespace vorn::bench::report {

// A workload made ready for a size.
struct Ready {
  std::int64_t operations;                  // that one run does
  std::function<void()> run;                // what is measured
  std::function<std::uint32_t()> checksum;  // of what the first run left
  std::function<void()> prepare = nullptr;  // before every run, not measured
  bool onTheWall = false;                   // several threads at work: their processor time tells nothing
};

using MakeReady = std::function<Ready(std::int64_t n)>;

class Rows {
 public:
  using Name = std::tuple<std::string, std::string, std::string>;  // form, workload, kind

  void add(const char* form, const char* workload, const char* kind, MakeReady makeReady) {
    rows_[{form, workload, kind}] = std::move(makeReady);
  }
  [[nodiscard]] const std::map<Name, MakeReady>& all() const { return rows_; }

 private:
  std::map<Name, MakeReady> rows_;
};

// The forms. Those of the natives are called "natives", "inline" and "buffer".
void addNativeLists(Rows& rows);
void addNativeBulk(Rows& rows);
void addNativeArrays(Rows& rows);
void addNativeKeyed(Rows& rows);
void addStandardLists(Rows& rows);
void addStandardBulk(Rows& rows);
void addStandardKeyed(Rows& rows);
void addAbseil(Rows& rows);
void addGlib(Rows& rows);

inline constexpr const char* kNatives = "natives";
inline constexpr const char* kInline = "inline";
inline constexpr const char* kBuffer = "buffer";
inline constexpr const char* kStandard = "C++";
inline constexpr const char* kAbseil = "Abseil";
inline constexpr const char* kGlib = "GLib";
inline constexpr const char* kVqsort = "vqsort";

}  // namespace vorn::bench::report
