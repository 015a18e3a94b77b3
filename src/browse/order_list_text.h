// The fixed texts of the order list: its columns and the tables that they come from.
#pragma once

#include <string_view>

#include "frame/text_builder.h"

namespace tessarlorn {

/// Appends the select list, from SELECT to the last fixed column.
/// @param row_limit digits for TOP, "" for all rows
/// @param caption_column the column that names areas and carriers in the caller's language
void AppendOrderColumns(TextBuilder& text, std::string_view row_limit, std::string_view caption_column);

/// Appends the FROM text with every join that the columns and the filters use.
void AppendOrderTables(TextBuilder& text);

}  // namespace tessarlorn
