// What makes two keys one, and which comes first.
#pragma once

#include "collections/core/port/collection_key.h"
#include "runtime/equality/pair_rules.h"
#include "runtime/keys/key_values.h"

namespace vorn::runtime {

// The verdict on two keys, whose hashes are not looked at, under one of the two rules of keys; Contents for two
// sequences of one family that decide by their elements. Under KeyOrder only Less, Same, Greater, Contents and Raised.
// May run user code, raise and allocate for instances; the caller keeps what is behind the keys alive.
Verdict judgeKeys(Rule rule, const NativeCollectionKey& left, const NativeCollectionKey& right);

// The same for whole keys, looking into sequences, as part of the comparison that is going on. What a table asks for,
// nativeCollectionKeysEqual and compareNativeCollectionKeys, begins a new one: see running_hooks.h.
Verdict judgeWholeKeys(Rule rule, const NativeCollectionKey& left, const NativeCollectionKey& right);

}  // namespace vorn::runtime
