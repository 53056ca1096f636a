/* What the fragments of the guide take for granted: the headers, and a list. */
#include <stdint.h>
#include <stdio.h>
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>
#include <vorn/runtime.h>

extern void* list;
