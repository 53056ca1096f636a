// Making objects, their fields and their classes.
#pragma once

#include "collections/core/port/object_layout.h"

#pragma GCC visibility push(default)

extern "C" {

// A new ArrayList (ArrayListSync when the flag is set) with an initialised empty record, which is stored in *listData.
// The third argument is a hint that the elements will be handles. Null on failure. Allocates.
void* Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool elementsAreHandles);

// A new instance of the named class: any built-in or user class by short, full or generic name. A list's declared
// element type comes from the name's type argument. Null when there is no such class. Allocates.
void* Vorn_allocObject(const char* className);

// Fields by name. Boxed values keep theirs in "_value". A missing field reads as 0, 0.0, false or null, and a write to
// it is ignored; a numeric field read as another numeric type is converted. Maps, sets and tuples have the integer
// field "size", 0 when new; a tuple's items are "_0", "_1", ..., and writing one that there is no room for makes room.
// Runs no user code; only Vorn_setField_ptr on a tuple allocates.
long long Vorn_getField_i64(void* handle, const char* field);
double Vorn_getField_double(void* handle, const char* field);
bool Vorn_getField_i1(void* handle, const char* field);
void* Vorn_getField_ptr(void* handle, const char* field);
void Vorn_setField_i64(void* handle, const char* field, long long value);
void Vorn_setField_ptr(void* handle, const char* field, void* value);

// The runtime type name, such as "vorn.Int" or "vorn.collections.ArrayList<Int>"; "vorn.String" for a bare text; null
// for null. The text lives as long as the process, and is one for all objects of a class.
const char* Vorn_objectTypeName(void* handle);

// Whether the handle is an instance of the named class or of a class derived from it; names as in Vorn_allocObject.
// What is so for one object of a class is so for all, for as long as the process lives, and so long no other class has
// the address of its descriptor.
bool Vorn_isInstanceOf(void* handle, const char* typeName);

}  // extern "C"

// A field of an object by name, or null. Items of a tuple have no description.
ObjectField* findObjectField(ObjectRecord* object, const char* field);

#pragma GCC visibility pop
