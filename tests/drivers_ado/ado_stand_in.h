// What ADO's documentation says of its objects, done over the component's own drivers: for tests where ADO is not, or
// not whole.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "com_base/windows_headers.h"

namespace tessarlorn {

/// While it lives, COM makes the stand-in where this process asks for ADODB.Connection and ADODB.Command on this
/// thread's apartment, which it joins. A database is named by `Provider=StandIn;Data Source=<string of another
/// driver>`.
class AdoStandIn {
 public:
  AdoStandIn();
  AdoStandIn(const AdoStandIn&) = delete;
  AdoStandIn& operator=(const AdoStandIn&) = delete;
  ~AdoStandIn();

  static std::string StringOf(std::string_view database) {
    return "Provider=StandIn;Data Source=\"" + std::string(database) + "\"";
  }
  /// Whether recordsets can be cloned from now on, which some providers' cannot. At first they can.
  static void SetClones(bool possible);
  /// The text of the stream that ADO's recordset was opened on.
  static std::string Persisted(IDispatch* recordset);
  /// Whether ADO's recordset is attached to a connection.
  static bool IsAttached(IDispatch* recordset);

 private:
  template <typename Object>
  void Register(const GUID& class_id);

  std::vector<DWORD> registrations_;
};

}  // namespace tessarlorn
