Attribute VB_Name = "OrderDay"
' The orders that wait for picking, on a worksheet, and a picker for the selected ones. Early-bound: set a reference to
' the type library TessarLornPickingAndDelivery 1.0.
Option Explicit

Private Const Dsn As String = "Connect={Embedded=C:\shop\orders.db};User=16394;Language=CHS"

Public Sub ListOrders()
    Dim reader As New TessarLornPickingAndDelivery.clsGetData
    Dim filter As New TessarLornPickingAndDelivery.Dictionary
    Dim orders As Object
    Dim column As Long

    filter("FOrderStatus") = "2"
    Set orders = reader.GetListData(Dsn, filter)
    ActiveSheet.Cells.Clear
    For column = 0 To orders.Fields.Count - 1
        ActiveSheet.Cells(1, column + 1).Value = orders.Fields(column).Name
    Next
    If orders.EOF Then Exit Sub
    ' GetRows answers (field, row); a worksheet wants it the other way round.
    ActiveSheet.Cells(2, 1).Resize(orders.RecordCount, orders.Fields.Count).Value = _
        Application.WorksheetFunction.Transpose(orders.GetRows())
End Sub

Public Sub PickSelected()
    Dim writer As New TessarLornPickingAndDelivery.clsSaveData
    Dim parameters As New TessarLornPickingAndDelivery.Dictionary
    Dim row As Range
    Dim keys As String

    For Each row In Selection.Rows
        keys = keys & IIf(keys = "", "", ",") & ActiveSheet.Cells(row.Row, 1).Value
    Next
    parameters("sDSN") = Dsn
    parameters("FID") = keys
    parameters("FPickManNumber") = "007"
    On Error GoTo Failed
    If writer.ConfirmBill(parameters) Then MsgBox "Orders " & keys & " are to be delivered."
    Exit Sub
Failed:
    MsgBox Err.Description, vbExclamation, Err.Source & " " & Err.Number
End Sub
