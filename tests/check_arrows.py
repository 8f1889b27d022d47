#!/usr/bin/env python3
"""Checks the arrows between the rooms: which room may include headers of which other.

usage: check_arrows.py REPOSITORY

cli -> cmm, simulator, logger; cmm -> pegasus (public headers only, also from its public header), logger, platform;
simulator, pegasus, logger and platform include nothing of other rooms. A room's tests may use testing/ and what the
room itself may use.
"""

import pathlib
import re
import sys

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', re.MULTILINE)
SUFFIXES = {".h", ".cpp", ".in"}

# Path beginnings of an include that name a room. Longer ones come first: the first match holds.
OWNERS = [
    ("orvane/cmm.h", "cmm"),
    ("orvane/log.h", "logger"),
    ("orvane/simulator/", "simulator"),
    ("platform/", "platform"),
    ("Pegasus/", "pegasus"),
    ("pegasus/", "pegasus internals"),
    ("cmm/", "cmm internals"),
    ("simulator/", "simulator internals"),
    ("logger/", "logger internals"),
    ("testing/", "testing"),
    ("tests/", "tests"),
    ("cli/", "cli"),
]

# What each room may include beside itself.
ALLOWED = {
    "include": {"cmm", "pegasus"},
    "platform": {"platform"},
    "logger": {"logger", "logger internals"},
    "pegasus": {"pegasus", "pegasus internals"},
    "cmm": {"cmm", "cmm internals", "pegasus", "logger", "platform"},
    "simulator": {"simulator", "simulator internals"},
    "cli": {"cli", "cmm", "simulator", "logger", "platform"},
}
# A platform test installs replacements of the sleep; every room's tests may watch the log and control the time.
TESTS_ALLOWED = {"testing", "logger", "platform"}

# Folders below a room whose headers are included by a path that starts in the room itself ("wire/request.h").
ROOM_FOLDERS = {
    "pegasus": {"base", "objects", "wire", "transport", "client"},
    "simulator": {"behaviour", "cim", "faults", "model", "server", "wire", "program"},
}


def owner_of(include):
    for start, owner in OWNERS:
        if include.startswith(start):
            return owner
    return None


def violations_of(repository):
    """Lines "file: includes X, which belongs to Y" for every include that no arrow allows."""
    found = []
    for room, allowed in ALLOWED.items():
        for path in sorted((repository / room).rglob("*")):
            if path.suffix not in SUFFIXES or not path.is_file():
                continue
            relative = path.relative_to(repository)
            permitted = allowed | TESTS_ALLOWED if "tests" in relative.parts else allowed
            for include in INCLUDE.findall(path.read_text(encoding="utf-8")):
                owner = owner_of(include)
                if owner and owner not in permitted:
                    found.append(f"{relative}: includes {include}, which belongs to {owner}")
                    continue
                # Tests of a room may have folders of the same names.
                if "tests" in relative.parts and (repository / room / "tests" / include).is_file():
                    continue
                folder = include.split("/")[0] if "/" in include and owner is None else None
                own = ROOM_FOLDERS.get(room, set())
                if folder not in own and any(folder in folders for folders in ROOM_FOLDERS.values()):
                    found.append(f"{relative}: includes {include}, which is internal to another room")
    return found


def main():
    repository = pathlib.Path(sys.argv[1])
    missing = [room for room in ALLOWED if not (repository / room).is_dir()]
    found = [f"{room}: no such room" for room in missing] + violations_of(repository)
    for line in found:
        print(line)
    print(f"{len(found)} includes against the arrows")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
