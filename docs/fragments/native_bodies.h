// What the fragments about native bodies take for granted: the rooms that they use, and what stands before them.
#include "collections/arraylist/object_cursor.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/equality/element_order.h"
#include "collections/core/pending_error_watch.h"
#include "collections/core/port/roots.h"

using vorn::collections::ObjectCursor;
using vorn::collections::PendingErrorWatch;
using vorn::collections::RootedHandle;

extern ListData& list;
extern ListData::PrimitiveKind kind;
extern RuntimeTypeName name;
extern long long x;
extern double d;
extern void* wanted;
extern RootedHandle& element;
extern ObjectCursor cursor;
extern PendingErrorWatch watch;
