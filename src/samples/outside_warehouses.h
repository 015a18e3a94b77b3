// The sample's warehouses of outside providers, and what was submitted to them.
#pragma once

#include "tessarlorn/connection.h"

namespace tessarlorn::cli {

/// Keys of t_Stock of the providers' warehouses.
namespace outside_stock {
inline constexpr int kEast = 204;
inline constexpr int kEastBad = 206;
inline constexpr int kSouth = 207;
inline constexpr int kClosed = 208;
}  // namespace outside_stock

/// Fills each table of providers, their warehouses, purchase and sales orders, and tasks that is empty. Raises what the
/// database raises.
void FillOutsideWarehouses(Connection& connection);

}  // namespace tessarlorn::cli
