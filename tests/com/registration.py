#!/usr/bin/env python3
"""Registers the library beside what others have registered, and takes it back. Leaves it registered.

registration.py LIBRARY BITS
"""
import pathlib
import re
import sys

import wine

PARTS = (r"HKLM\Software\Classes", r"HKCU\Software\Classes")
# A class of somebody else under one of the library's names.
TAKEN = ("Mirel.Vector", "{11111111-2222-3333-4444-555555555555}")
# What a library of 32 bits has registered.
OTHER_BITNESS = ("Mirel.Dictionary", "{EA42DD31-F11F-497C-BA9E-E9406C345382}")
APPLICATION = r"AppID\{21C628D3-6B94-48BF-9FF6-AF5EF1EF7A5E}"
TYPE_LIBRARY = r"TypeLib\{1FE32CD4-2232-4B66-8CEF-F811FBCB2D64}"


def exported(library, part):
    """The registry's part as {key below the part: {name: value}}, all in small letters."""
    path = library.with_name("registry.reg")
    wine.run("reg", "export", part, wine.windows_path(path), "/y", check=False)
    keys = {}
    # A user without classes of their own has no such key.
    if not path.exists():
        return keys
    for line in path.read_text(encoding="utf-16").lower().splitlines():
        if line.startswith("["):
            values = keys.setdefault(re.sub(r"^\[[^\\]*\\software\\classes\\?|\]$", "", line), {})
        elif match := re.match(r'(@|"(?:[^"\\]|\\.)*")=(.*)$', line):
            values[match.group(1).strip('"')] = match.group(2).strip('"').replace("\\\\", "\\")
    path.unlink()
    return keys


def regsvr32(library, *words):
    wine.run("regsvr32", "/s", *words, wine.windows_path(library))


def changed_keys(before, after):
    return {key for key in before.keys() | after.keys() if before.get(key) != after.get(key)}


def faults_of(keys, bits):
    """What no test notices that creates objects."""
    servers = {
        key: values for key, values in keys.items()
        if values.get("@", "").endswith("\\tessarlornpickinganddelivery.dll") and key.endswith("\\inprocserver32")
    }
    if len(servers) != 4 or any(values.get("threadingmodel") != "apartment" for values in servers.values()):
        yield f"The classes are served by {servers}"
    for key in servers:
        type_library = keys.get(key.replace("inprocserver32", "typelib"), {}).get("@")
        if f"typelib\\{type_library}\\1.0\\0\\win{bits}" not in keys:
            yield f"{key} has no type library {type_library}"
    if keys["mirel.vector\\clsid"]["@"] != TAKEN[1]:
        yield "The name of another's class was taken over"


def main(library, bits):
    library = pathlib.Path(library)
    others = (rf"{PARTS[0]}\{TAKEN[0]}\CLSID", rf"{PARTS[0]}\CLSID\{OTHER_BITNESS[1]}")
    regsvr32(library, "/u")
    clean = exported(library, PARTS[0])
    of_user = exported(library, PARTS[1])
    wine.run("reg", "add", others[0], "/ve", "/d", TAKEN[1], "/f")
    # Windows of 32 bits has no other.
    if bits == "64":
        wine.run("reg", "add", others[1], "/f", "/reg:32")
        wine.run("reg", "add", rf"{PARTS[0]}\{TYPE_LIBRARY}\1.0\0\win32", "/ve", "/d", "x86.dll", "/f")
    before = exported(library, PARTS[0])
    regsvr32(library)
    registered = exported(library, PARTS[0])
    faults = list(faults_of(registered, bits))
    regsvr32(library, "/u")
    # The names of the class that is registered for 32 bits stay, and its application, and nothing else.
    left = changed_keys(before, exported(library, PARTS[0]))
    # What the type libraries of both have in common stays with the other's.
    shared = {"1.0", "flags", "helpdir"}
    left = {key for key in left if TYPE_LIBRARY.lower() not in key or key.rsplit("\\", 1)[1] not in shared}
    name = OTHER_BITNESS[0].lower()
    wanted = set() if bits == "32" else {name, f"{name}\\clsid", f"{name}\\curver", f"{name}.1", f"{name}.1\\clsid"}
    # Both views of the registry show the application.
    if bits == "64":
        wanted |= {APPLICATION.lower(), f"wow6432node\\{APPLICATION.lower()}"}
    faults += [f"{key} is not as it should be after /u" for key in sorted(left ^ wanted)]
    wine.run("reg", "delete", rf"{PARTS[0]}\{TAKEN[0]}", "/f")
    if bits == "64":
        wine.run("reg", "delete", others[1], "/f", "/reg:32")
        wine.run("reg", "delete", rf"{PARTS[0]}\{TYPE_LIBRARY}", "/f")
    regsvr32(library, "/u")
    faults += [f"{key} is left" for key in sorted(changed_keys(clean, exported(library, PARTS[0])))]
    regsvr32(library)
    if exported(library, PARTS[1]) != of_user:
        faults.append("The user's part has changed")
    print("\n".join(faults) if faults else f"{len(changed_keys(clean, registered))} keys come and go")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
