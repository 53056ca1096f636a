// The classes that borrowed boxes bear.
#include <vorn/collections/inline/borrowed.h>

#include <new>

#include "collections/core/kinds.h"
#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_name.h"
#include "collections/core/port/values.h"

namespace vc = vorn::collections;

static_assert(sizeof(vorn_borrowed_box) == sizeof(RegisteredObject) && alignof(vorn_borrowed_box) == kObjectAlignment,
              "there is room for a box");

const void* vorn_borrow_classes[14] = {};
static_assert(sizeof(vorn_borrow_classes) / sizeof(vorn_borrow_classes[0]) == vc::kPrimitiveTypes);

// Classes are the runtime's, and outlive every object: a box made for the purpose tells which it is.
const void* vorn_borrow_class(int type) {
  const auto primitive = static_cast<vc::PrimitiveType>(type);
  const RuntimeTypeName name = vc::typeNameOf(primitive);
  const void* box = vc::isFloatingType(primitive) ? boxFloatingLikeLocal(name, 0.0) : boxIntegerLikeLocal(name, 0);
  if (box == nullptr) throw std::bad_alloc();
  const void* boxes = static_cast<const RegisteredObject*>(box)->runtimeClass;
  __atomic_store_n(&vorn_borrow_classes[type], boxes, __ATOMIC_RELAXED);
  return boxes;
}
