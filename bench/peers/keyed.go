// The operations of bench/keyed_workloads.h on Go's maps. Prints "operation,elements,nanoseconds" for each repetition:
// the time of the whole process, the collector's threads included, per element.
package main

import (
	"fmt"
	"syscall"
	"time"
)

const (
	putOrder    = 1
	getOrder    = 2
	repetitions = 7
	minimalTime = 20 * time.Millisecond
)

// sink takes what loops compute, so that they are not left out.
var sink int64

// shuffledOrder is the order in which the benchmarks of all libraries visit their keys.
func shuffledOrder(elements int, seed uint64) []int32 {
	order := make([]int32, elements)
	for i := range order {
		order[i] = int32(i)
	}
	for i := elements; i > 1; i-- {
		seed = seed*6364136223846793005 + 1442695040888963407
		other := (seed >> 33) % uint64(i)
		order[i-1], order[other] = order[other], order[i-1]
	}
	return order
}

func absent(order []int32) []int32 {
	keys := make([]int32, len(order))
	for i, number := range order {
		keys[i] = -1 - number
	}
	return keys
}

func processorTime() time.Duration {
	var usage syscall.Rusage
	if err := syscall.Getrusage(syscall.RUSAGE_SELF, &usage); err != nil {
		panic(err)
	}
	return time.Duration(usage.Utime.Nano() + usage.Stime.Nano())
}

func timeOf(work func(), times int) time.Duration {
	start := processorTime()
	for i := 0; i < times; i++ {
		work()
	}
	return processorTime() - start
}

// measure runs the work often enough for a measurable time, which warms it up, and then prints the repetitions.
func measure(name string, elements int, work func()) {
	times := 1
	for timeOf(work, times) < minimalTime {
		times *= 2
	}
	for i := 0; i < repetitions; i++ {
		spent := timeOf(work, times)
		fmt.Printf("%s,%d,%.4f\n", name, elements, float64(spent)/float64(elements)/float64(times))
	}
}

func measureMaps(elements int) {
	inserted := shuffledOrder(elements, putOrder)
	wanted := shuffledOrder(elements, getOrder)
	filled := make(map[int32]int32)
	for _, key := range inserted {
		filled[key] = key
	}
	get := func(keys []int32) func() {
		return func() {
			for _, key := range keys {
				sink += int64(filled[key])
			}
		}
	}
	measure("put boxed Int", elements, func() {
		grown := make(map[int32]int32)
		for _, key := range inserted {
			grown[key] = key
		}
		sink += int64(len(grown))
	})
	measure("get boxed Int", elements, get(wanted))
	measure("get boxed absent Int", elements, get(absent(wanted)))
	measure("values", elements, func() {
		values := make([]int32, 0, len(filled))
		for _, value := range filled {
			values = append(values, value)
		}
		sink += int64(len(values))
	})
}

func measureSets(elements int) {
	inserted := shuffledOrder(elements, putOrder)
	wanted := shuffledOrder(elements, getOrder)
	filled := make(map[int32]struct{})
	for _, key := range inserted {
		filled[key] = struct{}{}
	}
	measure("set add boxed Int", elements, func() {
		grown := make(map[int32]struct{})
		for _, key := range inserted {
			grown[key] = struct{}{}
		}
		sink += int64(len(grown))
	})
	measure("set contains boxed Int", elements, func() {
		for _, key := range wanted {
			if _, present := filled[key]; present {
				sink++
			}
		}
	})
}

func main() {
	for _, elements := range []int{1000, 1000000} {
		measureMaps(elements)
		measureSets(elements)
	}
	if sink == 0 {
		panic("nothing was computed")
	}
}
