#!/usr/bin/env python3
"""Installs what the installer brings, makes an object by its name, and takes it away again.

installer.py REPOSITORY LIBRARY FOLDER
"""
import pathlib
import shutil
import subprocess
import sys
import time

import wine

NAME = "TessarLornPickingAndDelivery"
UNINSTALL = rf"Software\Microsoft\Windows\CurrentVersion\Uninstall\{NAME}"
CLASS = rf"Software\Classes\{NAME}.clsGetData"


def make_installer(repository, library, folder):
    """The libraries are the same here: Wine for 32 bits registers but one."""
    shutil.rmtree(folder, ignore_errors=True)
    root = folder / "root"
    for bits in ("x64", "x86"):
        (root / bits).mkdir(parents=True)
        shutil.copy(library, root / bits)
    subprocess.run([f"{repository}/scripts/windows-pages", root], check=True)
    installer = folder / "installer.exe"
    words = ["makensis", "-V2", "-DVERSION=0.1.0", f"-DFOLDER={root}", f"-DINSTALLER={installer}"]
    subprocess.run([*words, f"{repository}/scripts/installer.nsi"], check=True)
    return installer


def known(key):
    return key.rsplit("\\", 1)[1] in wine.run("reg", "query", key, check=False)


def faults_of(installer, installed, words, part, other):
    """Installs for one part of the registry, beside a file of somebody else, and removes it."""
    keys = [rf"{root}\{key}" for root in (part, other) for key in (UNINSTALL, CLASS)]
    own = installed / "docs" / "own.txt"
    own.parent.mkdir(parents=True)
    own.touch()
    wine.run(wine.windows_path(installer), "/S", *words, f"/D={wine.windows_path(installed)}")
    if [known(key) for key in keys] != [True, True, False, False]:
        yield f"{words} registered {[key for key in keys if known(key)]}"
    if not (installed / "examples" / "order_day.vbs").exists():
        yield "Not all is installed"
    script = installed / "transaction_mode.vbs"
    script.write_text(f'WScript.Echo CreateObject("{NAME}.clsGetData").TransMode\n', encoding="ascii")
    # Wine does not look a user's registration up.
    if part == "HKLM" and wine.run_script(script)[0] != "2\n":
        yield "The class cannot be used"
    script.unlink()
    wine.run(wine.windows_path(installed / "uninstall.exe"), "/S")
    # It goes on as a copy of itself.
    ends = time.monotonic() + 20
    while time.monotonic() < ends and any(map(known, keys)):
        time.sleep(0.2)
    left = [path for path in installed.rglob("*") if path.is_file()] + [key for key in keys if known(key)]
    if left != [own]:
        yield f"{words} left {left}"


def main(repository, library, folder):
    folder = pathlib.Path(folder) / "installer"
    installer = make_installer(repository, library, folder)
    faults = [
        *faults_of(installer, folder / "installed", ["/AllUsers"], "HKLM", "HKCU"),
        *faults_of(installer, folder / "\u7528\u6237", ["/CurrentUser"], "HKCU", "HKLM"),
    ]
    print("\n".join(faults) if faults else "installed, used and removed")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
