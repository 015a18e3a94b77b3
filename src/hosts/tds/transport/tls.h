// Transport Layer Security over bytes that others carry.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tessarlorn::tds {

/// A certificate with its key; connections are made from it. May be used by several threads at once.
class TlsContext {
 public:
  /// Reads the files, both PEM; the certificate's may hold its chain. Raises Error 5 naming the file at fault.
  TlsContext(const std::string& certificate_file, const std::string& key_file);
  TlsContext(const TlsContext&) = delete;
  TlsContext& operator=(const TlsContext&) = delete;
  ~TlsContext();

 private:
  friend class TlsStream;
  struct State;
  std::unique_ptr<State> state_;
};

/// The server's end of one connection. One thread at a time. Raises ProtocolError when the other end breaks the rules.
class TlsStream {
 public:
  explicit TlsStream(const TlsContext& context);
  TlsStream(const TlsStream&) = delete;
  TlsStream& operator=(const TlsStream&) = delete;
  ~TlsStream();

  /// Takes what came and goes on with the handshake; true when it is done.
  bool Handshake(std::string_view bytes);
  /// Takes what came and answers what it says.
  std::string Decrypt(std::string_view bytes);
  void Encrypt(std::string_view plain);
  /// What is to be sent, taken out.
  std::string TakeOutput();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tessarlorn::tds
