// Writes the text of the type library to a file.
#include <exception>
#include <fstream>
#include <iostream>

#include "objects/type_library_text.h"

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: tessarlorn_idl FILE\n";
    return 2;
  }
  try {
    std::ofstream out(arguments[1], std::ios::binary);
    out << tessarlorn::TypeLibraryText() << std::flush;
    if (out) return 0;
    std::cerr << "cannot write " << arguments[1] << '\n';
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
  }
  return 1;
}
