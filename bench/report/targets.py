# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""What the library is to reach."""

import dataclasses


@dataclasses.dataclass
class Target:
    """A bound on one number of a contender at a work.

    measure   "instructions", "allocations" or "ns" bound that number; "time" bounds the ratio to the time of `against`,
              a (contender, variant).
    why       where a former target was the wrong measure: one sentence that says why
    """

    work: str
    shape: str
    contender: str
    measure: str
    most: float
    against: tuple = None
    variant: str = ""
    why: str = ""

    def reached(self, findings):
        """The number that `most` bounds; None when it was not measured."""
        row = findings.row(self.shape, self.work, self.contender, self.variant)
        if row is None:
            return None
        if self.measure == "ns":
            return row.median
        if self.measure != "time":
            return round(getattr(row, self.measure), 1)  # entering the loop over all values is no part of one
        other = findings.row(self.shape, self.work, *self.against)
        return row.ratio(other) if other else None

    def bound(self):
        if self.measure == "time":
            contender, variant = self.against
            name = f"{contender}, {variant} others" if variant else contender
            return f"{self.most:g} x {name}"
        return f"{self.most:,.0f} {self.measure}"


FLOOR = ("floor", "")
LITERAL = ("literal", "")
HASH = ("open-addressing hash", "")
MMV_KEPT = ("PCP MMV, kept value", "")

KEPT = "library, kept value"
RANGES = "library, scan by ranges"

# What finds a value by its id, and goes over all values.
BY_ID = ("Boost.Interprocess map", "Boost.Interprocess hash", "LMDB", "SQLite", "Redis, unix socket")

BOTH_LARGE = ("20x40", "1x800")
VALUES = 8800

BUILD = (
    "The floor builds nothing: its time is that of the kernel's page faults, which differs by a factor of four between "
    "machines."
)
PROPAGATE = (
    "The floor takes the greater of two numbers and knows each parent's slot beforehand; the rules of states and the way "
    "over the links are the work itself."
)
UNCHANGED = "The floor folds everything whether something changed or not; what counts is that nothing is done."
KEPT_UPDATE = "The floor knows each slot beforehand and cannot notice that it became another value's."
SCAN = "The floor adds up one array without a look at points, so only ranges without virtual calls can come near it."

TARGETS = [
    target
    for shape in BOTH_LARGE
    for target in (
        Target("update", shape, "library", "instructions", 330),
        Target("update", shape, "library", "time", 0.3, LITERAL),
        Target("update", shape, "library", "time", 1, ("Boost.Interprocess hash", "")),
        Target("update", shape, "library", "time", 1, ("Boost.Interprocess hash, heap value", "")),
        Target("update", shape, KEPT, "instructions", 30, why=KEPT_UPDATE),
        Target("update", shape, KEPT, "time", 1.5, HASH),
        Target("update", shape, KEPT, "time", 1, MMV_KEPT),
        Target("visit", shape, "library", "time", 6, FLOOR),
        Target("visit", shape, "library", "instructions", 51.75 * VALUES),
        Target("visit", shape, RANGES, "instructions", 12 * VALUES, why=SCAN),
        Target("visit", shape, RANGES, "time", 2.5, FLOOR),
        *(Target("visit", shape, RANGES, "time", 1, (peer, "")) for peer in BY_ID),
        Target("rebuild", shape, "library", "instructions", 425_000),
        Target("find", shape, "library", "time", 1, LITERAL),
        Target("find", shape, "library", "allocations", 1),
        Target("point", shape, "library", "instructions", 560),
        Target("fetch", shape, KEPT, "ns", 10),
        Target("create", shape, "library", "time", 0.5, LITERAL, why=BUILD),
        Target("create", shape, "library", "instructions", 800 * VALUES),
        Target("propagate unchanged", shape, "library", "instructions", 20, why=UNCHANGED),
    )
] + [
    Target("propagate", "1x800", "library", "instructions", 170_000, why=PROPAGATE),
    Target("propagate", "20x40", "library", "instructions", 2 * 170_000),
    Target("propagate", "1x45", "library", "instructions", 10_500),
    Target("propagate", "20x40", "library", "time", 0.05, LITERAL),
] + [
    Target("update beside readers", shape, "library", "time", 2.5, ("library", "0"), variant="1")
    for shape in BOTH_LARGE
] + [
    Target("visible", shape, KEPT, "time", 1.1, FLOOR)
    for shape in BOTH_LARGE
]
