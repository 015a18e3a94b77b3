// The order fields that an installation has added, as its table ICClassTableInfo lists them.
#pragma once

#include <string>
#include <string_view>

#include "tessarlorn/connection.h"

namespace tessarlorn {

/// Which part of an order a user-defined field belongs to, as the page of its form.
enum class OrderPage : char { kHeader = '1', kLines = '2' };

/// A select-list text of the fields of a page, each as a comma, `alias`, a point and its name; "" when there are none.
std::string UserDefinedFields(Connection& connection, std::string_view alias, OrderPage page);

}  // namespace tessarlorn
