#!/usr/bin/env python3
"""Registers the library, looks at what the registry says then, and that nothing is left when it is taken back.
Leaves it registered.

registration.py LIBRARY
"""
import pathlib
import re
import sys

import wine

PARTS = (r"HKLM\Software\Classes", r"HKCU\Software\Classes")
CLASSES = (
    "TessarLornPickingAndDelivery.clsSaveData",
    "TessarLornPickingAndDelivery.clsGetData",
    "Mirel.Dictionary",
    "Mirel.Vector",
)


def exported(library, part):
    """The registry's part as {key below the part: {name: value}}, keys in small letters."""
    path = library.with_name("registry.reg")
    wine.run("reg", "export", part, wine.windows_path(path), "/y", check=False)
    keys = {}
    # A user without classes of their own has no such key.
    if not path.exists():
        return keys
    for line in path.read_text(encoding="utf-16").splitlines():
        if line.startswith("["):
            values = keys.setdefault(re.sub(r"^\[[^\\]*\\Software\\Classes\\?|\]$", "", line, flags=re.I).lower(), {})
        elif match := re.match(r'(@|"(?:[^"\\]|\\.)*")=(.*)$', line):
            values[match.group(1).strip('"')] = match.group(2).strip('"').replace("\\\\", "\\")
    path.unlink()
    return keys


def faults_of(keys, library):
    """What the registry does not say of the library as it should."""
    for name in CLASSES:
        versioned = keys.get(f"{name}.1\\clsid".lower(), {}).get("@")
        plain = keys.get(f"{name}\\clsid".lower(), {}).get("@")
        if not plain or plain != versioned:
            yield f"{name} is {plain}, {name}.1 is {versioned}"
            continue
        if keys.get(f"{name}\\curver".lower(), {}).get("@") != f"{name}.1":
            yield f"{name} has no current version"
        clsid = f"clsid\\{plain}".lower()
        server = keys.get(clsid + "\\inprocserver32", {})
        path = server.get("@", "").lower()
        if path != wine.windows_path(library).lower() or server.get("ThreadingModel") != "Apartment":
            yield f"{name} is served by {server}"
        if keys.get(clsid + "\\progid", {}).get("@") != f"{name}.1":
            yield f"{plain} has another ProgID"
        type_library = keys.get(clsid + "\\typelib", {}).get("@", "none").lower()
        if f"typelib\\{type_library}\\1.0\\0\\win64" not in keys:
            yield f"{name} has no type library {type_library}"


def regsvr32(library, *words):
    wine.run("regsvr32", "/s", *words, wine.windows_path(library))


def main(library):
    library = pathlib.Path(library)
    regsvr32(library, "/u")
    before = {part: exported(library, part) for part in PARTS}
    regsvr32(library)
    registered = exported(library, PARTS[0])
    faults = list(faults_of(registered, library))
    if exported(library, PARTS[1]) != before[PARTS[1]]:
        faults.append("The user's part has changed")
    regsvr32(library, "/u")
    for part in PARTS:
        after = exported(library, part)
        changed = {key for key in before[part].keys() | after.keys() if before[part].get(key) != after.get(key)}
        faults += [f"{part}\\{key} is not as it was before" for key in sorted(changed)]
    regsvr32(library)
    added = len(registered.keys() - before[PARTS[0]].keys())
    print("\n".join(faults) if faults else f"{added} keys come and go")
    return 1 if faults or added == 0 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
