#include "hosts/http/documents.h"

namespace tessarlorn::http {

const Document* FindDocument(std::string_view /*path*/) { return nullptr; }

}  // namespace tessarlorn::http
