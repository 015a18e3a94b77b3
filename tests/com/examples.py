#!/usr/bin/env python3
"""Runs the example that Wine can run, and checks the others for names that the type library does not have.

examples.py EXAMPLES IDL DATABASE FOLDER
"""
import pathlib
import re
import sys

import wine

# What the examples call their objects.
CLASSES = {
    "reader": "clsGetData",
    "writer": "clsSaveData",
    "filter": "Dictionary",
    "parameters": "Dictionary",
    "entry": "Dictionary",
    "weights": "Vector",
    "orders": "Recordset",
}
DAY = """picked:    True
checked:   True
weighed:   True
delivered: True
queued:    True
reported:  True
error 13 from TessarLornPickingAndDelivery: Type mismatch
"""


def members(idl):
    """Class -> names of its members in small letters."""
    found = {}
    for name, body in re.findall(r"dispinterface _(\w+) \{(.*?)\n  \};", idl, re.DOTALL):
        found[name] = {member.lower() for member in re.findall(r"(\w+)\([^\n]*\);\n", body)}
    return found


def unknown_names(example, known):
    """How many members an example names, and those that its objects do not have."""
    uses = re.findall(rf"(?<![\\\w])\$?({'|'.join(CLASSES)})\.(\w+)", example.read_text(encoding="utf-8"))
    return len(uses), [
        f"{example.name}: {CLASSES[name]} has no {member}"
        for name, member in uses
        if member.lower() not in known[CLASSES[name]]
    ]


def main(examples, idl, database, folder):
    examples = pathlib.Path(examples)
    known = members(pathlib.Path(idl).read_text(encoding="utf-8"))
    faults = []
    files = sorted(examples.iterdir())
    for example in files:
        count, unknown = unknown_names(example, known)
        faults += unknown
        if count < 5:
            faults.append(f"{example.name}: only {count} uses of members were found")
    connection = "Embedded=" + wine.windows_path(wine.copy_database(database, folder, "example"))
    output, remarks = wine.run_script(examples / "order_day.vbs", connection)
    if not re.match(r"[1-9]\d* orders wait for picking\n", output) or output.split("\n", 1)[1] != DAY:
        faults += ["order_day.vbs printed", output, remarks]
    print("\n".join(faults) if faults else f"{len(files)} examples use what there is")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
