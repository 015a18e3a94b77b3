// Lists the orders of an embedded database that wait for picking: the component as a C++ library.
#include <iostream>

#include "tessarlorn/clsGetData.h"
#include "tessarlorn/embedded_driver.h"
#include "tessarlorn/error.h"
#include "tessarlorn/siblings.h"

int main(int argc, char** argv) try {
  tessarlorn::Host host;
  tessarlorn::AddEmbeddedDriver(host);
  tessarlorn::AddDefaultSiblings(host);
  const tessarlorn::Dictionary filter{{"FOrderStatus", 2}, {"WebOrderMaxDisplayCount", 5}};
  const tessarlorn::RecordsetPtr orders = tessarlorn::clsGetData(host).GetListData(argc > 1 ? argv[1] : "", &filter);
  for (; orders != nullptr && !orders->eof(); orders->MoveNext()) std::cout << orders->Get("FOrderID").ToText() << '\n';
} catch (const tessarlorn::Error& error) {
  std::cerr << error.source() << ": " << error.description() << '\n';
  return 1;
}
