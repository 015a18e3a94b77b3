#include "hosts/cli/command.h"

int main(int argc, char** argv) { return static_cast<int>(tessarlorn::cli::RunCommand(argc, argv)); }
