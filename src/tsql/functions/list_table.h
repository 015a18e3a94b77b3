// The table-valued function `ts_list(?)`: the items of a key list as rows, bound as one parameter.
#pragma once

#include <memory>
#include <vector>

#include "tsql/values/datum.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tessarlorn::tsql {

using ListItems = std::vector<Datum>;

void RegisterListTable(sqlite3* database);

/// Binds a list for `ts_list(?index)`. The statement shares the list until it is bound anew.
void BindList(sqlite3_stmt* statement, int index, std::shared_ptr<const ListItems> items);

}  // namespace tessarlorn::tsql
