package main

// The workloads on Go's maps, which stand for sets too. It has no sorted map of its own.

// keyMaker makes the keys of a workload.
type keyMaker[K comparable] func(n int, seed uint32, present bool) []K

// valueMaker makes the values of a map's keys, or the nothings of a set's elements.
type valueMaker[V any] func(n int, seed uint32) []V

func noValues(n int, _ uint32) []struct{} { return make([]struct{}, n) }

func putAll[K comparable, V any](entries map[K]V, keys []K, values []V) {
	for i, key := range keys {
		entries[key] = values[i]
	}
}

func filled[K comparable, V any](keys keyMaker[K], values valueMaker[V], n int) map[K]V {
	entries := make(map[K]V)
	putAll(entries, keys(n, putOrder, true), values(n, putOrder))
	return entries
}

// build measures a map or set that is made of n keys, all of which are then removed where that is wanted.
func build[K comparable, V any](keys keyMaker[K], values valueMaker[V], remove bool, digest func(map[K]V) uint32) maker {
	return func(n int) *row {
		inserted, kept := keys(n, putOrder, true), values(n, putOrder)
		var removed []K
		if remove {
			removed = keys(n, getOrder, true)
		}
		var result map[K]V
		return &row{
			operations: n,
			run: func() {
				entries := make(map[K]V)
				putAll(entries, inserted, kept)
				for _, key := range removed {
					delete(entries, key)
				}
				result = entries
			},
			checksum: func() uint32 { return digest(result) },
		}
	}
}

// churn has half of twice as many keys in a map or set at any time.
func churn[K comparable, V any](keys keyMaker[K], values valueMaker[V], digest func(map[K]V) uint32) maker {
	return func(n int) *row {
		all, kept := keys(2*n, putOrder, true), values(2*n, putOrder)
		entries := make(map[K]V)
		putAll(entries, all[:n], kept[:n])
		oldest := 0
		return &row{
			operations: n,
			run: func() {
				for i := 0; i < n; i++ {
					newest := (oldest + n) % (2 * n)
					delete(entries, all[oldest])
					entries[all[newest]] = kept[newest]
					oldest++
					if oldest == 2*n {
						oldest = 0
					}
				}
			},
			checksum: func() uint32 { return digest(entries) },
		}
	}
}

func mapGet[K comparable](keys keyMaker[K], present bool) maker {
	return func(n int) *row {
		entries := filled(keys, shuffledOrder, n)
		wanted := keys(n, getOrder, present)
		var result int64
		return &row{
			operations: n,
			run: func() {
				var sum int64
				for _, key := range wanted {
					if value, found := entries[key]; found {
						sum += int64(value)
					}
				}
				result = sum
			},
			checksum: func() uint32 { return uint32(result) },
		}
	}
}

// iterate adds up what sum makes of a map or set.
func iterate[K comparable, V any](keys keyMaker[K], values valueMaker[V], sum func(map[K]V) int64) maker {
	return func(n int) *row {
		entries := filled(keys, values, n)
		var result int64
		return &row{
			operations: n,
			run:        func() { result = sum(entries) },
			checksum:   func() uint32 { return uint32(result) },
		}
	}
}

func sumOfValues[K comparable](entries map[K]int32) int64 {
	var sum int64
	for _, value := range entries {
		sum += int64(value)
	}
	return sum
}

func digestOfMap[K comparable](entries map[K]int32) uint32 {
	return digestOfEntries(len(entries), sumOfValues(entries))
}

// smallMaps keeps the map that it made last, so that none is made on the stack.
func smallMaps(n int) *row {
	var last map[int32]int32
	var result int64
	return &row{
		operations: n,
		run: func() {
			var sum int64
			for i := 0; i < n; i++ {
				entries := make(map[int32]int32)
				for j := 0; j < 8; j++ {
					entries[int32(i+j)] = int32(i + j)
				}
				last = entries
				sum += int64(last[int32(i+7)])
			}
			result = sum
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

// ---- Sets ----

func setContains[K comparable](keys keyMaker[K], present bool) maker {
	return func(n int) *row {
		members := filled(keys, noValues, n)
		wanted := keys(n, getOrder, present)
		var result int
		return &row{
			operations: n,
			run: func() {
				found := 0
				for _, key := range wanted {
					if _, present := members[key]; present {
						found++
					}
				}
				result = found
			},
			checksum: func() uint32 { return uint32(result) },
		}
	}
}

func sumOfNumbers(members map[int32]struct{}) int64 {
	var sum int64
	for member := range members {
		sum += int64(member)
	}
	return sum
}

func sumOfLengths(members map[string]struct{}) int64 {
	var sum int64
	for member := range members {
		sum += int64(len(member))
	}
	return sum
}

func digestOfSet[K comparable](sum func(map[K]struct{}) int64) func(map[K]struct{}) uint32 {
	return func(members map[K]struct{}) uint32 { return digestOfEntries(len(members), sum(members)) }
}

// ---- The table ----

func addKeyed[K comparable](rows rowTable, kind string, keys keyMaker[K], sum func(map[K]struct{}) int64) {
	rows.add("map-put", kind, build(keys, shuffledOrder, false, digestOfMap[K]))
	rows.add("map-get", kind, mapGet(keys, true))
	rows.add("map-miss", kind, mapGet(keys, false))
	rows.add("map-iterate", kind, iterate(keys, shuffledOrder, sumOfValues[K]))
	rows.add("map-remove", kind, build(keys, shuffledOrder, true, digestOfMap[K]))
	rows.add("map-churn", kind, churn(keys, shuffledOrder, digestOfMap[K]))
	rows.add("set-add", kind, build(keys, noValues, false, digestOfSet(sum)))
	rows.add("set-contains", kind, setContains(keys, true))
	rows.add("set-miss", kind, setContains(keys, false))
	rows.add("set-iterate", kind, iterate(keys, noValues, sum))
	rows.add("set-remove", kind, build(keys, noValues, true, digestOfSet(sum)))
	rows.add("set-churn", kind, churn(keys, noValues, digestOfSet(sum)))
}

func addMaps(rows rowTable) {
	addKeyed(rows, "Int", keysInOrder, sumOfNumbers)
	addKeyed(rows, "String", textKeysInOrder, sumOfLengths)
	rows.add("small-maps", "Int", smallMaps)
}
