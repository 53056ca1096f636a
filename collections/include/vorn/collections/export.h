/* Linkage of what the collections library exports. Usable from C11 and C++20. */
#ifndef VORN_COLLECTIONS_EXPORT_H
#define VORN_COLLECTIONS_EXPORT_H

/* Everything is compiled with hidden visibility; only what bears one of these marks is exported. */
#define VORN_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
/* A native: an exported function with the C calling convention. */
#define VORN_NATIVE extern "C" VORN_EXPORT
#else
#include <stdbool.h>
#define VORN_NATIVE VORN_EXPORT
#endif

#endif
