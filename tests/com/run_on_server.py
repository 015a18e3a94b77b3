#!/usr/bin/env python3
"""Runs a test program of Windows under Wine with a served database, empty and its own, in TESSARLORN_TEST_DATABASE.

run_on_server.py FOLDER COMMAND PROGRAM [ARGUMENT…]
"""
import os
import pathlib
import subprocess
import sys

import served
import wine


def main(folder, command, program, *arguments):
    database = wine.new_database(folder, pathlib.Path(program).stem)
    with served.ServedDatabase(command, database) as server:
        environment = os.environ | {"TESSARLORN_TEST_DATABASE": server.connection()}
        return subprocess.run(["wine", program, *arguments], env=environment, check=False).returncode


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
