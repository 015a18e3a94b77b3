# The orders that wait for picking, as objects, and a picker for the first two: order_day.ps1 -Database 'Embedded=C:\shop\orders.db'
param([Parameter(Mandatory)] [string] $Database)
$ErrorActionPreference = 'Stop'

$dsn = "Connect={$Database};User=16394;Language=CHS"
$reader = New-Object -ComObject TessarLornPickingAndDelivery.clsGetData
$writer = New-Object -ComObject TessarLornPickingAndDelivery.clsSaveData

$filter = New-Object -ComObject Mirel.Dictionary
$filter.Add('FOrderStatus', '2')
$orders = $reader.GetListData($dsn, $filter)
$waiting = while (-not $orders.EOF) {
    [pscustomobject] @{ FID = $orders.Fields('FID').Value; FOrderID = $orders.Fields('FOrderID').Value }
    $orders.MoveNext()
}
$orders.Close()
$waiting | Select-Object -First 10 | Format-Table

$parameters = New-Object -ComObject Mirel.Dictionary
$parameters.Add('sDSN', $dsn)
$parameters.Add('FID', ($waiting[0..1].FID -join ','))
$parameters.Add('FPickManNumber', '007')
try {
    $writer.ConfirmBill($parameters)
} catch [System.Runtime.InteropServices.COMException] {
    "$($_.Exception.Source): $($_.Exception.Message)"
}
