// What the session's cursors tell of themselves.
#pragma once

#include <cstdint>

namespace tessarlorn::tsql {

struct CursorState {
  int fetch_status = 0;   // @@FETCH_STATUS: 0 a row was fetched, -1 there was none
  std::int64_t rows = 0;  // @@CURSOR_ROWS: of the cursor that was opened last
};

}  // namespace tessarlorn::tsql
