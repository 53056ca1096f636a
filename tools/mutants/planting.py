"""Writes faults into a text.

An edit is (start, end, text, rank, size): what stands from start to end becomes the text, in which @ is the fault's
number. `size` is how much of the source the whole fault spans: where several begin at one place the widest is written
first, where several end the widest last, so that faults may stand inside each other.
"""

RANKS = {'close': 0, 'replace': 1, 'open': 2}


def write_faults(text, faults):
    """The bytes of a source with all the faults in it. Of faults that replace the same bytes the first one is planted,
    and the others, which come back as a list, are not."""
    edits, taken, refused = [], {}, []
    for fault in faults:
        replaced = [(start, end) for start, end, *_ in fault.edits if start != end]
        if any(taken.get(one) for one in replaced) or any(overlaps(one, taken) for one in replaced):
            refused.append(fault)
            continue
        taken.update(dict.fromkeys(replaced, True))
        edits += [(start, end, new.replace('@', str(fault.number)), rank, size)
                  for start, end, new, rank, size in fault.edits]
    edits.sort(key=lambda edit: (edit[0], RANKS[edit[3]], edit[4] if edit[3] == 'close' else -edit[4]))
    pieces, at = [], 0
    for start, end, new, _, _ in edits:
        pieces += [text[at:start], new.encode()]
        at = end
    return b''.join([*pieces, text[at:]]), refused


def overlaps(one, taken):
    return any(start < one[1] and one[0] < end for start, end in taken)
