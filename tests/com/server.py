#!/usr/bin/env python3
"""Runs a VBScript under Wine on a served database, and stops and starts the server where the script says so.

server.py SCRIPT FOLDER COMMAND
"""
import pathlib
import sys

import served
import wine


def main(script, folder, command):
    script = pathlib.Path(script)
    database = wine.new_database(folder, script.stem)
    done = database.with_suffix(".done")
    done.unlink(missing_ok=True)
    output = ""
    with served.ServedDatabase(command, database) as server:
        orders = {"stop": [server.stop], "start": [server.start], "restart": [server.stop, server.start]}
        odbc_ini = database.with_suffix(".ini")
        wine.ENVIRONMENT["ODBCINI"] = str(odbc_ini)
        words = [server.connection(), server.connection(password="wrong one"), wine.windows_path(done)]
        words.append(server.data_source_connection(odbc_ini))
        with wine.start_script(script, *words) as process:
            for line in process.stdout:
                text = line.decode("utf-8").rstrip("\r\n")
                output += text + "\n"
                if text in orders:
                    for action in orders[text]:
                        action()
                    done.touch()
    return wine.report(script, output)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
