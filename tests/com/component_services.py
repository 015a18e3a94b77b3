#!/usr/bin/env python3
"""Runs the example for Component Services against what stands in for its catalogue.

component_services.py EXAMPLE FOLDER
"""
import pathlib
import sys

import wine

# Prints what it is asked to change. The application "Old" has one of the classes; "Bare" takes none.
STAND_IN = """Class Entries
    Public Name
    Public Count
    Dim Kept(9)
    Public Function Add()
        Set Kept(Count) = New Entries
        Set Add = Kept(Count)
        Count = Count + 1
    End Function
    Public Function Item(place) : Set Item = Kept(place) : End Function
    Public Property Get Key() : Key = Name : End Property
    Public Property Let Value(field, given)
        If field = "Name" Then Name = given
        WScript.Echo Name & ": " & field & " = " & given
    End Property
    Public Sub Remove(place) : WScript.Echo "remove " & Kept(place).Name : End Sub
    Public Sub Populate() : End Sub
    Public Sub SaveChanges() : WScript.Echo "save" : End Sub
    Public Function GetCollection(what, application)
        Set GetCollection = New Entries
        If application = "Old" Then GetCollection.Add.Name = "TessarLornPickingAndDelivery.clsSaveData.1"
        Set catalog.Components = GetCollection
    End Function
End Class
Class StandIn
    Public Components
    Public Function GetCollection(what)
        Set GetCollection = New Entries
        GetCollection.Add.Name = "Old"
    End Function
    Public Sub ImportComponent(application, component)
        If application = "Bare" Then Err.Raise 429, "", "no class"
        WScript.Echo "import into " & application
        Components.Add.Name = component & ".1"
    End Sub
End Class
"""
SETTINGS = "".join(f"TessarLornPickingAndDelivery.{name}.1: Transaction = 3\n" for name in ("clsSaveData", "clsGetData"))
NAME = "TessarLorn Picking and Delivery"
CASES = (
    ((), f"{NAME}: Name = {NAME}\nsave\n" + f"import into {NAME}\n" * 2 + SETTINGS
     + f"save\n{NAME} has both classes, with transactions\n"),
    (("old",), f"import into old\n{SETTINGS}save\nold has both classes, with transactions\n"),
    (("Bare",), "Bare: Name = Bare\nsave\nTessarLornPickingAndDelivery.clsSaveData cannot be installed; is the library "
     "registered?: error 0x1AD no class\n"),
    (("Old", "/remove"), "remove Old\nsave\nOld is removed\n"),
    (("/remove",), f"There is no application {NAME}\n"),
)


def main(example, folder):
    text = pathlib.Path(example).read_text(encoding="ascii")
    script = pathlib.Path(folder) / "component_services.vbs"
    script.write_text(text.replace('CreateObject("COMAdmin.COMAdminCatalog")', "New StandIn") + STAND_IN, encoding="ascii")
    faults = []
    for words, wanted in CASES:
        output, remarks = wine.run_script(script, *words)
        if output != wanted:
            faults += [f"{words} printed", output, remarks]
    print("\n".join(faults) if faults else f"{len(CASES)} cases as expected")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
