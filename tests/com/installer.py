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
UNINSTALL = rf"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\{NAME}"
CLASS = rf"HKLM\Software\Classes\{NAME}.clsGetData"


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


def main(repository, library, folder):
    folder = pathlib.Path(folder) / "installer"
    installer = make_installer(repository, library, folder)
    installed = folder / "installed"
    wine.run(wine.windows_path(installer), "/S", f"/D={wine.windows_path(installed)}")
    script = folder / "transaction_mode.vbs"
    script.write_text(f'WScript.Echo CreateObject("{NAME}.clsGetData").TransMode\n', encoding="ascii")
    faults = []
    if wine.run_script(script)[0] != "2\n":
        faults.append("The class cannot be used")
    if not known(UNINSTALL) or not (installed / "examples" / "order_day.vbs").exists():
        faults.append("Not all is installed")
    wine.run(wine.windows_path(installed / "uninstall.exe"), "/S")
    # It goes on as a copy of itself.
    ends = time.monotonic() + 20
    while time.monotonic() < ends and (installed.exists() or known(UNINSTALL)):
        time.sleep(0.2)
    faults += [f"{left} is left" for left in (installed,) if left.exists()]
    faults += [f"{key} is left" for key in (UNINSTALL, CLASS) if known(key)]
    print("\n".join(faults) if faults else "installed, used and removed")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
