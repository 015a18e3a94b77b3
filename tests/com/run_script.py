#!/usr/bin/env python3
"""Runs a VBScript under Wine and compares what it prints with what its remarks say.

run_script.py SCRIPT FOLDER [DATABASE]: the script's first argument is a connection string to a copy of the database in
the folder, its second one the folder.
"""
import pathlib
import sys

import wine


def main(script, folder, database=None):
    script = pathlib.Path(script)
    connection = "Embedded=none.db"
    if database:
        connection = "Embedded=" + wine.windows_path(wine.copy_database(database, folder, script.stem))
    output, remarks = wine.run_script(script, connection, wine.windows_path(folder))
    text = script.read_text(encoding="ascii")
    faults = wine.differences(text, output)
    print("\n".join([*faults, remarks]) if faults else f"{len(wine.expectations(text))} lines as expected")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
