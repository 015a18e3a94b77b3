#include "frame/update_or_insert.h"

namespace tessarlorn {

void AppendUpdateOrInsert(TextBuilder& text, std::string_view key, const OrderRow& row) {
  text.Append(R"(
IF EXISTS (SELECT 1 FROM {table} WHERE FID = {key})
    BEGIN
        UPDATE {table}
        SET {set}
        WHERE {guard}FID = {key}
    END
ELSE
    BEGIN
        INSERT INTO {table}(FID{columns})
        VALUES ({key}{values})
    END
)"_sql,
              {{"table", row.table},
               {"key", key},
               {"set", row.set},
               {"guard", row.guard},
               {"columns", row.columns},
               {"values", row.values}});
}

}  // namespace tessarlorn
