#!/usr/bin/env python3
"""Looks into the library's file: machine, exports, imports, resources.

check_library.py LIBRARY OBJDUMP
"""
import re
import subprocess
import sys

EXPORTS = {"DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer", "DllUnregisterServer"}
WINDOWS_OWN = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "odbc32.dll", "ole32.dll", "oleaut32.dll", "user32.dll"}


def main(library, objdump):
    done = subprocess.run([objdump, "-p", library], capture_output=True, check=True)
    text = done.stdout.decode("utf-8", errors="replace")
    faults = []
    kind = re.search(r"file format (\S+)", text).group(1)
    wanted = "pei-i386" if "i686" in objdump else "pei-x86-64"
    if kind != wanted:
        faults.append(f"a file of {kind} instead of {wanted}")
    if not re.search(r"^\s+DLL$", text, re.M):
        faults.append("no library by its characteristics")
    names = text.split("[Ordinal/Name Pointer] Table", 1)[-1].split("\n\n", 1)[0]
    exports = set(re.findall(r"^\s*\[\s*\d+\]\s+(?:\S+\s+)*?(\w+(?:@\d+)?)$", names, re.M))
    if exports != EXPORTS:
        faults.append(f"exports {sorted(exports)}")
    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", text)}
    if not imports or imports - WINDOWS_OWN:
        faults.append(f"needs {sorted(imports - WINDOWS_OWN)}, which Windows does not bring")
    resources = text.split("The .rsrc Resource Directory section:", 1)[-1]
    if not re.search(r"Entry: name: .*TYPELIB", resources):
        faults.append("no type library among the resources")
    if not re.search(r"Entry: ID: 0x0*10\b", resources):
        faults.append("no version among the resources")
    print("\n".join(faults) if faults else f"{kind}: {len(exports)} exports, imports of {', '.join(sorted(imports))}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
