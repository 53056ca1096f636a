// Language errors as C++ exceptions.
//
// A native records an error on its thread and returns a neutral result. The members of <vorn/collections.hpp> look after
// each call: what the call itself has raised becomes one exception, and is pending no more. Errors that were pending
// before are not the call's: they stay pending and change nothing, with one exception. The members of maps and sets
// that look for a key could do nothing then, as their natives are neutral; so they throw the older errors instead of
// calling, and these are pending no more.
//
// What else leaves a native as an exception passes through as it is, with the errors of that call taken back: memory
// exhaustion (std::bad_alloc), sizes that cannot be (std::length_error), a failing mutex (std::system_error), and
// whatever a hook of a user class has thrown.
#ifndef VORN_CPP_ERRORS_HPP
#define VORN_CPP_ERRORS_HPP

#include <vorn/runtime.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#ifndef __cpp_exceptions
#error "<vorn/collections.hpp> reports errors as exceptions; without them, use the C headers and <vorn/runtime.hpp>"
#endif

namespace vorn {

// One language error.
struct error_record {
  std::string class_name;  // such as "IndexException"
  std::string message;     // without the class
};

// What a call has raised. Copies share their texts and do not throw.
class error : public std::exception {
 public:
  // One error.
  error(std::string class_name, std::string message) : error({{std::move(class_name), std::move(message)}}) {}
  // All errors of one call, the oldest first, of which there is one at least. The oldest is the cause, and the one that
  // this exception shows: a hook raises before the native that called it does.
  explicit error(std::vector<error_record> records) {
    std::string what = records.front().class_name + ": " + records.front().message;
    told_ = std::make_shared<const told>(told{std::move(what), std::move(records)});
  }

  // "Class: message".
  [[nodiscard]] const char* what() const noexcept override { return told_->what.c_str(); }
  // The class and the message of the oldest error, and all of them, the oldest first.
  [[nodiscard]] const std::string& class_name() const noexcept { return told_->records.front().class_name; }
  [[nodiscard]] const std::string& message() const noexcept { return told_->records.front().message; }
  [[nodiscard]] const std::vector<error_record>& records() const noexcept { return told_->records; }

  // Makes the errors pending again on the calling thread: for hooks of user classes and other functions that C calls.
  void raise() const {
    for (const error_record& record : records()) vorn_raise(record.class_name.c_str(), record.message.c_str());
  }

 private:
  struct told {
    std::string what;
    std::vector<error_record> records;
  };
  std::shared_ptr<const told> told_;
};

// The language's IndexException. An error of a class that has none here is a plain `error`.
class index_error : public error {
 public:
  // Made as `error` is.
  using error::error;
};
// The language's KeyException.
class key_error : public error {
 public:
  // Made as `error` is.
  using error::error;
};
// The language's TypeError.
class type_error : public error {
 public:
  // Made as `error` is.
  using error::error;
};
// The language's ValueException.
class value_error : public error {
 public:
  // Made as `error` is.
  using error::error;
};
// The language's NullException.
class null_error : public error {
 public:
  // Made as `error` is.
  using error::error;
};
// The language's ReadOnlyException.
class read_only_error : public error {
 public:
  // Made as `error` is.
  using error::error;
};

namespace detail {

[[noreturn]] inline void throw_as_its_class(std::vector<error_record> records) {
  const std::string& name = records.front().class_name;
  if (name == "IndexException") throw index_error(std::move(records));
  if (name == "KeyException") throw key_error(std::move(records));
  if (name == "TypeError") throw type_error(std::move(records));
  if (name == "ValueException") throw value_error(std::move(records));
  if (name == "NullException") throw null_error(std::move(records));
  if (name == "ReadOnlyException") throw read_only_error(std::move(records));
  throw error(std::move(records));
}

// Throws the pending errors from the one at `first` on, of which there is one at least, and takes them back.
[[noreturn]] inline void throw_errors_from(std::size_t first) {
  std::vector<error_record> records;
  const std::size_t end = vorn_error_count();
  for (std::size_t i = first; i < end; ++i) records.push_back({vorn_error_class(i), vorn_error_message(i)});
  vorn_errors_truncate(first);
  throw_as_its_class(std::move(records));
}

[[noreturn]] inline void throw_type_error(std::string_view expected, const char* found) {
  std::string message(expected);
  message += " was expected, but the value is ";
  message += found != nullptr ? found : "null";
  throw type_error("TypeError", std::move(message));
}

// The function's result; throws what it has raised.
template <class Function, class... Arguments>
auto call(Function function, Arguments... arguments) -> std::invoke_result_t<Function, Arguments...> {
  const std::size_t before = vorn_error_count();
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Function, Arguments...>>) {
      function(arguments...);
      if (vorn_error_count() > before) [[unlikely]]
        throw_errors_from(before);
    } else {
      const auto result = function(arguments...);
      if (vorn_error_count() > before) [[unlikely]]
        throw_errors_from(before);
      return result;
    }
  } catch (...) {
    vorn_errors_truncate(before);
    throw;
  }
}

// The same for natives that do nothing while an older error is pending: throws that instead of calling.
template <class Function, class... Arguments>
auto call_with_key(Function function, Arguments... arguments) -> std::invoke_result_t<Function, Arguments...> {
  if (vorn_error_count() != 0) [[unlikely]]
    throw_errors_from(0);
  return call(function, arguments...);
}

}  // namespace detail
}  // namespace vorn

#endif
