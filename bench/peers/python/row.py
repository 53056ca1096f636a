"""What a workload is once it is ready for a size."""

from typing import Callable, NamedTuple, Optional


class Row(NamedTuple):
    operations: int  # that one run does
    run: Callable  # what is measured; gives its result
    checksum: Callable  # of that result
    prepare: Optional[Callable] = None  # before every run, not measured
    on_the_wall: bool = False  # several threads at work
