// The WHERE text of the order list, from the keys of its filter.
#pragma once

#include <functional>
#include <string>

#include "frame/parameters.h"

namespace tessarlorn {

/// The WHERE text with CR LF behind each clause.
/// @param refund_check_off reads the setting by which open transactions count as normal although a refund is asked
///   for; called at most once, and only when the filter asks for normal or for refunded orders.
std::string OrderFilterText(const Parameters& filter, const std::function<bool()>& refund_check_off);

}  // namespace tessarlorn
