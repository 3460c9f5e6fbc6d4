# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""What tools/check-codegen checks of links: how the writer stores them, how readers load them.

Instructions are identified by the debug information, which gives for each one the source line and the calls that were
inlined around it: a store that comes from storeLink() of region/RegionFields.h is the store of a link.
"""

import re
import subprocess
from pathlib import Path

SEAMS_FILES = ("region/RegionFields.h", "region/LoadLink.h")
WRITER_SOURCES = (
    "writer/QelSharedMemoryWriter.cpp",
    "writer/QelSharedMemoryWriterLinks.cpp",
    "writer/QelSharedMemoryWriterRemoval.cpp",
)
READER_SOURCES = (
    "region/QelSharedMemoryAccess.cpp",
    "region/QelShmRoot.cpp",
    "reader/QelSharedMemoryReader.cpp",
    "reader/QelSharedMemoryReaderVisits.cpp",
    "reader/QelShmPointRange.cpp",
    "reader/QelShmValueRange.cpp",
    "reader/Reachability.cpp",
    "reader/newestDelivery.cpp",
    "writer/StatePropagation.cpp",
)
# Headers whose loads are compiled into a reader's source.
READER_HEADERS = {
    "reader/QelSharedMemoryReader.cpp": ("reader/Reachability.h",),
    "reader/QelSharedMemoryReaderVisits.cpp": ("reader/PositionStack.h",),
}
# Functions of the writer that store links; nothing else of them goes to memory but through the seams, or to the stack.
LINKING = ("addMVs", "connectMP", "insertBefore", "setListHead", "unlinkMP", "disconnectMP")
LINKS = ("next", "prev", "mvs", "children", "devices", "groups")
FOLLOWED = (*LINKS, "parent")  # readers follow it like a link

CONDITION = r"(?:eq|ne|cs|cc|mi|pl|vs|vc|hi|ls|ge|lt|gt|le)?"
STORE = re.compile(r"(?:v?st(?!l)|stl|push)\w*")
LOAD = re.compile(r"(?:ldr|ldur|ldar|ldapr|lda)" + CONDITION)
CALL = re.compile(r"(?:bl|blx|blr)")
BRANCH = re.compile(rf"(b{CONDITION}|b\.\w+|cbn?z|tbn?z)")


class LinkError(Exception):
    """A check that failed."""


class Source:
    """The lines of a source file without comments, from 1."""

    def __init__(self, path):
        self.path = path
        self.lines = ["", *(line.split("//")[0] for line in Path(path).read_text(encoding="utf-8").splitlines())]

    def text_at(self, number):
        """The statement that begins in a line."""
        text = ""
        while number < len(self.lines):
            text += " " + self.lines[number].strip()
            if ";" in text or "{" in text:
                break
            number += 1
        return text.strip()

    def lines_with(self, pattern):
        return [number for number, line in enumerate(self.lines) if re.search(pattern, line)]

    def lines_with_outside(self, pattern, function):
        """The same without what stands in the calls of a function."""
        text = "\n".join(self.lines)
        kept, end = "", 0
        for call in re.finditer(rf"\b{function}\(", text):
            kept += text[end : call.end()]
            end, depth = call.end(), 1
            while end < len(text) and depth != 0:
                depth += {"(": 1, ")": -1}.get(text[end], 0)
                end += 1
            kept += "\n" * text.count("\n", call.end(), end)
        return [number for number, line in enumerate((kept + text[end:]).split("\n")) if re.search(pattern, line)]


def seam_ranges(source):
    """First and last line of each function of the seams' file."""
    ranges = {}
    name = start = None
    for number, line in enumerate(source.lines):
        match = re.match(r"(?:inline )?[\w:]+ (\w+)\(", line)
        if match:
            name, start = match.group(1), number
        elif line.startswith("}") and name:
            ranges[name] = (start, number)
            name = None
    return ranges


class Instruction:
    def __init__(self, address, mnemonic, operands, places):
        self.address = address
        self.name = re.sub(r"\.[nw]$", "", mnemonic)
        self.operands = operands
        self.places = places  # (file, line): the innermost first, then the calls around it
        self.seams = set()
        self.site = None  # the call of the outermost seam
        self.following = []
        self.before = []

    def is_store(self):
        return STORE.fullmatch(self.name) is not None and not re.search(r"\[sp\b|^sp!?,|^\{", self.operands) \
            and not self.name.startswith("push")

    def is_load(self):
        return LOAD.fullmatch(self.name) is not None and not re.search(r"\[(sp|pc)\b", self.operands)

    def is_call(self):
        return CALL.fullmatch(self.name) is not None

    def is_barrier(self):
        return self.name == "dmb" and self.operands in ("ish", "sy", "ishst", "st")

    def memory_operand(self):
        match = re.search(r"\[[^\]]*\]", self.operands)
        return match.group(0) if match else None

    def told(self):
        return f"{self.name} {self.operands}"


class Code:
    """The functions of one object file that was compiled with debug information."""

    def __init__(self, machine, object_file, root):
        self.root = root
        self.seams = {file: seam_ranges(Source(file)) for file in SEAMS_FILES}
        listing = subprocess.run(
            [machine.objdump, "-dlr", "--inlines", "-C", "--no-show-raw-insn", str(object_file)],
            check=True, capture_output=True, text=True,
        ).stdout
        self.functions = {}
        for block in re.split(r"\n(?=[0-9a-f]+ <)", listing):
            head = re.match(r"[0-9a-f]+ <(.*)>:\n", block)
            if head:
                self.functions[head.group(1)] = self._read(block[head.end() :])

    def _read(self, text):
        code = []
        innermost, calls, external = None, [], set()
        for line in text.splitlines():
            place = re.match(r"(inlined by )?(/\S+?):(\d+)(?: |$)", line)
            if place:
                where = (self._relative(place.group(2)), int(place.group(3)))
                if place.group(1):
                    calls.append(where)
                else:
                    innermost = where
                continue
            if re.match(r"\s+[0-9a-f]+: R_", line):
                external.add(code[-1].address)
                continue
            match = re.match(r"\s*([0-9a-f]+):\t(\S+)(?:\s+(.*))?$", line)
            if match and not match.group(2).startswith("."):
                operands = re.split(r"\s+(?:@|//|;)\s?", match.group(3) or "")[0].strip()
                code.append(Instruction(int(match.group(1), 16), match.group(2), operands, [innermost, *calls]))
                self._name(code[-1])
                calls = []
        self._connect(code, external)
        return code

    def _relative(self, path):
        path = str(Path(path).resolve())
        return path[len(self.root) + 1 :] if path.startswith(self.root + "/") else path

    def _name(self, instruction):
        for place in instruction.places:
            if place and place[0] in self.seams:
                for name, (first, last) in self.seams[place[0]].items():
                    if first <= place[1] <= last:
                        instruction.seams.add(name)
            elif instruction.seams and instruction.site is None:
                instruction.site = place

    @staticmethod
    def _connect(code, external):
        at = {instruction.address: instruction for instruction in code}
        for instruction, following in zip(code, [*code[1:], None]):
            name = instruction.name
            ends = name in ("ret", "br", "brk", "udf", "bx") or "pc}" in instruction.operands
            targets = []
            if BRANCH.fullmatch(name):
                target = re.search(r"\b([0-9a-f]+) <", instruction.operands)
                if target and instruction.address not in external and int(target.group(1), 16) in at:
                    targets.append(at[int(target.group(1), 16)])
                ends = name == "b"
            if following is not None and not ends:
                targets.append(following)
            instruction.following = targets
            for target in targets:
                target.before.append(instruction)

    def all(self):
        return ((function, instruction) for function, code in self.functions.items() for instruction in code)


def plain_name(function):
    return re.sub(r"\(.*", "", function).rsplit("::", 1)[-1]


def first_before(instruction, skips):
    """What stands before an instruction on each way, once those that may be skipped are left out; None for the
    beginning of the function."""
    found, seen, pending = [], set(), [instruction]
    while pending:
        current = pending.pop()
        if not current.before:
            found.append(None)
        for before in current.before:
            if id(before) in seen:
                continue
            seen.add(id(before))
            if skips(before):
                pending.append(before)
            else:
                found.append(before)
    return found


def field_of(text, seam):
    """The field that a call of a seam names, None when it cannot be told."""
    match = re.search(seam + r"\(([^,;]*?)(?:,|\)\s*[;)<])", text)
    return re.split(r"\.|->", match.group(1).rstrip(")"))[-1] if match else None


def check_stores(code, path, is_release):
    """Gives the lines to print."""
    source = Source(path)
    seen, fenced = {}, {}
    for function, instruction in code.all():
        if not instruction.is_store() and not (instruction.is_call() and "memset" in instruction.operands):
            continue
        told = f"{plain_name(function)}(): {instruction.told()}"
        if "storeLink" in instruction.seams:
            check_release(instruction, told, is_release)
            seen.setdefault(instruction.site, (told, field_of(source.text_at(instruction.site[1]), "storeLink")))
        elif "wipeSlot" in instruction.seams:
            check_fence(instruction, told)
            fenced.setdefault(instruction.site, told)
        elif "storeField" in instruction.seams:
            field = field_of(source.text_at(instruction.site[1]), "storeField")
            if field is None or field in LINKS:
                raise LinkError(f"{told} stores the link {field} without release order, {path}:{instruction.site[1]}")
        elif instruction.places[0] and instruction.places[0][0] == path and plain_name(function) in LINKING:
            raise LinkError(f"{told} goes past the stores of {SEAMS_FILES[0]}, {path}:{instruction.places[0][1]}")
    for number in source.lines_with(r"\bstoreLink\("):
        if (path, number) not in seen:
            raise LinkError(f"there is no store for {path}:{number}")
    for number in source.lines_with(r"\bwipeSlot\("):
        if (path, number) not in fenced:
            raise LinkError(f"there is no store for {path}:{number}")
    lines = [f"      {told:<44} {field}, {Path(path).name}:{site[1]}" for site, (told, field) in sorted(seen.items())]
    return lines + [f"      {told:<44} behind a fence, {Path(path).name}:{site[1]}" for site, told in sorted(fenced.items())]


def check_release(instruction, told, is_release):
    if is_release(instruction.name):
        return
    for before in first_before(instruction, lambda other: not (other.is_store() or other.is_call() or other.is_barrier())):
        if before is None or not before.is_barrier():
            raise LinkError(f"{told} has no barrier right before it, but {before.told() if before else 'nothing'}")


def check_fence(instruction, told):
    def skips(other):
        if other.is_barrier():
            return False
        is_wipe = "wipeSlot" in other.seams
        return is_wipe or not (other.is_store() or other.is_call())

    for before in first_before(instruction, skips):
        if before is None or not before.is_barrier():
            raise LinkError(f"{told} fills a slot without a fence, after {before.told() if before else 'nothing'}")


def check_loads(code, path):
    """Gives the lines to print."""
    files = (path, *READER_HEADERS.get(path, ()))
    plain = re.compile(r"(?:\.|->)(?:" + "|".join(FOLLOWED) + r")\b(?!\s*\()")
    for file in files:
        for number in Source(file).lines_with_outside(plain, "loadLink"):
            raise LinkError(f"a link is read without loadLink(), {file}:{number}")
    seen = {}
    for function, instruction in code.all():
        if "loadLink" not in instruction.seams or not instruction.is_load() or instruction.site is None:
            continue
        if instruction.operands.startswith("x"):
            continue  # eight bytes are no link, but the pointer to its slot
        told = f"{plain_name(function)}(): {instruction.told()}"
        again = loaded_again(instruction)
        if again is not None:
            raise LinkError(f"{told} is loaded again by {again.told()}, {instruction.site[0]}:{instruction.site[1]}")
        seen.setdefault(instruction.site, told)
    for file in files:
        for number in Source(file).lines_with(r"\bloadLink\("):
            if not any(site == (file, number) for site in seen):
                raise LinkError(f"there is no load for {file}:{number}")
    return [f"      {told:<44} once, {Path(site[0]).name}:{site[1]}" for site, told in sorted(seen.items())]


def loaded_again(first):
    """A load of the same call from the same address that can follow, None when there is none."""
    operand = first.memory_operand()
    registers = set(re.findall(r"\b(?:r\d+|x\d+|ip|lr|fp|sl)\b", operand or ""))
    target = first.operands.split(",")[0]
    if not registers or target in registers or target.replace("w", "x") in registers:
        return None  # the address is lost
    seen, pending = set(), list(first.following)
    while pending:
        current = pending.pop()
        if id(current) in seen or current is first:
            continue
        seen.add(id(current))
        if current.is_load() and current.memory_operand() == operand and current.site == first.site:
            return current
        written = current.operands.split(",")[0].strip()
        is_read_only = current.is_store() or current.name in ("cmp", "cmn", "tst", "ccmp") or BRANCH.fullmatch(current.name)
        if not is_read_only and (written in registers or written.replace("w", "x") in registers):
            continue
        pending.extend(current.following)
    return None
