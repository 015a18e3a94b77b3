#!/usr/bin/env python3
"""Looks from outside at the memory of a script that makes and lets go objects: it has to stay as it is.

memory.py SCRIPT FOLDER DATABASE
"""
import pathlib
import sys

import wine

# What may come with each round, in bytes: less than the smallest object that could be forgotten.
MOST_A_ROUND = 16


def find_process(script):
    """The process of Wine that runs the script."""
    for entry in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            words = entry.read_bytes()
        except OSError:
            continue
        if b"cscript.exe" in words and script.name.encode() in words:
            return entry.parent
    raise SystemExit(f"no process runs {script}")


def memory(process):
    """Its own bytes, in memory and swapped."""
    lines = (line.split() for line in (process / "status").read_text().splitlines())
    return sum(1024 * int(words[1]) for words in lines if words[0] in ("RssAnon:", "VmSwap:"))


def main(script, folder, database):
    script = pathlib.Path(script)
    copy = wine.windows_path(wine.copy_database(database, folder, script.stem))
    connection = f"Embedded={copy};Synchronous=Normal"
    samples = []
    with wine.start_script(script, connection) as process:
        for line in process.stdout:
            samples.append((int(line), memory(find_process(script))))
    print("\n".join(f"{rounds} rounds: {size / 1024:.0f} KB" for rounds, size in samples))
    if len(samples) < 3:
        print("The script did not do its rounds")
        return 1
    # The first samples hold what is made once.
    (rounds_before, before), (rounds_after, after) = samples[1], samples[-1]
    growth = (after - before) / (rounds_after - rounds_before)
    print(f"{growth:.1f} bytes a round")
    return 1 if growth > MOST_A_ROUND else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
