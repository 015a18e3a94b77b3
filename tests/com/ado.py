#!/usr/bin/env python3
"""Runs a VBScript on a served copy of the sample orders, which it reaches over Wine's ADO and ODBC, and over ODBC alone.

ado.py SCRIPT FOLDER DATABASE COMMAND LOGIN: LOGIN is the ODBC driver that adds the user, whom Wine's OLE DB leaves out.
"""
import sys

import served
import wine


def main(script, folder, database, command, login):
    copy = wine.copy_database(database, folder, "ado_served")
    odbc_ini = copy.with_suffix(".ini")
    with served.ServedDatabase(command, copy) as server:
        server.data_source_connection(odbc_ini, driver=login)
        wine.ENVIRONMENT |= {
            "ODBCINI": str(odbc_ini),
            "TESSARLORN_ODBC_USER": served.USER,
            "TESSARLORN_ODBC_PASSWORD": served.PASSWORD,
        }
        output, remarks = wine.run_script(script, "Provider=MSDASQL;Data Source=served", server.connection())
    return wine.report(script, output, remarks)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
