# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""The shell commands of a Markdown page, with what its comments say about playing them.

Commands stand in ```sh blocks, one a line; a backslash at the end of a line joins the next one. Each must exit with 0;
one whose comment says "exits with 1" may exit with that, too. An HTML comment directly before a block applies to it:

  <!-- readme: skip REASON -->             nobody plays this block
  <!-- readme: when TEXT press KEYS -->    its command needs a terminal: once it shows TEXT, type KEYS
  <!-- readme: COMMAND prints -->          before a ```text block: COMMAND prints lines like these, with other numbers
"""

import re
from dataclasses import dataclass, field

_FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
_HEADING = re.compile(r"^##? +(.+?) *$", re.MULTILINE)
_COMMENT = re.compile(r"<!-- readme: *((?:(?!-->).)*?) *-->\n+\Z", re.DOTALL)
_REMARK = re.compile(r"(?:^|\s)#\s(.*)")
_STATUS = re.compile(r"\bexits with (\d+)")
_WHEN = re.compile(r"when (.+) press (\S+)")


@dataclass(frozen=True)
class Command:
    """What is typed, and the exit statuses that are right."""

    text: str
    statuses: frozenset


@dataclass
class Block:
    """One fenced block. Its commands are empty unless its language is sh."""

    language: str
    section: str
    line: int
    text: str
    directive: str
    commands: list = field(default_factory=list)

    @property
    def reason(self):
        """Why nobody plays the block, or None."""
        return self.directive[len("skip"):].strip() if self.directive.startswith("skip") else None

    @property
    def keys(self):
        """(text to wait for, keys to type), or None."""
        found = _WHEN.fullmatch(self.directive)
        return found.groups() if found else None

    @property
    def printer(self):
        """The command that prints the block's lines, or None."""
        return self.directive[:-len(" prints")] if self.directive.endswith(" prints") else None

    def problem(self):
        """What is wrong with the comment before the block, or None."""
        if self.language not in ("sh", "text", "cpp", "cmake", "make"):
            return f"'{self.language}' is no language of this page; commands stand in sh blocks, output in text blocks"
        if self.reason == "":
            return "'skip' gives no reason"
        fitting = self.reason or self.keys if self.language == "sh" else self.printer if self.language == "text" else None
        return f"'{self.directive}' is no comment for this block" if self.directive and not fitting else None


def _commands(text):
    for line in text.replace("\\\n", " ").splitlines():
        remark = _REMARK.search(line)
        command = (line[:remark.start()] if remark else line).strip()
        if command:
            statuses = _STATUS.findall(remark.group(1)) if remark else []
            yield Command(command, frozenset({0, *map(int, statuses)}))


def blocks_of(page):
    """The fenced blocks of a page, in order."""
    found = []
    for fence in _FENCE.finditer(page):
        before = page[:fence.start()]
        headings = _HEADING.findall(_FENCE.sub("", before))
        comment = _COMMENT.search(before)
        block = Block(fence.group(1), headings[-1] if headings else "", before.count("\n") + 1, fence.group(2),
                      " ".join(comment.group(1).split()) if comment else "")
        if block.language == "sh":
            block.commands = list(_commands(block.text))
        found.append(block)
    return found
