// The orders that wait for picking, and a picker for the first one: OrderDay DATABASE
// Early-bound: the reference is what "tlbimp /namespace:TessarLornPickingAndDelivery" makes of the type library.
using System;
using System.Runtime.InteropServices;
using TessarLornPickingAndDelivery;

internal static class OrderDay
{
    private static int Main(string[] arguments)
    {
        if (arguments.Length != 1)
        {
            Console.Error.WriteLine("usage: OrderDay DATABASE");
            return 2;
        }
        string dsn = "Connect={" + arguments[0] + "};User=16394;Language=CHS";
        var reader = new clsGetData();
        var writer = new clsSaveData();
        try
        {
            var filter = new Dictionary();
            filter.Add("FOrderStatus", "2");
            Recordset orders = reader.GetListData(dsn, filter);
            Console.WriteLine("{0} orders wait for picking", orders.RecordCount);
            if (orders.EOF) return 0;

            var parameters = new Dictionary();
            parameters.Add("sDSN", dsn);
            parameters.Add("FID", Convert.ToString(orders.Fields["FID"].Value));
            parameters.Add("FPickManNumber", "007");
            Console.WriteLine("picked: {0}", writer.ConfirmBill(parameters));
            return 0;
        }
        catch (COMException error)
        {
            Console.Error.WriteLine("{0} 0x{1:X8}: {2}", error.Source, error.ErrorCode, error.Message);
            return 1;
        }
    }
}
