// What reports are made with: each batch with the answer that SQL Server gives.
#include <gtest/gtest.h>

#include "tsql/order_tables.h"

namespace tessarlorn {
namespace {

TEST(Reports, RowsForEachRow) {
  CheckOnOrders({
      {"select o.FID, x.FEntryID, x.FQty from o cross apply (select top 1 FEntryID, FQty from e where FID = o.FID order by FQty desc) x order by 1",
       "FID|FEntryID|FQty;1|12|2.0000;2|21|3.0000"},
      {"select o.FID, x.n, x.d from o outer apply (select count(*), max(o2.FDate) from e join o o2 on o2.FID = e.FID where e.FID = o.FID "
       "having count(*) > 1) x(n, d) order by 1",
       "FID|n|d;1|2|2026-11-01 08:00:00;2|NULL|NULL;3|NULL|NULL"},
      {"select o.FID, v.k, v.t from o cross apply (values ('n', FName), ('a', cast(FAmount as nvarchar(20)))) v(k, t) where v.t "
       "is not null order by 1, 2",
       "FID|k|t;1|a|10.5000;1|n|张三;2|a|20.0000;2|n|Bob;3|n|bob "},
      {"select o.FID, s.value from o cross apply string_split(o.FName, 'o') s where o.FID > 1 order by 1, 2",
       "FID|value;2|B;2|b;3|b;3|b "},
      {"select count(*) as n, count(value) as c from string_split('a,,b,', ',') t", "n|c;4|4"},
      {"select t.x from string_split(null, ',') t(x)", "x"},
      {"select a.FID, c.FEntryID from o a cross apply (select b.FEntryID, b.FID from e b where b.FID = a.FID) c cross apply "
       "(select 1 as one where c.FEntryID > 11) d order by 2",
       "FID|FEntryID;1|12;2|21"},
      {"select x.a from o cross apply (select FID from e) x(a, b)",
       "error 8159: 'x' has fewer columns than were specified in the column list."},
      {"select value from string_split('a', '')",
       "error 214: Procedure expects parameter 'separator' of type 'nchar(1)/nvarchar(1)'."},
      {"select y.a from o cross apply (select z.FID as a from e where e.FID = z.FID) y",
       "error 4104: The multi-part identifier \"z.FID\" could not be bound."},
  });
}

TEST(Reports, RowsAsText) {
  CheckOnOrders({
      {"select o.FID, stuff((select ',' + FCode from e where e.FID = o.FID order by FEntryID desc for xml path('')), 1, 1, '') as c from "
       "o order by FID",
       "FID|c;1|a1 ,A1;2|NULL;3|NULL"},
      {"select (select '<' + FName + '&' from o where FID < 3 order by FID for xml path(''), type).value('.', 'nvarchar(99)') as v, "
       "(select '<' + FName + '&' from o where FID = 2 for xml path('')) as x",
       "v|x;<张三&<Bob&|&lt;Bob&amp;"},
      {"select (select FID as [@id], FAmount as 'money/amount', FDate as 'money/day', FState as 'state' from o where FID <> 2 order by FID "
       "for xml path('order'), root('orders')) as x",
       "x;<orders><order id=\"1\"><money><amount>10.5000</amount><day>2026-11-01T08:00:00</day></money><state>2</state></order><order "
       "id=\"3\"><money><day>2026-10-31T23:59:59.997</day></money><state>14</state></order></orders>"},
      {"select (select FID as [data()] from o order by FID for xml path('')) as l, (select FID, FCode from e where FID = 2 for xml raw) "
       "as r",
       "l|r;1 2 3|<row FID=\"2\"/>"},
      {"select (select FID id, FName as 'buyer.name', FAmount as 'buyer.sum', cast(1 as bit) ok, (select FCode c from e where e.FID = "
       "o.FID for json path) lines from o where FID <> 2 order by FID for json path) as j",
       "j;[{\"id\":1,\"buyer\":{\"name\":\"张三\",\"sum\":10.5000},\"ok\":true,\"lines\":[{\"c\":\"A1\"},{\"c\":\"a1 "
       "\"}]},{\"id\":3,\"buyer\":{\"name\":\"bob \"},\"ok\":true}]"},
      {"select (select cast(123456789.125 as float) f, 'a/b' t, (select 1 x for json path, without_array_wrapper) o for json path) as j",
       "j;[{\"f\":1.234567891250000e+008,\"t\":\"a\\/b\",\"o\":\"{\\\"x\\\":1}\"}]"},
      {"select 1 as a, 2 as [b.c], 3 as [a.d] for json path",
       "error 13601: Property 'a.d' cannot be generated in JSON output due to a conflict with another column name or alias. Use "
       "different names and aliases for each column in SELECT list."},
      {"select (select FCode as c from e where FEntryID = 21 for json path, include_null_values, without_array_wrapper) as j, (select 1 a "
       "from o where 1 = 0 for json path) as n",
       "j|n;{\"c\":null}|NULL"},
  });
}

TEST(Reports, TopWithTiesAndPercent) {
  CheckOnOrders({
      {"select top 1 with ties FID, FEntryID from e order by FID", "FID|FEntryID;1|11;1|12"},
      {"select top (50) percent FID from o order by FID desc", "FID;3;2"},
      {"select top 34 percent with ties FID from e order by FID", "FID;1;1"},
      {"select top 1 with ties FID, sum(FQty) as q from e group by FID having sum(FQty) > 1 order by q desc",
       "FID|q;1|3.0000;2|3.0000"},
      {"select distinct top 1 with ties FID as a from e order by a", "a;1"},
      {"select t.FID from (select top 1 with ties FID from e order by FQty / FQty, FID) t where FID = 1", "FID;1;1"},
      {"select count(*) as n from o where FID in (select top 50 percent FID from o order by FAmount)", "n;2"},
      {"select top 0 percent FID from o", "FID"},
      {"select top 101 percent FID from o", "error 1031: Percent values must be between 0 and 100."},
      {"select top 1 with ties FID from o",
       "error 1062: The TOP N WITH TIES clause is not allowed without a corresponding ORDER BY clause."},
  });
}

TEST(Reports, GroupingSetsAndPivot) {
  CheckOnOrders({
      {"select FID, FCode, sum(FQty) q, grouping(FCode) g from e group by rollup (FID, FCode) order by grouping(FID), FID, g, FCode",
       "FID|FCode|q|g;1|A1|3.0000|0;1|NULL|3.0000|1;2|NULL|3.0000|0;2|NULL|3.0000|1;NULL|NULL|6.0000|1"},
      {"select FState, year(FDate) y, count(*) n, grouping_id(FState, year(FDate)) i from o group by cube (FState, year(FDate)) having "
       "count(*) > 1",
       "FState|y|n|i;NULL|2026|3|2;NULL|NULL|3|3"},
      {"select top 2 FID, count(*) n from e group by grouping sets ((FID), ()) order by n desc", "FID|n;NULL|3;1|2"},
      {"select FID, FCode, sum(FQty) q, grouping(e.FID) g from e where FID = 1 group by grouping sets((e.FID, e.FCode), (FID), ()) order "
       "by g, FCode, FID",
       "FID|FCode|q|g;1|NULL|3.0000|0;1|A1|3.0000|0;NULL|NULL|3.0000|1"},
      {"select FID from e group by rollup (FID) order by 1", "FID;NULL;1;2"},
      {"select FID, count(*) n from e group by FID with rollup", "FID|n;1|2;2|1;NULL|3"},
      {"select FID, count(*) n from e where 1 = 0 group by FID with cube", "FID|n"},
      {"select * from (select FID, FCode, FQty from e) s pivot (sum(FQty) for FCode in ([a1], [B])) p order by FID",
       "FID|a1|B;1|3.0000|NULL;2|NULL|NULL"},
      {"select FID, [2], [6] from (select FID, FState, FName from o) s pivot (count(FName) for FState in ([2], [6])) as p order by 1",
       "FID|2|6;1|1|0;2|0|1;3|0|0"},
      {"select u.FID, u.k, u.v from (select FID, FState, FID * 10 as x from o) s unpivot (v for k in (FState, x)) u where FID < 3 order by "
       "FID, k desc",
       "FID|k|v;1|x|10;1|FState|2;2|x|20;2|FState|6"},
  });
}

}  // namespace
}  // namespace tessarlorn
