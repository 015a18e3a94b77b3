// The statement that changes an order's row in a table beside the header, or makes the row when there is none.
#pragma once

#include <string_view>

#include "frame/text_builder.h"

namespace tessarlorn {

struct OrderRow {
  /// Its column FID is the order's key.
  std::string_view table;
  /// The assignments to a row that is there.
  std::string_view set;
  /// What a row that is there must fulfil to be changed, with " AND " behind it.
  std::string_view guard = {};
  /// The further columns of a new row and their values, each list with its comma in front.
  std::string_view columns;
  std::string_view values;
};

void AppendUpdateOrInsert(TextBuilder& text, std::string_view key, const OrderRow& row);

}  // namespace tessarlorn
