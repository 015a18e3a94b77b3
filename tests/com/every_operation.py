#!/usr/bin/env python3
"""Calls every operation late-bound from a VBScript under Wine, and by the command of this machine, each on its own copy
of one database, and compares what they answer and raise.

every_operation.py COMMAND DATABASE FOLDER

Each operation is called twice: without anything but the connection string, and with a value for every argument and key.
"""
import json
import pathlib
import subprocess
import sys

import wine

ORDERS = "2,3,5,8"
VALUES = {
    "FID": ORDERS, "sFID": ORDERS, "sFIDs": ORDERS, "strFids": ORDERS, "strIDs": ORDERS, "FOrderStatus": "2",
    "StrSql": "select FID, FOrderID from IC_Web2ERPOrders where FID < 9 order by FID",
    "sFKey": "1014301_FStockID", "FStockID": 202, "WebOrderMaxDisplayCount": 7, "FPickManNumber": "E1001",
    "sFiter": "t1.FInterID in (1)", "lTranType": 71, "SiteOrderID": "no such order", "sFWebshopID": "1",
    "ErrInfo": [{"FailureFID": 8, "FailureInfo": "it's closed"}], "FieldName": "FWeight",
}
BY_TYPE = {"Long": 1, "Integer": 1, "Double": 2.5, "Boolean": True, "String": "7", "Date": "2026-11-21"}
# Lists of all orders' columns are long; a filter of every key finds none.
ONLY = {"GetListData": {"FOrderStatus", "WebOrderMaxDisplayCount"}}

PRELUDE = """Option Explicit
Dim subject, result, inner, index, d(20)

Function Shown(value)
  Dim part, item
  If IsObject(value) Then
    If value Is Nothing Then
      Shown = "nothing"
      Exit Function
    End If
  End If
  Select Case TypeName(value)
    Case "_Dictionary"
      For Each part In value
        Shown = Shown & part & "=" & Shown(value(part)) & ";"
      Next
      Shown = "{" & Shown & "}"
    Case "_Vector"
      For Each item In value
        Shown = Shown & Shown(item) & ","
      Next
      Shown = "[" & Shown & "]"
    Case "_Recordset"
      Shown = value.RecordCount & " rows"
      For Each item In value.Fields
        Shown = Shown & " " & item.Name
      Next
    Case "Null", "Empty"
      Shown = "nothing"
    Case "Boolean"
      Shown = "false"
      If value Then Shown = "true"
    Case Else
      Shown = CStr(value)
  End Select
End Function

Sub Answer(name, value)
  If Err.Number = 0 Then WScript.Echo name & " " & Shown(value)
End Sub

Sub Failure(name)
  If Err.Number <> 0 Then WScript.Echo name & " raised " & Err.Number & " " & Err.Source & ": " & Err.Description
  Err.Clear
End Sub

On Error Resume Next
"""


def key_value(key):
    if "keys" in key:
        return [{item["name"]: key_value(item) for item in key["keys"]}]
    value = VALUES.get(key["name"], BY_TYPE.get(key["type"]))
    return number(value) if key["type"] == "Long" else value


def number(value):
    """A key of one order where the name usually means a list of them."""
    return int(str(value).split(",", maxsplit=1)[0])


def argument_value(operation, argument, full):
    """What a test gives for an argument, but for the connection string; None for nothing."""
    keys = [key for key in argument.get("keys", []) if not key["connection"]]
    if argument["type"] == "Dictionary":
        wanted = ONLY.get(operation["name"], {key["name"] for key in keys})
        return {key["name"]: key_value(key) for key in keys if key["name"] in wanted} if full else {}
    if argument["type"] == "Vector":
        return [{key["name"]: key_value(key) for key in keys}] if full else []
    if not full:
        return {"Long": 0, "Integer": 0, "Boolean": False}.get(argument["type"], "")
    value = VALUES.get(argument["name"], BY_TYPE.get(argument["type"]))
    return number(value) if argument["type"] in ("Long", "Integer") else value


class Script:
    """Writes the calls."""

    def __init__(self, connection):
        self.connection = connection
        self.lines = [PRELUDE]
        self.used = 0

    def literal(self, value):
        """The expression for a value; collections are made first."""
        if isinstance(value, bool):
            return str(value)
        if isinstance(value, (int, float)):
            return str(value)
        if isinstance(value, str):
            return '"' + value.replace('"', '""') + '"'
        own = f"d({self.used})"
        self.used += 1
        if isinstance(value, dict):
            # Both kinds of dictionary are taken, the component's own and the platform's.
            kind = "Mirel.Dictionary" if self.used % 2 else "Scripting.Dictionary"
            self.lines.append(f'Set {own} = CreateObject("{kind}")')
            self.lines += [f'{own}.Add "{key}", {self.literal(item)}' for key, item in value.items()]
        else:
            self.lines.append(f'Set {own} = CreateObject("Mirel.Vector")')
            self.lines += [f"{own}.Add {self.literal(item)}" for item in value]
        return own

    def call(self, operation, values):
        self.used = 0
        name = operation["name"]
        words = []
        for argument in operation["arguments"]:
            if argument["written_back"]:
                self.lines.append("inner = Empty")
                words.append("inner")
            elif argument["connection"]:
                words.append(self.literal(self.connection))
            else:
                value = values[argument["name"]]
                if argument["type"] == "Dictionary":
                    keys = [key["name"] for key in argument.get("keys", []) if key["connection"]]
                    value = {key: self.connection for key in keys} | value
                words.append(self.literal(value))
        call = f"subject.{name}" + ("" if operation["property"] else f"({', '.join(words)})")
        self.lines += [
            f'Set subject = CreateObject("TessarLornPickingAndDelivery.{operation["class"]}")',
            f'Answer "{name}", {call}',
            f'Failure "{name}"',
        ]
        if any(argument["written_back"] for argument in operation["arguments"]):
            self.lines.append(f'Answer "{name} wrote", inner')

    def write(self, path):
        path.write_text("\r\n".join([*self.lines, 'WScript.Echo "end"', ""]), encoding="ascii")


def shown(value, is_rows=False):
    """The command's result as the script shows its own."""
    if is_rows and value is not None:
        return f"{len(value)} rows" + "".join(f" {name}" for name in (value[0] if value else []))
    if value is None:
        return "nothing"
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, dict):
        return "{" + "".join(f"{key}={shown(item)};" for key, item in value.items()) + "}"
    if isinstance(value, list):
        return "[" + "".join(f"{shown(item)}," for item in value) + "]"
    return f"{value:g}" if isinstance(value, float) else str(value)


def call_command(command, connection, operation, values):
    """What the command answers, as lines of the script."""
    name = operation["name"]
    words = [command, "call", f"{operation['class']}.{name}", "--dsn", connection]
    words += ["--no-transaction", "--json", "--args", "-"]
    done = subprocess.run(words, input=json.dumps(values), capture_output=True, encoding="utf-8", check=False)
    if done.returncode == 3:
        error = dict(line.split(": ", 1) for line in done.stderr.splitlines() if ": " in line)
        return [f"{name} raised {error['Number'].split()[0]} {error['Source']}: {error['Description']}"]
    if done.returncode not in (0, 1):
        raise SystemExit(f"{' '.join(words)} {json.dumps(values)}: {done.stderr}")
    result = json.loads(done.stdout)
    if any(argument["written_back"] for argument in operation["arguments"]):
        written = list(result["Arguments"].values())[0]
        return [f"{name} {shown(result['Result'])}", f"{name} wrote {shown(written)}"]
    return [f"{name} {shown(result, operation['result'] == 'Recordset')}"]


def comparable(line):
    """The console of Wine shows no Chinese characters; a recordset without rows shows no fields as JSON."""
    line = "".join(letter if ord(letter) < 128 else "?" for letter in line)
    return line.split(" rows")[0] + " rows" if " 0 rows" in line else line


def main(command, database, folder):
    operations = json.loads(subprocess.run([command, "ops", "--json"], capture_output=True, check=True).stdout)
    here, there = (wine.copy_database(database, folder, f"every_operation_{place}") for place in ("here", "there"))
    session = "Connect={{Embedded={}}};User=16394;Language=CHS;Client=10.0.0.5"
    script = Script(session.format(wine.windows_path(there)))
    wanted = []
    for full in (False, True):
        for operation in operations:
            values = {
                argument["name"]: argument_value(operation, argument, full)
                for argument in operation["arguments"]
                if not argument["connection"] and not argument["written_back"]
            }
            script.call(operation, values)
            wanted += call_command(command, session.format(here), operation, values)
    wanted.append("end")
    path = pathlib.Path(folder) / "every_operation.vbs"
    script.write(path)
    output, remarks = wine.run_script(path)
    lines = output.splitlines()
    faults = [f"expected {a!r}\n     got {b!r}" for a, b in zip(wanted, lines) if comparable(a) != comparable(b)]
    if len(lines) != len(wanted):
        faults = faults[:5]
        faults.append(f"{len(lines)} lines instead of {len(wanted)}\n{remarks}")
    print("\n".join(faults) if faults else f"{len(operations)} operations answer the same twice")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
