// Bytes in and out of arrays of bytes, for other modules of the runtime. They raise nothing: a failure is false, and
// the error text is overwritten then only. Both lock a synchronised array.
#pragma once

#include <vorn/collections/export.h>

#include <cstddef>
#include <string>
#include <vector>

// Replaces the vector's contents by the array's bytes; a null array has none. False, with the vector unchanged and the
// text "Expected Byte[]", for an array of another slot kind than UInt8.
VORN_EXPORT bool Vorn_readByteArrayData(void* array, std::vector<unsigned char>& out, std::string& error);

// Copies bytes into the array's first slots; they may overlap with the array's own. False, with nothing written, for
// null and for another slot kind ("Expected Byte[]") and for an array that is too short ("Destination Byte[] is too
// small").
VORN_EXPORT bool Vorn_writeByteArrayData(void* array, const unsigned char* bytes, std::size_t count,
                                         std::string& error);
