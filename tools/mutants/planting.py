"""Writes faults into a text.

An edit is (start, end, text, rank, size): what stands from start to end becomes the text, in which @ is the fault's
number. `size` is how much of the source the whole fault spans: where several begin at one place the widest is written
first, where several end the widest last, so that faults may stand inside each other. Of those that span the same, one
that replaces an operator stands inside: what is written around its expression must not come between its operands.
"""

RANKS = {'close': 0, 'replace': 1, 'open': 2}


def write_faults(text, faults):
    """The bytes of a source with all the faults in it. Of faults that replace the same bytes the first one is planted,
    and the others, which come back as a list, are not."""
    edits, taken, refused = [], set(), []
    for order, fault in enumerate(faults):
        replaced = {(start, end) for start, end, *_ in fault.edits if start != end}
        if any(start < other_end and other_start < end for start, end in replaced for other_start, other_end in taken):
            refused.append(fault)
            continue
        taken |= replaced
        for start, end, new, rank, size in fault.edits:
            depth = (-size, bool(replaced), order) if rank == 'open' else (size, not replaced, -order)
            edits.append(((start, RANKS[rank], depth), end, new.replace('@', str(fault.number))))
    edits.sort(key=lambda edit: edit[0])
    pieces, at = [], 0
    for (start, _, _), end, new in edits:
        pieces += [text[at:start], new.encode()]
        at = end
    return b''.join([*pieces, text[at:]]), refused

