Attribute VB_Name = "OrderDay"
' The orders that wait for picking, on a worksheet, and a picker for the selected ones. Early-bound: set a reference to
' the type library TessarLornPickingAndDelivery 1.0.
Option Explicit

Private Const Dsn As String = "Connect={Embedded=C:\shop\orders.db};User=16394;Language=CHS"

Public Sub ListOrders()
    Dim reader As New TessarLornPickingAndDelivery.clsGetData
    Dim filter As New TessarLornPickingAndDelivery.Dictionary
    Dim orders As Object
    Dim values As Variant
    Dim grid() As Variant
    Dim row As Long
    Dim column As Long

    filter("FOrderStatus") = "2"
    Set orders = reader.GetListData(Dsn, filter)
    ActiveSheet.Cells.Clear
    For column = 0 To orders.Fields.Count - 1
        ActiveSheet.Cells(1, column + 1).Value = orders.Fields(column).Name
    Next
    If orders.EOF Then Exit Sub
    ' GetRows answers (field, row); a worksheet wants it the other way round, and nothing where a value is Null.
    values = orders.GetRows()
    ReDim grid(UBound(values, 2), UBound(values, 1))
    For row = 0 To UBound(values, 2)
        For column = 0 To UBound(values, 1)
            If Not IsNull(values(column, row)) Then grid(row, column) = values(column, row)
        Next
    Next
    ActiveSheet.Cells(2, 1).Resize(UBound(values, 2) + 1, UBound(values, 1) + 1).Value = grid
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
