' Values of every kind in and out, and the members of recordsets.
Option Explicit
Dim reads, database, rs, field, text, values, bookmark, files, path, chinese, vector
database = WScript.Arguments(0)
Set reads = CreateObject("TessarLornPickingAndDelivery.clsGetData")
Sub Failure(what)
  WScript.Echo what, Err.Number, Err.Source, Err.Description
  Err.Clear
End Sub

Set rs = reads.ExecuteSQL(database, "create table T (FID int, FName nvarchar(20), FAmount decimal(19,2), FDate datetime, " & _
  "FReal float, FFlag bit, FSmall smallint, FBytes varbinary(4), FBig bigint)")
WScript.Echo rs Is Nothing '= -1
Set rs = reads.ExecuteSQL(database, "insert into T values " & _
  "(1, 'it''s', -1.25, '2026-11-21 18:45:10', 1.5, 1, -7, 0x0102, 99999999999), " & _
  "(2, nchar(24352) + nchar(19977), 79228162514264.33, '1899-12-29', -0.5, 0, 7, null, -1), " & _
  "(3, null, null, null, null, null, null, null, null)")
Set rs = reads.executesql(database, "select * from T order by FID")

' Kinds of values, and ADO's numbers of types.
For Each field In rs.Fields
  text = text & field.Name & ":" & field.Type & ":" & VarType(field.Value) & " "
Next
WScript.Echo Trim(text) '= FID:3:3 FName:202:8 FAmount:131:14 FDate:135:7 FReal:5:5 FFlag:11:11 FSmall:2:2 FBytes:204:8209 FBig:20:14
WScript.Echo rs("FName"), CStr(rs("FAmount").Value), rs("FReal"), rs("FSmall"), CStr(rs("FBig").Value) '= it's -1.25 1.5 -7 99999999999
WScript.Echo rs("FFlag").Value + 0, Year(rs("FDate").Value), Hour(rs("FDate").Value), rs("FBytes").ActualSize '= -1 2026 18 2
rs.MoveNext
chinese = rs("FName").Value
WScript.Echo Len(chinese), rs("FName").ActualSize, CStr(rs("FAmount").Value), CDbl(rs("FDate").Value) '= 2 2 79228162514264.33 -1
WScript.Echo rs.Fields("FName").DefinedSize, rs.Fields("FAmount").Precision, rs.Fields("FAmount").NumericScale '= 20 19 2
rs.MoveNext
WScript.Echo IsNull(rs("FName").Value), IsNull(rs("FBytes").Value), rs("FName").ActualSize '= -1 -1 0

' What a script reads by the commonest of lines: the field, where its value is wanted.
Set vector = CreateObject("Mirel.Dictionary")
vector("FID") = rs("FID")
vector.Add "FField", rs("FID")
Set vector("FSet") = rs("FID")
WScript.Echo TypeName(vector("FID")), TypeName(vector("FField")), TypeName(vector("FSet")), vector("FSet") Is rs("FID") '= Long _Field _Field -1
Set field = reads.ExecuteSQL(database, "select 'select 7 as a' as FText, cast('06:00' as time) as FTime, cast(1.1 as real) as FReal, " & _
  "cast('6F9619FF-8B86-D011-B42D-00C04FC964FF' as uniqueidentifier) as FGuid, cast('2026-11-21 18:45:10.250' as datetime) as FDate")
WScript.Echo reads.ExecuteSQL(database, field("FText"))(0), field("FTime").Value = TimeSerial(6, 0, 0), TypeName(field("FReal").Value) '= 7 -1 Single
WScript.Echo field.GetString '= select 7 as a	06:00:00	1.1	{6F9619FF-8B86-D011-B42D-00C04FC964FF}	2026-11-21 18:45:10.250
Set vector = reads.ExecuteSQL(database, "select cast(1.5 as money) as FMoney, cast(200 as tinyint) as FTiny")
values = vector.GetRows
vector.MoveFirst
WScript.Echo TypeName(vector("FMoney").Value), vector("FMoney").Type, TypeName(vector("FTiny").Value), vector("FTiny").Type, TypeName(values(0, 0)) '= Currency 6 Byte 17 Currency
field.MoveFirst
field.Filter = "FGuid = '" & field("FGuid").Value & "'"
WScript.Echo field.RecordCount '= 1
field.Close
WScript.Echo field.Fields.Count '= 0

' Rows as arrays and text.
rs.MoveFirst
values = rs.GetRows
WScript.Echo UBound(values, 1), UBound(values, 2), values(1, 0), values(0, 2), IsNull(values(8, 2)), rs.EOF '= 8 2 it's 3 -1 -1
rs.MoveFirst
values = rs.GetRows(2, 1, Array("FSmall", 0))
WScript.Echo UBound(values, 1), UBound(values, 2), values(0, 1), values(1, 1), rs.AbsolutePosition '= 1 1 7 2 3
bookmark = rs.Bookmark
rs.Move "-2"
WScript.Echo rs(0), rs.Fields.Item(0), rs.Fields(CByte(0)), rs("fid") '= 1 1 1 1
rs.Move 1, bookmark - 2
WScript.Echo rs(0), rs.AbsolutePosition '= 2 2
rs.Filter = "FName = '" & chinese & "' or FAmount < 0"
WScript.Echo rs.RecordCount '= 2
rs.Filter = Array(bookmark, bookmark - 2)
WScript.Echo rs.RecordCount, rs(0), TypeName(rs.Filter), rs.Properties.Count, rs.Collect("FID"), rs(0).Attributes '= 2 1 Variant() 0 1 112
rs.Filter = 0
WScript.Echo rs.PageCount, rs.NextRecordset Is Nothing '= 1 -1

' Files.
Set files = CreateObject("Scripting.FileSystemObject")
path = WScript.Arguments(1) & "\recordset.xml"
If files.FileExists(path) Then files.DeleteFile path
rs.Save path, 1
WScript.Echo files.FileExists(path), rs.AbsolutePosition '= -1 1
Set rs.ActiveConnection = Nothing
WScript.Echo rs.ActiveConnection Is Nothing '= -1

' Chinese text, numbers, dates and Null as arguments, as values of a dictionary and inside SQL.
Set vector = CreateObject("Mirel.Vector")
vector.Add chinese
vector.Add CCur(1.5)
vector.Add CByte(200)
vector.Add 3.25
vector.Add Null
vector.Add Array(1, "two", Array(3))
WScript.Echo vector(1) = chinese, TypeName(vector(2)), vector(3), vector(4), IsNull(vector(5)) '= -1 Currency 200 3.25 -1
values = vector(6)
WScript.Echo values(1), UBound(values) '= two 2
WScript.Echo reads.ExecuteSQL(database, "select count(*) from T where FName = N'" & chinese & "'")(0) '= 1

On Error Resume Next
rs.Save path
WScript.Echo Err.Number '= 58
Err.Clear
rs.MoveLast
rs.MoveNext
text = rs(0).Value
Failure "row" '= row 3021 TessarLornPickingAndDelivery No current record
text = rs("FNone")
Failure "field" '= field 3265 TessarLornPickingAndDelivery Item cannot be found: FNone
rs.Bookmark = 99
WScript.Echo Hex(Err.Number), Err.Description '= 80040E0E The bookmark is not valid: 99
Err.Clear
rs.MoveFirst
rs("FID") = 5
Failure "write" '= write 3251 TessarLornPickingAndDelivery Current Recordset does not support updating. Its rows are read only: FID
rs.Fields("FName").Value = "x"
Failure "value" '= value 3251 TessarLornPickingAndDelivery Current Recordset does not support updating. Its rows are read only: FName
rs.AddNew Array("FID"), Array(5)
Failure "new" '= new 3251 TessarLornPickingAndDelivery Current Recordset does not support updating. Its rows are read only: AddNew
rs.Close
WScript.Echo rs.State, Err.Number '= 0 0
text = rs.EOF
Failure "closed" '= closed 3704 TessarLornPickingAndDelivery Operation is not allowed when the object is closed.
Set rs = reads.ExecuteSQL("Embedded=" & WScript.Arguments(1) & "\none\none.db", "select 1")
WScript.Echo Hex(Err.Number), Err.Source '= 80040E4D TessarLorn embedded database
Err.Clear
Set rs = reads.GetListData(database, "no dictionary")
Failure "kind" '= kind 13 TessarLornPickingAndDelivery Type mismatch
