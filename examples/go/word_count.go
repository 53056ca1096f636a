// Counts the words of standard input in a Map and prints them in their order, by the C headers alone.
package main

// #cgo LDFLAGS: -lvorn_collections -lvorn_runtime
// #include <stdlib.h>
// #include <vorn/collections/map.h>
// #include <vorn/runtime.h>
import "C"

import (
	"bufio"
	"fmt"
	"os"
	"runtime"
	"unsafe"
)

// A handle stands in a rooted slot in C's memory, since the collector cannot read the stacks of Go.
type handle struct{ slot *C.vorn_word }

func newHandle() handle {
	slot := (*C.vorn_word)(C.calloc(1, C.sizeof_vorn_word))
	C.vorn_root_add((*unsafe.Pointer)(unsafe.Pointer(slot)))
	return handle{slot}
}

func integer(value int64) (word C.vorn_word) {
	*(*int64)(unsafe.Pointer(&word)) = value
	return word
}

func text(value string) (word C.vorn_word) { // the caller frees it
	*(**C.char)(unsafe.Pointer(&word)) = C.CString(value)
	return word
}

// call stores the function's result in a slot and gives the newest error that it left. No exception comes through.
func call(result handle, shape string, function C.vorn_function, arguments ...C.vorn_word) error {
	cShape := C.CString(shape)
	defer C.free(unsafe.Pointer(cShape))
	if C.vorn_call(cShape, function, &arguments[0], result.slot) == 0 {
		return nil
	}
	defer C.vorn_errors_clear()
	newest := C.vorn_error_count() - 1
	return fmt.Errorf("%s: %s", C.GoString(C.vorn_error_class(newest)), C.GoString(C.vorn_error_message(newest)))
}

func check(err error) {
	if err != nil {
		fmt.Fprintln(os.Stderr, "word_count:", err)
		os.Exit(1)
	}
}

// make stores a new object: of a class, or a String.
func (made handle) make(shape string, function C.vorn_function, content string, rest ...C.vorn_word) {
	name := text(content)
	defer C.free(*(*unsafe.Pointer)(unsafe.Pointer(&name)))
	check(call(made, shape, function, append([]C.vorn_word{name}, rest...)...))
}

func main() {
	// The collector knows threads, not goroutines: one thread makes all calls.
	runtime.LockOSThread()
	counts, word, count := newHandle(), newHandle(), newHandle()
	counts.make("h(h)", C.vorn_function(C.vorn_object_new), "SortedMap<String,Int>")

	words := bufio.NewScanner(os.Stdin)
	words.Split(bufio.ScanWords)
	for words.Scan() {
		word.make("h(hi)", C.vorn_function(C.vorn_string_new), words.Text(), integer(int64(len(words.Text()))))
		var before C.int32_t
		check(call(count, "h(hh)", C.vorn_function(C.vorn_collections_Map__get), *counts.slot, *word.slot))
		C.vorn_unbox_int(*(*unsafe.Pointer)(unsafe.Pointer(count.slot)), &before)
		count.make("h(hi)", C.vorn_function(C.vorn_box_integer), "Int", integer(int64(before)+1))
		check(call(handle{}, "v(hhh)", C.vorn_function(C.vorn_collections_Map_put), *counts.slot, *word.slot, *count.slot))
	}

	check(call(word, "h(h)", C.vorn_function(C.vorn_collections_Map_toString), *counts.slot))
	fmt.Println(C.GoString(C.vorn_string_text(*(*unsafe.Pointer)(unsafe.Pointer(word.slot)))))

	word.make("h(hi)", C.vorn_function(C.vorn_string_new), "absent", integer(6))
	fmt.Println(call(count, "h(hh)", C.vorn_function(C.vorn_collections_Map_operator_index), *counts.slot, *word.slot))
}
