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
VALUES = dict.fromkeys(("FID", "sFID", "sFIDs", "strFids", "strIDs"), ORDERS) | {
    "FOrderStatus": "2", "StrSql": "select FID, FOrderID from IC_Web2ERPOrders where FID < 9 order by FID",
    "sFKey": "1014301_FStockID", "FStockID": 202, "WebOrderMaxDisplayCount": 7, "FPickManNumber": "E1001",
    "sFiter": "t1.FInterID in (1)", "lTranType": 71, "SiteOrderID": "no such order", "sFWebshopID": "1",
    "ErrInfo": [{"FailureFID": 8, "FailureInfo": "it's closed"}], "FieldName": "FWeight", "FJzService": "JZ02,JZ01",
}
# What one operation needs that the others of these names do not.
OF_OPERATION = {
    "SetUpLogisticsCompany": {"FLogisticsID": 302}, "UpdateEMSOrderStatus": {"FID": "5"},
    "GetBigAccountInfo": {"FLogisticsID": 301}, "GetJDCustomerCode": {"FWebShopID": 102},
    "GetStartElectronicLogistics": {"FWebShopID": 101},
}
BY_TYPE = {"Long": 1, "Integer": 1, "Double": 2.5, "Boolean": True, "String": "7", "Date": "2026-11-21"}
NOTHING = {"Long": 0, "Integer": 0, "Boolean": False, "Dictionary": {}, "Vector": []}
# Lists of all orders' columns are long; a filter of every key finds none.
ONLY = {"GetListData": {"FOrderStatus", "WebOrderMaxDisplayCount"}}

PRELUDE = """Option Explicit
Dim subject, inner

Sub Fill(made, values)
  Dim i
  For i = 0 To UBound(values) Step 2
    made.Add values(i), values(i + 1)
  Next
End Sub
' Both kinds of dictionary are taken, the component's own and the platform's.
Function Own(values)
  Set Own = CreateObject("Mirel.Dictionary")
  Fill Own, values
End Function
Function Foreign(values)
  Set Foreign = CreateObject("Scripting.Dictionary")
  Fill Foreign, values
End Function
Function List(values)
  Dim item
  Set List = CreateObject("Mirel.Vector")
  For Each item In values
    List.Add item
  Next
End Function

Function Shown(value)
  Dim part
  Shown = "nothing"
  If IsObject(value) Then
    If value Is Nothing Then Exit Function
  End If
  Shown = ""
  Select Case TypeName(value)
    Case "_Dictionary"
      For Each part In value
        Shown = Shown & part & "=" & Shown(value(part)) & ";"
      Next
    Case "_Vector"
      For Each part In value
        Shown = Shown & Shown(part) & ","
      Next
    Case "_Recordset"
      Shown = value.RecordCount & " rows"
      For Each part In value.Fields
        Shown = Shown & " " & part.Name
      Next
    Case "Null", "Empty"
      Shown = "nothing"
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


def number(value):
    """A key of one order where the name usually means a list of them."""
    return int(str(value).split(",", maxsplit=1)[0])


def value_of(owner, one, full):
    """What a test gives for an argument or a key, but for connection strings."""
    kind = one["type"]
    if not full:
        return NOTHING.get(kind, "")
    given = VALUES | OF_OPERATION.get(owner, {})
    if kind not in ("Dictionary", "Vector") or one["name"] in given:
        value = given.get(one["name"], BY_TYPE.get(kind))
        return number(value) if kind in ("Long", "Integer") else value
    keys = [key for key in one.get("keys", []) if key["name"] in ONLY.get(owner, {key["name"]})]
    values = {key["name"]: value_of(owner, key, True) for key in keys if not key["connection"]}
    return [values] if kind == "Vector" else values


def literal(value, kind="Foreign"):
    """A value as the script writes it."""
    if isinstance(value, dict):
        pairs = [literal(part, kind) for pair in value.items() for part in pair]
        return f"{kind}(Array({', '.join(pairs)}))"
    if isinstance(value, list):
        return f"List(Array({', '.join(literal(item, 'Own') for item in value)}))"
    return '"' + value.replace('"', '""') + '"' if isinstance(value, str) else str(value)


def call_of_script(operation, values, connection, kind):
    """The lines of a call."""
    words = []
    for argument in operation["arguments"]:
        value = connection if argument["connection"] else values.get(argument["name"])
        if argument["type"] == "Dictionary":
            value = {key["name"]: connection for key in argument.get("keys", []) if key["connection"]} | value
        words.append("inner" if argument["written_back"] else literal(value, kind))
    name = operation["name"]
    call = f"subject.{name}" + ("" if operation["property"] else f"({', '.join(words)})")
    lines = [f'Set subject = CreateObject("TessarLornPickingAndDelivery.{operation["class"]}")', "inner = Empty",
             f'Answer "{name}", {call}', f'Failure "{name}"']
    return lines + [f'Answer "{name} wrote", inner'] * ("inner" in words)


def shown(value, is_rows=False):
    """The command's result as the script shows its own."""
    if is_rows and value is not None:
        return f"{len(value)} rows" + "".join(f" {name}" for name in (value[0] if value else []))
    if isinstance(value, dict):
        return "".join(f"{key}={shown(item)};" for key, item in value.items())
    if isinstance(value, list):
        return "".join(f"{shown(item)}," for item in value)
    return "nothing" if value is None else f"{value:g}" if isinstance(value, float) else str(value)


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
    script, wanted = [PRELUDE], []
    for full in (False, True):
        for operation in operations:
            given = (one for one in operation["arguments"] if not one["connection"] and not one["written_back"])
            values = {one["name"]: value_of(operation["name"], one, full) for one in given}
            kind = "Own" if len(wanted) % 2 else "Foreign"
            script += call_of_script(operation, values, session.format(wine.windows_path(there)), kind)
            wanted += call_command(command, session.format(here), operation, values)
    path = pathlib.Path(folder) / "every_operation.vbs"
    path.write_text("\r\n".join([*script, 'WScript.Echo "end"', ""]), encoding="ascii")
    output, remarks = wine.run_script(path)
    pairs = list(zip([*wanted, "end"], output.splitlines()))
    faults = [f"expected {a!r}\n     got {b!r}" for a, b in pairs if comparable(a) != comparable(b)]
    if not pairs or pairs[-1][1] != "end":
        faults = [*faults[:5], f"{len(pairs)} lines instead of {len(wanted) + 1}", remarks]
    print("\n".join(faults) if faults else f"{len(operations)} operations answer the same twice")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
