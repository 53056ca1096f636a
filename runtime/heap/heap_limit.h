// Where the collected heap ends in a process whose memory is limited (setrlimit). The collector's library keeps a header
// for each block outside of the heap, and when there is no memory for one it drops a block that its lists still know: a
// later collection then follows what is left of it (seen with 8.2: "Header allocation failed"). So the heap ends before
// the limit does, and what is left is for headers.
#pragma once

namespace vorn::runtime {

// From now on the heap keeps that distance, by what limits and memory are whenever it grows. Call once, before it grows.
void keepHeapBelowLimit() noexcept;

// By what they are now. A limit that was raised counts from here on, and without this from the heap's next growth.
void lookAtLimitAgain() noexcept;

}  // namespace vorn::runtime
