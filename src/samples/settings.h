// Settings of the sample installation: switches, limits, assistant data, the grid's layout, user-defined columns.
#pragma once

#include "tessarlorn/connection.h"

namespace tessarlorn::cli {

/// Codes of t_SubMessage that sample orders use.
namespace code {
inline constexpr int kShopOrder = 38111;
inline constexpr int kManualOrder = 38112;
inline constexpr int kSentOnline = 38131;
inline constexpr int kSentOffline = 38132;
inline constexpr int kExpress = 38141;
inline constexpr int kPost = 38142;
inline constexpr int kFixedPrice = 38151;
inline constexpr int kPayOnDelivery = 38152;
inline constexpr int kPresale = 38153;
inline constexpr int kPaid = 38192;
inline constexpr int kShipped = 38193;
inline constexpr int kSucceeded = 38194;
inline constexpr int kClosed = 38195;
inline constexpr int kServiceAsked = 84301;
inline constexpr int kServiceRefused = 84303;
}  // namespace code

/// Adds the switches, codes and user-defined columns that are missing, and fills the tables of print limits, of
/// settings and tasks of other programs, and the grid's layout where they are empty; what is there stays as it is. The
/// columns are one of the header, FGiftCardText, and two of the lines, FEngraving and FWrapping. Raises what the
/// database raises.
void WriteSettings(Connection& connection);

}  // namespace tessarlorn::cli
