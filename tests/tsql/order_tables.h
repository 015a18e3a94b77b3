// Batches and their answers on two small tables, orders o and their lines e.
#pragma once

#include "tsql/database_support.h"

namespace tessarlorn {

inline constexpr const char* kOrderTables = R"(
create table o (FID int not null primary key, FName nvarchar(20), FDate datetime, FAmount decimal(14,4), FState int)
insert o values (1,N'张三','2026-11-01 08:00:00',10.5,2),(2,'Bob','2026-11-02',20,6),(3,'bob ','2026-10-31 23:59:59.997',null,14)
create table e (FEntryID int not null primary key, FID int, FQty decimal(14,4), FCode varchar(10))
insert e values (11,1,1,'A1'),(12,1,2,'a1 '),(21,2,3,null)
)";

inline void CheckOnOrders(std::initializer_list<AnsweredBatch> rows) { CheckBatches({kOrderTables}, rows); }

}  // namespace tessarlorn
