// Writes the description of the operations, which the page is built with: describe FILE.
#include <fstream>
#include <iostream>

#include "hosts/http/description/openapi.h"

int main(int argc, char** argv) {
  std::ofstream file(argc == 2 ? argv[1] : "");
  file << tessarlorn::http::OpenApiText();
  if (file.flush()) return 0;
  std::cerr << "describe: cannot write " << (argc == 2 ? argv[1] : "a file without a name") << '\n';
  return 1;
}
