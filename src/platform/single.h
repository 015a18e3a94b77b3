// Numbers of single precision in double precision.
#pragma once

namespace tessarlorn {

/// The double that has the shortest decimal of the number: 1.1 stays 1.1.
double Widened(float value);

}  // namespace tessarlorn
