# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""layout.json with look-ups, and a region that is read by it and by nothing else."""

import json
import struct
from pathlib import Path

FORMATS = {"u8": "<B", "u16": "<H", "u32": "<I", "u64": "<Q", "i32": "<i", "i64": "<q", "f64": "<d"}


class Layout:
    """The document of the target "layout" of a build."""

    def __init__(self, build):
        self.document = document = json.loads((Path(build) / "tools/layout/layout.json").read_text(encoding="ascii"))
        self.object = document["object"]
        self.tables = {table["name"]: table for table in document["tables"]}
        self.records = {record["name"]: record for record in document["records"]}
        self.keys = {key["key"]: key for key in document["keys"]}
        self.states = {state["state"]: state for state in document["states"]}

    def table_of(self, record):
        return next(table for table in self.document["tables"] if table["record"] == record)

    def field(self, record, name):
        return next(field for field in self.records[record]["fields"] if field["name"] == name)

    def offset(self, record, slot, name):
        """Of a field, from the region's first byte."""
        table = self.table_of(record)
        return table["offset"] + slot * table["size"] + self.field(record, name)["offset"]

    def id_part(self, guid, name):
        """None where the id does not use this level."""
        part = next(part for part in self.document["sensorId"] if part["name"] == name)
        unused = (1 << part["bits"]) - 1
        number = guid >> part["shift"] & unused
        return None if number == unused else number

    def type_table(self, guid):
        """The table that names the type code of a point."""
        kind = self.id_part(guid, "kind")
        levels = [level for level in ("socket", "circuit", "phase", "inlet") if self.id_part(guid, level) is not None]
        level = (levels or ["device"])[0] if kind == 0 else None
        return next(table for table in self.document["types"] if (table["kind"], table["level"]) == (kind, level))


class Region:
    """An image, read by the layout and nothing else."""

    def __init__(self, layout, image):
        self.layout = layout
        self.image = image

    def read(self, record, slot, name):
        field = self.layout.field(record, name)
        return struct.unpack_from(FORMATS[field["type"]], self.image, self.layout.offset(record, slot, name))[0]

    def bytes(self, record, slot, name):
        begin = self.layout.offset(record, slot, name)
        return self.image[begin : begin + self.layout.field(record, name)["size"]]

    def way_to(self, guid):
        """(record, slot, link) of each link that is followed from the root to a point, and the point's slot."""
        for head in ("devices", "groups"):
            found = self.search(guid, [("root", 0, head)])
            if found:
                return found
        raise LookupError(f"the region has no point 0x{guid:016X}")

    def search(self, guid, way):
        slot = self.read(*way[-1])
        if slot >= self.layout.tables["points"]["count"]:
            return None
        if self.read("point", slot, "guid") == guid:
            return way, slot
        return self.search(guid, [*way, ("point", slot, "children")]) or self.search(guid, [*way, ("point", slot, "next")])
