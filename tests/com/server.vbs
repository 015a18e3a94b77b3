' A database behind a server: values that go far, errors of the server, refused logins, and a server that goes and comes
' back between two calls.
Option Explicit
Dim reads, files, database, refused, done, rs, text
database = WScript.Arguments(0)
refused = WScript.Arguments(1)
done = WScript.Arguments(2)
Set reads = CreateObject("TessarLornPickingAndDelivery.clsGetData")
Set files = CreateObject("Scripting.FileSystemObject")

Sub Run(where, sql)
  Set rs = reads.ExecuteSQL(where, sql)
End Sub

' Server.py does what the line asks for, and leaves a file when it is done; Wine's WScript cannot sleep.
Sub Order(what)
  WScript.Echo what
  Do Until files.FileExists(done)
    Run "Embedded=:memory:", "waitfor delay '00:00:00.020'"
  Loop
  files.DeleteFile done
End Sub

Sub Failure()
  WScript.Echo Hex(Err.Number), Err.Source, Err.Description
  Err.Clear
End Sub

' The words are those of whatever ODBC driver there is.
Sub Refusal()
  WScript.Echo Hex(Err.Number), Err.Source, InStr(Err.Description, "secret") + InStr(Err.Description, "sesame")
  Err.Clear
End Sub

' Long text, which is read part by part, and what stands behind it.
Run database, "select replicate(cast(nchar(24352) as nvarchar(max)), 30000) as FLong, nchar(24352) as FOne, cast('0100-01-01' as date) as FFirst"
WScript.Echo Len(rs("FLong")), Right(rs("FLong"), 1) = rs("FOne"), Year(rs("FFirst").Value) '= 30000 -1 100

' A call leaves nothing to the next one on its connection.
Run database, "create table R (FID int primary key) insert R values (1) select 7 as FSeven into #Left begin tran insert R values (2)"
Run database, "select count(*) as FRows, object_id('tempdb..#Left') as FLeft from R"
WScript.Echo rs("FRows"), IsNull(rs("FLeft").Value) '= 1 -1
Run WScript.Arguments(3), "select count(*) as FRows from R"
WScript.Echo rs("FRows") '= 1

On Error Resume Next
Run database, "select nchar(25918) + nchar(22312)"
text = rs(0).Value
Run database, "declare @text nvarchar(10) set @text = nchar(25918) + nchar(22312) raiserror(@text, 16, 1)"
WScript.Echo Hex(Err.Number), Err.Source, Err.Description = text '= 80040E14 TessarLorn ODBC driver -1
Err.Clear

' Nobody gets in, and no error tells a password.
Run refused, "select 1"
Failure '= 80040E4D TessarLorn ODBC driver Login failed for user 'ann'.
Run "Driver=None;PWD=secret", "select 1"
Refusal '= 80040E4D TessarLorn ODBC driver 0
Run "DSN=none;PWD={sec;ret", "select 1"
Failure '= 80040E4D TessarLorn ODBC driver Connection string: The brace behind PWD= is not closed

Order "stop" '= stop
Run database, "insert R values (2)"
Refusal '= 80040E4D TessarLorn ODBC driver 0
Run database, "select 1 as a"
Refusal '= 80040E4D TessarLorn ODBC driver 0
Order "start" '= start
Run database, "select count(*) as FRows from R"
WScript.Echo Err.Number, rs("FRows") '= 0 1
' A connection that died while it was idle is replaced unseen, before a read and before a write.
Order "restart" '= restart
Run database, "select count(*) as FRows from R"
WScript.Echo Err.Number, rs("FRows") '= 0 1
Order "restart" '= restart
Run database, "insert R values (3)"
Run database, "select count(*) as FRows from R"
WScript.Echo Err.Number, rs("FRows") '= 0 2
