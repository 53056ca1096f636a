// The embedding API for C++20: what <vorn/runtime.h> leaves to hand-written pairs of calls, as classes whose destructors
// make the second call. Header only; it needs nothing but the C header and may be mixed with it freely. An object of
// these classes is not synchronised: threads that share one must agree on who assigns it and when.
#ifndef VORN_RUNTIME_HPP
#define VORN_RUNTIME_HPP

#include <vorn/runtime.h>

namespace vorn {

// Runs the runtime for a scope. There is one runtime in a process, so there is one such scope at a time; objects must
// not be used after it, but handles may be destroyed after it.
class RuntimeScope {
 public:
  // Starts the runtime with options as vorn_runtime_parse_options reads them, such as "heap=stress,one-in=3"; null or ""
  // means the collected heap. The calling thread is attached. running() tells whether that went well: it fails when
  // the options are not understood, or when the runtime has run, or runs, on another heap.
  explicit RuntimeScope(const char* options = nullptr) {
    vorn_runtime_options parsed;
    running_ =
        vorn_runtime_parse_options(options != nullptr ? options : "", &parsed) != 0 && vorn_runtime_start(&parsed) != 0;
  }
  // Stops it, which clears the pending errors of the calling thread. Does nothing where it was not started.
  ~RuntimeScope() {
    if (running_) vorn_runtime_stop();
  }

  RuntimeScope(const RuntimeScope&) = delete;
  RuntimeScope& operator=(const RuntimeScope&) = delete;

  // Whether this scope started the runtime, or found it running on that heap.
  [[nodiscard]] bool running() const { return running_; }

 private:
  bool running_ = false;
};

// A handle that stays alive while this object holds it, on every heap and wherever the object is: on a stack, in
// malloc'ed memory or in a static variable. Passes for the `void*` that natives take and give, so that
//
//   vorn::Handle list = vorn_object_new("ArrayList<Int>");
//   vorn_collections_ArrayList_addInt(list, 20);
//
// is all there is to it. What a native returns is alive only until the next call that may allocate, and so is the bare
// pointer of a Handle that has ended: hold results in a Handle, and do not take a `void*` from a temporary one.
//
// The object is one root slot, which is registered by its address for as long as the object lives, whatever it holds.
// Hence a copy is a slot of its own, and there is no moving: it could save nothing, so what would move is copied.
// Constructing and destroying one takes a lock of the whole process and a look into a hash table; reading and
// assigning are those of a pointer. Loops therefore assign to a Handle made before them.
//
// A Handle may be made, assigned and destroyed by different threads, and before the runtime starts or after it has
// stopped. Constructing does not throw: where no memory is left to register the slot, the process ends.
class Handle {
 public:
  // Holds a handle, or null. Takes a lock.
  Handle(void* handle = nullptr) noexcept : handle_(handle) { vorn_root_add(&handle_); }  // NOLINT: converts on purpose
  Handle(const Handle& other) noexcept : Handle(other.handle_) {}
  ~Handle() { vorn_root_remove(&handle_); }

  // Holds another handle instead. Takes no lock.
  Handle& operator=(const Handle& other) noexcept = default;
  Handle& operator=(void* handle) noexcept {
    handle_ = handle;
    return *this;
  }

  // The handle, alive as long as this object holds it.
  [[nodiscard]] void* get() const noexcept { return handle_; }
  operator void*() const noexcept { return handle_; }  // NOLINT(google-explicit-constructor): passes for the raw handle

  // The slot itself, for functions that store a handle through a `void**`. What it held before may die as soon as
  // they store another.
  [[nodiscard]] void** out() noexcept { return &handle_; }

 private:
  void* handle_;
};

}  // namespace vorn

#endif
