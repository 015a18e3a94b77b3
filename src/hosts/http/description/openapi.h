// The description of everything that the door answers, as OpenAPI 3.1.
#pragma once

#include <string>

namespace tessarlorn::http {

/// The document as JSON, made from the table of operations.
std::string OpenApiText();

}  // namespace tessarlorn::http
