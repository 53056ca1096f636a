package main

import (
	"strconv"
)

// What elements, keys and orders are: bench/report/definitions.h for Go.

const (
	putOrder     = 1
	getOrder     = 2
	absentNumber = -1
	absentText   = "absent"
)

type item struct{ value int32 }

type number interface {
	int32 | int64 | float64 | uint8
}

func numberAt(index int) int32 { return int32(uint32(index) * 0x9E3779B1 & 0xFFFFFF) }

func textAt(index int) string { return "e" + strconv.Itoa(int(numberAt(index))) }

func charAt(index int) rune {
	if index%16 == 15 {
		return 0xE9
	}
	return rune('a' + index%26)
}

// elementsOf makes n elements; each type has its own.
func elementsOf[E number](n int) []E {
	elements := make([]E, n)
	for i := range elements {
		number := numberAt(i)
		switch pointer := any(&elements[i]).(type) {
		case *int32:
			*pointer = number
		case *int64:
			*pointer = int64(number) + 1<<33
		case *float64:
			*pointer = float64(number) + 0.5
		case *uint8:
			*pointer = uint8(number & 127)
		}
	}
	return elements
}

func textsOf(n int) []string {
	texts := make([]string, n)
	for i := range texts {
		texts[i] = textAt(i)
	}
	return texts
}

func itemsOf(n int) []*item {
	items := make([]*item, n)
	for i := range items {
		items[i] = &item{numberAt(i)}
	}
	return items
}

// random is Marsaglia's xorshift of 32 bits.
type random uint32

func newRandom(seed uint32) random { return random(seed*2654435761 | 1) }

func (r *random) next() uint32 {
	*r ^= *r << 13
	*r ^= *r >> 17
	*r ^= *r << 5
	return uint32(*r)
}

func shuffledOrder(n int, seed uint32) []int32 {
	order := make([]int32, n)
	for i := range order {
		order[i] = int32(i)
	}
	draw := newRandom(seed)
	for i := n; i > 1; i-- {
		other := draw.next() % uint32(i)
		order[i-1], order[other] = order[other], order[i-1]
	}
	return order
}

func keyOf(number int32) int32 { return int32(uint32(number) * 0x9E3779B1 & 0x3FFFFFFF) }

func keysInOrder(n int, seed uint32, present bool) []int32 {
	keys := shuffledOrder(n, seed)
	for i, number := range keys {
		if present {
			keys[i] = keyOf(number)
		} else {
			keys[i] = -1 - keyOf(number)
		}
	}
	return keys
}

func textKeysInOrder(n int, seed uint32, present bool) []string {
	letter := "n"
	if present {
		letter = "k"
	}
	keys := make([]string, n)
	for i, number := range shuffledOrder(n, seed) {
		keys[i] = letter + strconv.Itoa(int(keyOf(number)))
	}
	return keys
}

// ---- What is sorted ----

func sortBatch(n int) int {
	if n > 100_000 {
		return 1
	}
	return 100_000 / n
}

func adversarialAt(index, n int) int32 {
	half := n / 4 * 2
	switch {
	case index >= 2*half:
		return int32(index)
	case index >= half:
		return int32(2*(index-half) + 2)
	case index%2 == 0:
		return int32(index + 1)
	default:
		return int32(half + index)
	}
}

// sortDraws gives the raw numbers that the inputs are made of.
func sortDraws(pattern string, n int) [][]int32 {
	draw := newRandom(uint32(n))
	inputs := make([][]int32, sortBatch(n))
	for k := range inputs {
		input := make([]int32, n)
		for i := range input {
			switch pattern {
			case "random":
				input[i] = int32(draw.next())
			case "equal":
				input[i] = int32(draw.next() % 16)
			case "reversed":
				input[i] = int32(n - i)
			case "adversarial":
				input[i] = adversarialAt(i, n)
			default:
				input[i] = int32(i)
			}
		}
		if pattern == "nearly" {
			for swaps := n/100 + 1; swaps > 0; swaps-- {
				one := draw.next() % uint32(n)
				other := draw.next() % uint32(n)
				input[one], input[other] = input[other], input[one]
			}
		}
		inputs[k] = input
	}
	return inputs
}

func drawnInt(draw int32) int32      { return draw }
func drawnLong(draw int32) int64     { return int64(draw) << 20 }
func drawnDouble(draw int32) float64 { return float64(draw) * 0.5 }
func drawnByte(draw int32) uint8     { return uint8(draw & 127) }
func drawnText(draw int32) string    { return "k" + strconv.Itoa(int(draw&0x3FFFFFFF)) }

// ---- Checksums ----

type digest uint32

func (d *digest) add(value int64) { *d = *d*31 + digest(uint32(value)) }

func (d *digest) addText(text string) {
	for i := 0; i < len(text); i++ {
		d.add(int64(text[i]))
	}
}

func digestOf[E number](elements []E) uint32 {
	var result digest
	for _, element := range elements {
		switch value := any(element).(type) {
		case float64:
			result.add(int64(value * 2))
		default:
			result.add(int64(element))
		}
	}
	return uint32(result)
}

func digestOfTexts(texts []string) uint32 {
	var result digest
	for _, text := range texts {
		result.addText(text)
	}
	return uint32(result)
}

func digestOfDigits(text string) uint32 {
	var result digest
	for i := 0; i < len(text); i++ {
		if text[i] >= '0' && text[i] <= '9' {
			result.add(int64(text[i]))
		}
	}
	return uint32(result)
}

// digestOfEntries is that of a map or a set, whatever its order.
func digestOfEntries(size int, sum int64) uint32 { return uint32(int64(size)*31 + sum) }

func digestOfFloat(value float64) uint32 { return uint32(int64(value * 2)) }
