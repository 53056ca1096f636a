package main

// The workloads on Go's maps, which stand for sets too. It has no sorted map of its own.

func putAll[K comparable](entries map[K]int32, keys []K, values []int32) {
	for i, key := range keys {
		entries[key] = values[i]
	}
}

func mapPut[K comparable](keys func(n int, seed uint32, present bool) []K) maker {
	return func(n int) *row {
		inserted, values := keys(n, putOrder, true), shuffledOrder(n, putOrder)
		var result map[K]int32
		return &row{
			operations: n,
			run: func() {
				entries := make(map[K]int32)
				putAll(entries, inserted, values)
				result = entries
			},
			checksum: func() uint32 { return digestOfMap(result) },
		}
	}
}

func filledMap[K comparable](keys func(n int, seed uint32, present bool) []K, n int) map[K]int32 {
	entries := make(map[K]int32)
	putAll(entries, keys(n, putOrder, true), shuffledOrder(n, putOrder))
	return entries
}

func mapGet[K comparable](keys func(n int, seed uint32, present bool) []K, present bool) maker {
	return func(n int) *row {
		entries := filledMap(keys, n)
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

func mapIterate(n int) *row {
	entries := filledMap(keysInOrder, n)
	var result int64
	return &row{
		operations: n,
		run: func() {
			var sum int64
			for _, value := range entries {
				sum += int64(value)
			}
			result = sum
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

func mapRemove[K comparable](keys func(n int, seed uint32, present bool) []K) maker {
	return func(n int) *row {
		inserted, values := keys(n, putOrder, true), shuffledOrder(n, putOrder)
		removed := keys(n, getOrder, true)
		var result map[K]int32
		return &row{
			operations: n,
			run: func() {
				entries := make(map[K]int32)
				putAll(entries, inserted, values)
				for _, key := range removed {
					delete(entries, key)
				}
				result = entries
			},
			checksum: func() uint32 { return digestOfMap(result) },
		}
	}
}

func mapChurn(n int) *row {
	order := shuffledOrder(2*n, putOrder)
	entries := make(map[int32]int32)
	for _, number := range order[:n] {
		entries[keyOf(number)] = number
	}
	oldest := 0
	return &row{
		operations: n,
		run: func() {
			for i := 0; i < n; i++ {
				newest := order[(oldest+n)%(2*n)]
				delete(entries, keyOf(order[oldest]))
				entries[keyOf(newest)] = newest
				oldest++
				if oldest == 2*n {
					oldest = 0
				}
			}
		},
		checksum: func() uint32 { return digestOfMap(entries) },
	}
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

func setOf[K comparable](keys []K) map[K]struct{} {
	members := make(map[K]struct{})
	for _, key := range keys {
		members[key] = struct{}{}
	}
	return members
}

func setAdd[K comparable](keys func(n int, seed uint32, present bool) []K) maker {
	return func(n int) *row {
		inserted := keys(n, putOrder, true)
		var result map[K]struct{}
		return &row{
			operations: n,
			run:        func() { result = setOf(inserted) },
			checksum:   func() uint32 { return uint32(len(result)) },
		}
	}
}

func setContains[K comparable](keys func(n int, seed uint32, present bool) []K) maker {
	return func(n int) *row {
		members := setOf(keys(n, putOrder, true))
		wanted := keys(n, getOrder, true)
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

func setIterate(n int) *row {
	members := setOf(keysInOrder(n, putOrder, true))
	var result int64
	return &row{
		operations: n,
		run: func() {
			var sum int64
			for key := range members {
				sum += int64(key)
			}
			result = sum
		},
		checksum: func() uint32 { return uint32(result) },
	}
}

func addMaps(rows rowTable) {
	rows.add("map-put", "Int", mapPut(keysInOrder))
	rows.add("map-put", "String", mapPut(textKeysInOrder))
	rows.add("map-get", "Int", mapGet(keysInOrder, true))
	rows.add("map-get", "String", mapGet(textKeysInOrder, true))
	rows.add("map-miss", "Int", mapGet(keysInOrder, false))
	rows.add("map-miss", "String", mapGet(textKeysInOrder, false))
	rows.add("map-iterate", "Int", mapIterate)
	rows.add("map-remove", "Int", mapRemove(keysInOrder))
	rows.add("map-remove", "String", mapRemove(textKeysInOrder))
	rows.add("map-churn", "Int", mapChurn)
	rows.add("set-add", "Int", setAdd(keysInOrder))
	rows.add("set-add", "String", setAdd(textKeysInOrder))
	rows.add("set-contains", "Int", setContains(keysInOrder))
	rows.add("set-contains", "String", setContains(textKeysInOrder))
	rows.add("set-iterate", "Int", setIterate)
	rows.add("small-maps", "Int", smallMaps)
}
