// The one element equality and the one element ordering. Both follow a fixed decision order in which the cheap tests
// come first; neither locks, allocates or raises by itself, but both can reach the runtime's structural comparisons and
// with them user code. Callers keep both values rooted and re-read their collection afterwards.
#pragma once

// Whether two element values are equal: identical handles, numbers by value across kinds, texts by bytes whether
// String object or bare text, other objects by Vorn_deepEquals.
bool listValuesEqual(void* left, void* right);

// Negative, zero or positive as left sorts before, with or after right. Null, then bare texts by bytes, then objects;
// numbers by value; other objects by the runtime's collection order, then type name, then address.
int compareListValues(void* left, void* right);

// The text of a String object; null for anything else.
const char* stringObjectTextOrNull(void* value);
