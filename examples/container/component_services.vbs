' Installs both classes into an application of Component Services, with the transaction setting "Required":
' cscript //nologo component_services.vbs [APPLICATION] [/remove]
' The library is registered before. The caller is an administrator.
Option Explicit

Const Library = "TessarLornPickingAndDelivery."
Const TransactionRequired = 3

Dim name, removes, i
name = "TessarLorn Picking and Delivery"
removes = False
For i = 0 To WScript.Arguments.Count - 1
    Select Case LCase(WScript.Arguments(i))
    Case "/remove"
        removes = True
    Case "/?", "/help"
        WScript.Echo "usage: cscript //nologo component_services.vbs [APPLICATION] [/remove]"
        WScript.Echo "Installs the classes into the application, which is made when it is not there; /remove takes it away."
        WScript.Quit 0
    Case Else
        name = WScript.Arguments(i)
    End Select
Next

On Error Resume Next
Dim catalog, applications, at
Set catalog = CreateObject("COMAdmin.COMAdminCatalog")
Check "There is no Component Services"
Set applications = catalog.GetCollection("Applications")
applications.Populate
at = IndexOf(applications, name)
Check "The applications cannot be read"

If removes Then
    If at < 0 Then
        WScript.Echo "There is no application " & name
        WScript.Quit 1
    End If
    applications.Remove at
    applications.SaveChanges
    Check "The application " & name & " cannot be removed"
    WScript.Echo name & " is removed"
    WScript.Quit 0
End If

Dim application
If at < 0 Then
    Set application = applications.Add()
    application.Value("Name") = name
    applications.SaveChanges
    applications.Populate
    at = IndexOf(applications, name)
    Check "The application " & name & " cannot be made"
End If

Dim components, component, className
Set components = applications.GetCollection("Components", applications.Item(at).Key)
components.Populate
Check "The components of " & name & " cannot be read"
For Each className In Array(Library & "clsSaveData", Library & "clsGetData")
    ' Registered components: the library's other classes stay outside.
    If IndexOf(components, className) < 0 Then catalog.ImportComponent name, className
    Check className & " cannot be installed; is the library registered?"
Next
components.Populate
For Each className In Array(Library & "clsSaveData", Library & "clsGetData")
    Set component = components.Item(IndexOf(components, className))
    component.Value("Transaction") = TransactionRequired
    Check "The transaction setting of " & className & " cannot be changed"
Next
components.SaveChanges
Check "The components of " & name & " cannot be saved"
WScript.Echo name & " has both classes, with transactions"

' The place of the entry with this name, with a version behind it or without; -1 where there is none.
Function IndexOf(entries, wanted)
    Dim place, found
    IndexOf = -1
    For place = 0 To entries.Count - 1
        found = LCase(entries.Item(place).Name)
        If found = LCase(wanted) Or found = LCase(wanted) & ".1" Then IndexOf = place
    Next
End Function

' Ends with the last error, if there was one.
Sub Check(what)
    If Err.Number = 0 Then Exit Sub
    WScript.Echo what & ": error 0x" & Hex(Err.Number) & " " & Err.Description
    WScript.Quit 1
End Sub
