/* The inline forms as functions that can be linked: what libvorn_inline.bc is compiled from. */
#define VORN_INLINE __attribute__((always_inline, visibility("hidden")))
#include <vorn/collections/inline.h>
