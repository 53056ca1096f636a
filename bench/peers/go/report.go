// The report's program for Go. The requests that it answers stand in bench/report/server.cpp.
package main

import (
	"bufio"
	"fmt"
	"os"
	"runtime"
	"strconv"
	"strings"
	"syscall"
	"time"
)

const form = "slices"

// row is a workload made ready for a size.
type row struct {
	operations int           // that one run does
	run        func()        // what is measured
	checksum   func() uint32 // of what the first run left
	prepare    func()        // before every run, not measured; may be nil
	onTheWall  bool          // several threads at work
}

type maker func(n int) *row

// rowTable has the makers by workload and kind, split by a tab.
type rowTable map[string]maker

func (rows rowTable) add(workload, kind string, make maker) { rows[workload+"\t"+kind] = make }

func processorTime() time.Duration {
	var usage syscall.Rusage
	if err := syscall.Getrusage(syscall.RUSAGE_SELF, &usage); err != nil {
		panic(err)
	}
	return time.Duration(usage.Utime.Nano() + usage.Stime.Nano())
}

var began = time.Now()

func (r *row) now() time.Duration {
	if r.onTheWall {
		return time.Since(began)
	}
	return processorTime()
}

func (r *row) timeOfRuns(repetitions int) time.Duration {
	if r.prepare == nil {
		start := r.now()
		for i := 0; i < repetitions; i++ {
			r.run()
		}
		return r.now() - start
	}
	var total time.Duration
	for i := 0; i < repetitions; i++ {
		r.prepare()
		start := r.now()
		r.run()
		total += r.now() - start
	}
	return total
}

type server struct {
	rows        rowTable
	ready       *row
	repetitions int
	kept        []*row
}

func (s *server) open(name string, n int, seconds float64) string {
	s.ready = s.rows[name](n)
	if s.ready.prepare != nil {
		s.ready.prepare()
	}
	s.ready.run()
	answer := fmt.Sprintf("ready\t%d", s.ready.checksum())
	s.repetitions = 1
	for {
		taken := s.ready.timeOfRuns(s.repetitions).Seconds()
		if taken >= seconds {
			return answer
		}
		times := 10.0
		if taken > 0 && seconds*1.1/taken < times {
			times = seconds * 1.1 / taken
		}
		s.repetitions = int(float64(s.repetitions)*times) + 1
	}
}

func memoryNow() runtime.MemStats {
	var statistics runtime.MemStats
	runtime.ReadMemStats(&statistics)
	return statistics
}

func (s *server) allocated() string {
	if s.ready.prepare != nil {
		s.ready.prepare()
	}
	before := memoryNow()
	s.ready.run()
	after := memoryNow()
	return fmt.Sprintf("allocated\t%d\t%d", after.Mallocs-before.Mallocs, after.TotalAlloc-before.TotalAlloc)
}

func bytesInUse() int64 {
	runtime.GC()
	runtime.GC()
	statistics := memoryNow()
	return int64(statistics.HeapAlloc)
}

func numberIn(word string) int {
	value, err := strconv.Atoi(word)
	if err != nil {
		panic(err)
	}
	return value
}

func (s *server) answer(words []string) string {
	switch words[0] {
	case "rows":
		answer := ""
		for name := range s.rows {
			answer += "row\t" + form + "\t" + name + "\n"
		}
		return answer + "end"
	case "open":
		seconds, err := strconv.ParseFloat(words[5], 64)
		if err != nil {
			panic(err)
		}
		return s.open(words[2]+"\t"+words[3], numberIn(words[4]), seconds)
	case "run":
		spent := s.ready.timeOfRuns(s.repetitions)
		return fmt.Sprintf("time\t%.6g", float64(spent)/float64(s.repetitions)/float64(s.ready.operations))
	case "allocated":
		return s.allocated()
	case "close":
		s.ready = nil
		runtime.GC()
		return "closed"
	case "memory":
		for i := 0; i < numberIn(words[4]); i++ {
			s.kept = append(s.kept, s.rows[words[2]+"\t"+words[3]](numberIn(words[5])))
		}
		return "prepared"
	case "build":
		before := bytesInUse()
		for _, each := range s.kept {
			each.run()
		}
		return fmt.Sprintf("built\t%d", bytesInUse()-before)
	}
	panic("an unknown request: " + words[0])
}

func main() {
	s := &server{rows: rowTable{}}
	addLists(s.rows)
	addMaps(s.rows)
	input := bufio.NewScanner(os.Stdin)
	for input.Scan() {
		fmt.Println(s.answer(strings.Split(input.Text(), "\t")))
	}
}
