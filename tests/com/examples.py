#!/usr/bin/env python3
"""Runs the examples that Wine can run, the script and the line of docs/windows.md as they stand there, and checks
the others for names that the type library does not have.

examples.py EXAMPLES IDL DATABASE FOLDER
"""
import os
import pathlib
import re
import shutil
import sys

import wine

ROOT = pathlib.Path(__file__).resolve().parents[2]
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
refused on purpose, as the operation wants a Dictionary and is given a text:
error 13 from TessarLornPickingAndDelivery: Type mismatch
"""


# Prints the classes that do not come of the ProgIDs behind its first argument, and the columns of the list of
# orders.
LOOK = """On Error Resume Next
For i = 1 To WScript.Arguments.Count - 1
  Set made = Nothing
  Set made = CreateObject(WScript.Arguments(i))
  If made Is Nothing Then WScript.Echo WScript.Arguments(i)
Next
WScript.Echo "columns:"
Set most = CreateObject("Mirel.Dictionary")
most("WebOrderMaxDisplayCount") = 1
Set reader = CreateObject("TessarLornPickingAndDelivery.clsGetData")
For Each field In reader.GetListData(WScript.Arguments(0), most).Fields
  WScript.Echo field.Name
Next
"""


class TypeLibrary:
    """The names of a type library's text: its own, its creatable classes, their members in small letters."""

    def __init__(self, idl):
        self.name = re.search(r"^library (\w+)", idl, re.M).group(1)
        of_classes = re.findall(r"^  \[((?:(?!^  \[).)*)\]\n  coclass (\w+)", idl, re.M | re.DOTALL)
        self.classes = {name for attributes, name in of_classes if "noncreatable" not in attributes}
        self.members = {
            name: {member.lower() for member in re.findall(r"(\w+)\([^\n]*\);\n", body)}
            for name, body in re.findall(r"interface _(\w+) : IDispatch \{(.*?)\n  \};", idl, re.DOTALL)
        }


def uses_of_members(text):
    """(class, member) for each member that an example names of an object whose class is known."""
    uses = re.findall(rf"(?<![\\\w])\$?({'|'.join(CLASSES)})\.(\w+)", text)
    return [(CLASSES[name], member) for name, member in uses] + [
        ("Fields" if plain else "Field", plain or behind)
        for plain, behind in re.findall(r"\.Fields(?:\.(\w+)|[(\[][^)\]]*[)\]]\.(\w+))", text)
    ]


def unknown_names(text, library):
    """The members and early-bound classes of an example that the type library does not have."""
    for name, member in uses_of_members(text):
        if member.lower() not in library.members[name]:
            yield f"{name} has no {member}"
    for name, created in re.findall(r"\bAs(?: New)? (\w+)\.(\w+)", text):
        if name != library.name or created not in library.classes:
            yield f"there is no class {name}.{created}"
    for name in re.findall(r"\bnew (\w+)\(", text):
        if name not in library.classes:
            yield f"there is no class {name}"
    for name in re.findall(r"^using (?!System)(\w+)", text, re.M):
        if name != library.name:
            yield f"there is no library {name}"


def main(examples, idl, database, folder):
    examples = pathlib.Path(examples)
    library = TypeLibrary(pathlib.Path(idl).read_text(encoding="utf-8"))
    texts = {path: path.read_text(encoding="utf-8") for path in sorted(examples.iterdir())}
    faults = []
    for path, text in texts.items():
        faults += [f"{path.name}: {fault}" for fault in unknown_names(text, library)]
        if len(uses_of_members(text)) < 5:
            faults.append(f"{path.name}: hardly a use of members was found")
    every_text = "\n".join(texts.values())
    connection = "Embedded=" + wine.windows_path(wine.copy_database(database, folder, "example"))

    look = pathlib.Path(folder) / "look.vbs"
    look.write_text(LOOK, encoding="ascii")
    prog_ids = sorted(set(re.findall(r"CreateObject\(\"([^\"]*)|-ComObject (\S+)", every_text)))
    output, remarks = wine.run_script(look, connection, *("".join(pair) for pair in prog_ids))
    not_created, _, columns = output.partition("columns:\n")
    faults += [f"{name} cannot be created" for name in not_created.split()]
    named = set(re.findall(r"(?:orders|\.Fields)[(\[][\"'](\w+)", every_text))
    faults += [f"the list of orders has no column {name}" for name in sorted(named - set(columns.split()))]
    if len(prog_ids) < 4 or len(named) < 2:
        faults += [f"found only {prog_ids} and {named}", remarks]

    shop = pathlib.Path(os.environ["WINEPREFIX"]) / "drive_c" / "shop"
    shutil.rmtree(shop, ignore_errors=True)
    shop.mkdir()
    wine.copy_database(database, shop, "orders")
    shown = pathlib.Path(folder) / "shown.vbs"
    page = (ROOT / "docs" / "windows.md").read_text(encoding="utf-8")
    shown.write_text(re.search(r"```vb\n(.*?)```", page, re.S).group(1), encoding="ascii")
    output, remarks = wine.run_script(shown)
    if not re.fullmatch(r"(\d+ \S+\n)+", output):
        faults += ["the first example of docs/windows.md printed", output, remarks]

    line = re.search(r"^cscript .*order_day.*$", (ROOT / "docs" / "windows.md").read_text(encoding="utf-8"), re.M).group(0)
    # As the archive has them.
    shutil.copytree(examples, shop / "examples")
    batch = pathlib.Path(folder) / "example.bat"
    batch.write_text(f"@echo off\ncd /d C:\\shop\n{line}\n", encoding="ascii", newline="\r\n")
    output = wine.run("cmd", "/c", wine.windows_path(batch), check=False)
    if not re.match(r"[1-9]\d* orders wait for picking\n", output) or output.split("\n", 1)[1] != DAY:
        faults += [f"{line} printed", output]
    print("\n".join(faults) if faults else f"{len(texts)} examples use what there is")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
