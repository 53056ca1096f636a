package main

import (
	"container/list"
	"fmt"
	"sort"
	"strconv"
	"strings"
	"sync"
)

// The workloads on slices, as Go's own means do them.

func appendAll[E number](n int) *row {
	var result []E
	return &row{
		operations: n,
		run: func() {
			var elements []E
			for i := 0; i < n; i++ {
				elements = append(elements, E(i))
			}
			result = elements
		},
		checksum: func() uint32 { return digestOf(result) },
	}
}

func appendBytes(n int) *row {
	var result []uint8
	return &row{
		operations: n,
		run: func() {
			var elements []uint8
			for i := 0; i < n; i++ {
				elements = append(elements, uint8(i&127))
			}
			result = elements
		},
		checksum: func() uint32 { return digestOf(result) },
	}
}

func digestOfItems(items []*item) uint32 {
	var result digest
	for _, each := range items {
		result.add(int64(each.value))
	}
	return uint32(result)
}

func appendItems(n int) *row {
	items := itemsOf(n)
	var result []*item
	return &row{
		operations: n,
		run: func() {
			var elements []*item
			for _, each := range items {
				elements = append(elements, each)
			}
			result = elements
		},
		checksum: func() uint32 { return digestOfItems(result) },
	}
}

func readAll[E int32 | int64 | uint8](n int) *row {
	elements := elementsOf[E](n)
	var result int64
	return &row{
		operations: n,
		run: func() {
			var sum int64
			for i := 0; i < len(elements); i++ {
				sum += int64(elements[i])
			}
			result = sum
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

func readDoubles(n int) *row {
	elements := elementsOf[float64](n)
	var result float64
	return &row{
		operations: n,
		run: func() {
			var sum float64
			for i := 0; i < len(elements); i++ {
				sum += elements[i]
			}
			result = sum
		},
		checksum: func() uint32 { return digestOfFloat(result) },
	}
}

func readItems(n int) *row {
	items := itemsOf(n)
	var result int64
	return &row{
		operations: n,
		run: func() {
			var sum int64
			for i := 0; i < len(items); i++ {
				sum += int64(items[i].value)
			}
			result = sum
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

func writeAll[E int32 | float64](n int) *row {
	elements := elementsOf[E](n)
	return &row{
		operations: n,
		run: func() {
			for i := 0; i < len(elements); i++ {
				elements[i] = E(i)
			}
		},
		checksum: func() uint32 { return digestOf(elements) },
	}
}

func readRandom(n int) *row {
	elements := elementsOf[int32](n)
	order := shuffledOrder(n, getOrder)
	var result int64
	return &row{
		operations: n,
		run: func() {
			var sum int64
			for _, at := range order {
				sum += int64(elements[at])
			}
			result = sum
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

func appendRemoveLast(n int) *row {
	var result []int32
	return &row{
		operations: n,
		run: func() {
			var elements []int32
			for i := 0; i < n; i++ {
				elements = append(elements, int32(i))
			}
			result = elements
			for len(result) > 0 {
				result = result[:len(result)-1]
			}
		},
		checksum: func() uint32 { return uint32(len(result)) },
	}
}

func insertFront(n int) *row {
	var result []int32
	return &row{
		operations: n,
		run: func() {
			var elements []int32
			for i := 0; i < n; i++ {
				elements = append(elements, 0)
				copy(elements[1:], elements)
				elements[0] = int32(i)
			}
			result = elements
		},
		checksum: func() uint32 { return digestOf(result) },
	}
}

// removeFront moves what follows, as one does who goes on to append: cutting the slice would lose its capacity.
func removeFront(n int) *row {
	var result []int32
	return &row{
		operations: n,
		run: func() {
			var elements []int32
			for i := 0; i < n; i++ {
				elements = append(elements, int32(i))
			}
			for len(elements) > 0 {
				copy(elements, elements[1:])
				elements = elements[:len(elements)-1]
			}
			result = elements
		},
		checksum: func() uint32 { return uint32(len(result)) },
	}
}

func indexOf[E comparable](elements []E, value E) int {
	for i, element := range elements {
		if element == value {
			return i
		}
	}
	return -1
}

func searching[E comparable](elements []E, value E, operations int) *row {
	var result int
	return &row{
		operations: operations,
		run:        func() { result = indexOf(elements, value) },
		checksum:   func() uint32 { return uint32(result) },
	}
}

func count(n int) *row {
	elements := elementsOf[int32](n)
	value := numberAt(n / 2)
	var result int
	return &row{
		operations: n,
		run: func() {
			found := 0
			for _, element := range elements {
				if element == value {
					found++
				}
			}
			result = found
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

func reverse[E number](n int) *row {
	elements := elementsOf[E](n)
	return &row{
		operations: n,
		run: func() {
			for left, right := 0, len(elements)-1; left < right; left, right = left+1, right-1 {
				elements[left], elements[right] = elements[right], elements[left]
			}
		},
		checksum: func() uint32 { return digestOf(elements) },
	}
}

func making(n, operations int, make func(elements []int32) []int32) *row {
	elements := elementsOf[int32](n)
	var result []int32
	return &row{
		operations: operations,
		run:        func() { result = make(elements) },
		checksum:   func() uint32 { return digestOf(result) },
	}
}

func slice(n int) *row {
	return making(n, n/2, func(elements []int32) []int32 {
		return append([]int32(nil), elements[n/4:n/4+n/2]...)
	})
}

func sliceStrided(n int) *row {
	return making(n, (n+1)/2, func(elements []int32) []int32 {
		made := make([]int32, (n+1)/2)
		for i := range made {
			made[i] = elements[2*i]
		}
		return made
	})
}

func concat(n int) *row {
	others := elementsOf[int32](n)
	return making(n, 2*n, func(elements []int32) []int32 {
		made := make([]int32, 0, 2*n)
		made = append(made, elements...)
		return append(made, others...)
	})
}

// ---- Texts ----

func text(operations int, make func() string, checksum func(text string) uint32) *row {
	var result string
	return &row{
		operations: operations,
		run:        func() { result = make() },
		checksum:   func() uint32 { return checksum(result) },
	}
}

func digestOfText(text string) uint32 { return digestOfTexts([]string{text}) }

func display(n int) *row {
	elements := elementsOf[int32](n)
	return text(n, func() string { return fmt.Sprint(elements) }, digestOfDigits)
}

func joinInts(n int) *row {
	elements := elementsOf[int32](n)
	return text(n, func() string {
		var made []byte
		for i, element := range elements {
			if i > 0 {
				made = append(made, ", "...)
			}
			made = strconv.AppendInt(made, int64(element), 10)
		}
		return string(made)
	}, digestOfText)
}

func joinTexts(n int) *row {
	texts := textsOf(n)
	return text(n, func() string { return strings.Join(texts, ", ") }, digestOfText)
}

func textOfChars(n int) *row {
	characters := make([]rune, n)
	for i := range characters {
		characters[i] = charAt(i)
	}
	return text(n, func() string { return string(characters) }, digestOfText)
}

// ---- Sorts ----

func sorting[E any](pattern string, n int, drawn func(int32) E, less func(left, right E) bool,
	digestOfAll func([]E) uint32) *row {
	draws := sortDraws(pattern, n)
	inputs := make([][]E, len(draws))
	work := make([][]E, len(draws))
	for k, input := range draws {
		inputs[k] = make([]E, n)
		work[k] = make([]E, n)
		for i, draw := range input {
			inputs[k][i] = drawn(draw)
		}
	}
	return &row{
		operations: n * len(draws),
		prepare: func() {
			for k := range inputs {
				copy(work[k], inputs[k])
			}
		},
		run: func() {
			for _, elements := range work {
				sort.Slice(elements, func(i, j int) bool { return less(elements[i], elements[j]) })
			}
		},
		checksum: func() uint32 { return digestOfAll(work[len(work)-1]) },
	}
}

func sortNumbers[E number](pattern string, drawn func(int32) E) maker {
	return func(n int) *row {
		return sorting(pattern, n, drawn, func(left, right E) bool { return left < right }, digestOf[E])
	}
}

func sortTexts(n int) *row {
	return sorting("random", n, drawnText, func(left, right string) bool { return left < right }, digestOfTexts)
}

// ---- Arrays, linked, small and shared ----

func prefixSums(n int) *row {
	elements := elementsOf[int32](n)
	return &row{
		operations: n,
		run: func() {
			for i := 1; i < len(elements); i++ {
				elements[i] += elements[i-1]
			}
		},
		checksum: func() uint32 { return digestOf(elements) },
	}
}

func linkedAppend(n int) *row {
	items := itemsOf(n)
	var result *list.List
	return &row{
		operations: n,
		run: func() {
			elements := list.New()
			for _, each := range items {
				elements.PushBack(each)
			}
			result = elements
		},
		checksum: func() uint32 {
			var found []*item
			for node := result.Front(); node != nil; node = node.Next() {
				found = append(found, node.Value.(*item))
			}
			return digestOfItems(found)
		},
	}
}

func linkedIterate(n int) *row {
	elements := list.New()
	for _, each := range itemsOf(n) {
		elements.PushBack(each)
	}
	var result int64
	return &row{
		operations: n,
		run: func() {
			var sum int64
			for node := elements.Front(); node != nil; node = node.Next() {
				sum += int64(node.Value.(*item).value)
			}
			result = sum
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

// smallLists keeps the list that it made last, so that none is made on the stack.
func smallLists(n int) *row {
	var last []int32
	var result int64
	return &row{
		operations: n,
		run: func() {
			var sum int64
			for i := 0; i < n; i++ {
				var elements []int32
				for j := 0; j < 8; j++ {
					elements = append(elements, int32(i+j))
				}
				last = elements
				sum += int64(last[7])
			}
			result = sum
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

type lockedList struct {
	mutex    sync.Mutex
	elements []int32
}

func (l *lockedList) add(times int) {
	for i := 0; i < times; i++ {
		l.mutex.Lock()
		l.elements = append(l.elements, 1)
		l.mutex.Unlock()
	}
}

func synchronisedAdd(threads int) maker {
	return func(n int) *row {
		var result int
		return &row{
			operations: n,
			onTheWall:  threads > 1,
			run: func() {
				locked := &lockedList{}
				if threads == 1 {
					locked.add(n)
				} else {
					done := make(chan struct{})
					go func() {
						locked.add(n / 2)
						close(done)
					}()
					locked.add(n - n/2)
					<-done
				}
				result = len(locked.elements)
			},
			checksum: func() uint32 { return uint32(result) },
		}
	}
}

func addLists(rows rowTable) {
	rows.add("append", "Int", appendAll[int32])
	rows.add("append", "Long", appendAll[int64])
	rows.add("append", "Double", appendAll[float64])
	rows.add("append", "Byte", appendBytes)
	rows.add("append", "Object", appendItems)
	for _, workload := range []string{"read", "sum"} {
		rows.add(workload, "Int", readAll[int32])
		rows.add(workload, "Long", readAll[int64])
		rows.add(workload, "Double", readDoubles)
		rows.add(workload, "Byte", readAll[uint8])
	}
	rows.add("read", "Object", readItems)
	rows.add("write", "Int", writeAll[int32])
	rows.add("write", "Double", writeAll[float64])
	rows.add("read-random", "Int", readRandom)
	rows.add("append-remove-last", "Int", appendRemoveLast)
	rows.add("insert-front", "Int", insertFront)
	rows.add("remove-front", "Int", removeFront)
	rows.add("search-hit", "Int", func(n int) *row {
		return searching(elementsOf[int32](n), numberAt(n*3/4), n*3/4+1)
	})
	rows.add("search-hit", "String", func(n int) *row { return searching(textsOf(n), textAt(n*3/4), n*3/4+1) })
	rows.add("search-miss", "Int", func(n int) *row { return searching(elementsOf[int32](n), absentNumber, n) })
	rows.add("search-miss", "Double", func(n int) *row { return searching(elementsOf[float64](n), absentNumber, n) })
	rows.add("search-miss", "String", func(n int) *row { return searching(textsOf(n), absentText, n) })
	rows.add("count", "Int", count)
	rows.add("reverse", "Int", reverse[int32])
	rows.add("reverse", "Long", reverse[int64])
	rows.add("slice", "Int", slice)
	rows.add("slice-strided", "Int", sliceStrided)
	rows.add("concat", "Int", concat)
	rows.add("display", "Int", display)
	rows.add("join", "Int", joinInts)
	rows.add("join", "String", joinTexts)
	rows.add("text-of-chars", "Char", textOfChars)
	rows.add("sort", "Int", sortNumbers("random", drawnInt))
	rows.add("sort", "Long", sortNumbers("random", drawnLong))
	rows.add("sort", "Double", sortNumbers("random", drawnDouble))
	rows.add("sort", "Byte", sortNumbers("random", drawnByte))
	rows.add("sort", "String", sortTexts)
	for _, pattern := range []string{"sorted", "reversed", "nearly", "equal", "adversarial"} {
		rows.add("sort-"+pattern, "Int", sortNumbers(pattern, drawnInt))
	}
	rows.add("array-write", "Int", writeAll[int32])
	rows.add("array-read", "Int", readAll[int32])
	rows.add("array-prefix-sums", "Int", prefixSums)
	rows.add("linked-append", "Object", linkedAppend)
	rows.add("linked-iterate", "Object", linkedIterate)
	rows.add("small-lists", "Int", smallLists)
	rows.add("synchronised-add", "Int", synchronisedAdd(1))
	rows.add("synchronised-add-2", "Int", synchronisedAdd(2))
}
