// A certificate for servers of the tests.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "support/shell.h"
#include "support/temporary_folder.h"

namespace tessarlorn::tds {

/// The words that give the server a certificate, one for the whole run of the tests.
inline std::vector<std::string> CertificateOptions() {
  static const TemporaryFolder folder;
  const std::string key = folder.file("key");
  const std::string certificate = folder.file("certificate");
  static const Outcome made =
      RunLine("openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost -keyout '" + key + "' -out '" +
              certificate + "' 2>&1");
  if (made.status != 0) throw std::runtime_error(made.text);
  return {"--certificate", certificate, "--key", key};
}

}  // namespace tessarlorn::tds
