#!/usr/bin/env python3
"""Lays out the pages of the archive for Windows and follows their links.

archive.py SCRIPT FOLDER
"""
import pathlib
import re
import shutil
import subprocess
import sys


def anchors(page):
    """What links can name in a page: its headings, in small letters and with hyphens."""
    headings = re.findall(r"^#+ (.*)$", page.read_text(encoding="utf-8"), re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def main(script, folder):
    folder = pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    subprocess.run([script, folder], check=True)
    faults = []
    links = 0
    for page in sorted(folder.rglob("*.md")):
        for link in re.findall(r"\]\(([^)\s]+)\)", page.read_text(encoding="utf-8")):
            if re.match(r"\w+:", link):
                continue
            links += 1
            path, _, anchor = link.partition("#")
            target = (page.parent / path).resolve() if path else page.resolve()
            inside = target.is_relative_to(folder.resolve())
            if not inside or not target.exists():
                faults.append(f"{page.relative_to(folder)}: {link} leads nowhere")
            elif anchor and anchor not in anchors(target):
                faults.append(f"{page.relative_to(folder)}: {link} names no heading")
    print("\n".join(faults) if faults else f"{links} links")
    return 1 if faults or links == 0 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
