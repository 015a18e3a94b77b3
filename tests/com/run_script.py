#!/usr/bin/env python3
"""Runs a VBScript under Wine and compares what it prints with what its remarks say.

run_script.py SCRIPT FOLDER [DATABASE [COMMAND]]: the script's first argument is a connection string to a copy of the
database in the folder, which the command serves when one is given, its second one the folder.
"""
import contextlib
import pathlib
import sys

import served
import wine


def connection_to(stack, copy, command):
    """Leads to the copy, over ODBC when there is a command that serves it as long as the stack stands."""
    if command is None:
        return "Embedded=" + wine.windows_path(copy)
    return stack.enter_context(served.ServedDatabase(command, copy)).connection()


def main(script, folder, database=None, command=None):
    script = pathlib.Path(script)
    name = script.stem + ("_served" if command else "")
    with contextlib.ExitStack() as stack:
        connection = "Embedded=none.db"
        if database:
            connection = connection_to(stack, wine.copy_database(database, folder, name), command)
        output, remarks = wine.run_script(script, connection, wine.windows_path(folder))
    return wine.report(script, output, remarks)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
