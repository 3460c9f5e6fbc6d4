# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""What tools/check-codegen checks of the fast path of a kept value: the modification counter is read before the rebuild
number, and an acquire keeps this order. A reader that sees the 0 that a rebuild stored then sees that rebuild's number.

Loads are identified by the debug information, like links (tools/link_code.py).
"""

import re

from link_code import LinkError, Source, first_before

SOURCE = "reader/QelSharedMemoryReader.cpp"
COUNTER_FILE = "reader/ModificationCounter.h"
FUNCTION = "QelSharedMemoryReader::mval(shm::QelShmKeptMVal&)"
DEFINITION = r"QelSharedMemoryReader::mval\(QelShmKeptMVal&"


def is_acquire_barrier(instruction):
    return instruction.name == "dmb" and instruction.operands in ("ish", "sy", "ishld", "ld")


def check_kept_value(code, machine):
    """Returns the lines to print."""
    source = Source(SOURCE)
    numbers = lines_of_body(source, r"\brebuilds_\.load\(")
    counters = {(COUNTER_FILE, number) for number in Source(COUNTER_FILE).lines_with(r"\bcurrent\(\) const\b.*\.load\(")}
    body = next((body for name, body in code.functions.items() if name.endswith(FUNCTION)), None)
    if body is None or not numbers or not counters:
        raise LinkError(f"there is no {FUNCTION} that reads counter and rebuild number")

    def is_counter(instruction):
        return instruction.is_load() and not counters.isdisjoint(instruction.places)

    def is_rebuild(instruction):  # a load of std::atomic, not one of the handle's own number in the same line
        return instruction.is_load() and instruction.places[0] and instruction.places[0][0].startswith("/") and \
            instruction.places[-1] in {(SOURCE, number) for number in numbers}

    rebuilds = [instruction for instruction in body if is_rebuild(instruction)]
    if not rebuilds:
        raise LinkError(f"mval() has no load for {SOURCE}:{numbers[0]}")
    lines = []
    for rebuild in rebuilds:
        for acquire in first_before(rebuild, lambda other: not (is_counter(other) or is_acquire_barrier(other))):
            lines += told_order(acquire, rebuild, is_counter, machine)
    return lines


def lines_of_body(source, pattern):
    """Returns the numbers of the function's lines that contain a pattern."""
    start = next(iter(source.lines_with(DEFINITION)), len(source.lines))
    end = next((number for number in source.lines_with(r"^}") if number > start), start)
    return [number for number in source.lines_with(pattern) if start < number < end]


def told_order(acquire, rebuild, is_counter, machine):
    """Raises unless this is an acquire of the counter, or a barrier with a load of the counter on each way to it."""
    if acquire is None:
        raise LinkError(f"mval(): {rebuild.told()} loads the rebuild number, and the counter is not loaded before it")
    if is_counter(acquire):
        if not machine.is_acquire(acquire.name):
            raise LinkError(f"mval(): {rebuild.told()} loads the rebuild number, and no acquire stands between it and "
                            f"the counter's load, {acquire.told()}")
        counters = [acquire]
    else:
        counters = first_before(acquire, lambda other: not is_counter(other))
        if None in counters:
            raise LinkError(f"mval(): {rebuild.told()} loads the rebuild number, and the counter is not loaded before "
                            f"{acquire.told()}")
    order = [counters[0].told(), *([] if acquire in counters else [acquire.told()]), rebuild.told()]
    return [f"      mval(): {'; '.join(order):<62} counter, then rebuild number"]
