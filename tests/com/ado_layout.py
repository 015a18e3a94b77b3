#!/usr/bin/env python3
"""Compares the order of the members of ADO's interfaces, as the driver has them, with the header that Wine has of them.

ado_layout.py HEADER: our header; Wine's is of the package libwine-dev.
"""
import pathlib
import re
import sys

WINE = pathlib.Path("/usr/include/wine/wine/windows/msado15_backcompat.h")
# Members that its users do not see have a name of their own there.
HIDDEN = {"HiddenResync": "_xResync", "HiddenClone": "_xClone", "HiddenSave": "_xSave", "NewEnum": "_NewEnum"}
DISPATCH_MEMBERS = 7
INTERFACES = "_Connection _Recordset Fields Field Errors Error _Command Parameters _Parameter _Stream".split()


def ours(text, interface):
    """The members of an interface, those that it inherits first."""
    if interface == "IDispatch":
        return []
    base, body = re.search(rf"struct {interface} : (\w+) \{{(.*?)\n\}};", text, re.S).groups()
    own = re.findall(r"STDMETHODCALLTYPE\s+(\w+)\s*\(", body)
    return ours(text, base) + [HIDDEN.get(name, name) for name in own]


def theirs(text, interface):
    body = re.search(rf"typedef struct {interface}Vtbl \{{(.*?)\}} {interface}Vtbl;", text, re.S).group(1)
    return re.findall(r"STDMETHODCALLTYPE \*(\w+)\)", body)[DISPATCH_MEMBERS:]


def main(header):
    our_text = pathlib.Path(header).read_text(encoding="utf-8")
    their_text = WINE.read_text(encoding="utf-8")
    faults = []
    compared = 0
    for interface in INTERFACES:
        own = ours(our_text, "IAdo" + interface.lstrip("_"))
        other = theirs(their_text, interface)
        compared += len(own)
        if len(own) > len(other):
            faults.append(f"{interface} has {len(other)} members, not {len(own)}")
        faults += [f"{interface}: {a} stands where {b} is" for a, b in zip(own, other) if a != b]
    print("\n".join(faults) if faults else f"{compared} members in their places")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
