#include "hosts/tds/transport/tls.h"

#include <array>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/ssl.h>

#include "hosts/tds/transport/protocol.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

std::string LastReason() {
  const unsigned long code = ERR_peek_last_error();
  ERR_clear_error();
  const char* const reason = ERR_reason_error_string(code);
  return reason == nullptr ? "unknown reason" : reason;
}

struct FreeSsl {
  void operator()(SSL* ssl) const { SSL_free(ssl); }
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};

}  // namespace

struct TlsContext::State {
  std::unique_ptr<SSL_CTX, FreeSsl> context{SSL_CTX_new(TLS_server_method())};
};

struct TlsStream::State {
  std::unique_ptr<SSL, FreeSsl> ssl;
  BIO* input = nullptr;   // ssl's
  BIO* output = nullptr;  // ssl's

  void Feed(std::string_view bytes) const {
    if (!bytes.empty() && BIO_write(input, bytes.data(), static_cast<int>(bytes.size())) <= 0) {
      throw ProtocolError("TLS takes no more bytes");
    }
  }
  /// True when the call has to be repeated with more bytes.
  [[nodiscard]] bool WantsMore(int result) const {
    const int error = SSL_get_error(ssl.get(), result);
    if (error == SSL_ERROR_WANT_READ) return true;
    if (error == SSL_ERROR_ZERO_RETURN) return false;
    throw ProtocolError("TLS: " + LastReason());
  }
};

TlsContext::TlsContext(const std::string& certificate_file, const std::string& key_file)
    : state_(std::make_unique<State>()) {
  SSL_CTX* const context = state_->context.get();
  if (context == nullptr) Raise(error_number::kInternalError, "TLS cannot be started: " + LastReason());
  // The handshake stands inside pre-login packets; with 1.3 it would not be over when the client's last packet comes.
  SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
  SSL_CTX_set_max_proto_version(context, TLS1_2_VERSION);
  SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
  SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION);
  if (SSL_CTX_use_certificate_chain_file(context, certificate_file.c_str()) != 1) {
    Raise(error_number::kInvalidArgument, "The certificate " + certificate_file + " cannot be used: " + LastReason());
  }
  if (SSL_CTX_use_PrivateKey_file(context, key_file.c_str(), SSL_FILETYPE_PEM) != 1 ||
      SSL_CTX_check_private_key(context) != 1) {
    Raise(error_number::kInvalidArgument, "The key " + key_file + " cannot be used: " + LastReason());
  }
}

TlsContext::~TlsContext() = default;

TlsStream::TlsStream(const TlsContext& context) : state_(std::make_unique<State>()) {
  state_->ssl.reset(SSL_new(context.state_->context.get()));
  state_->input = BIO_new(BIO_s_mem());
  state_->output = BIO_new(BIO_s_mem());
  if (state_->ssl == nullptr || state_->input == nullptr || state_->output == nullptr) {
    throw ProtocolError("TLS cannot be started: " + LastReason());
  }
  SSL_set_bio(state_->ssl.get(), state_->input, state_->output);
  SSL_set_accept_state(state_->ssl.get());
}

TlsStream::~TlsStream() = default;

bool TlsStream::Handshake(std::string_view bytes) {
  state_->Feed(bytes);
  const int result = SSL_do_handshake(state_->ssl.get());
  if (result == 1) return true;
  if (!state_->WantsMore(result)) throw ProtocolError("TLS was ended by the client");
  return false;
}

std::string TlsStream::Decrypt(std::string_view bytes) {
  state_->Feed(bytes);
  std::string plain;
  std::array<char, 16384> buffer;
  for (;;) {
    const int size = SSL_read(state_->ssl.get(), buffer.data(), static_cast<int>(buffer.size()));
    if (size <= 0) {
      if (!state_->WantsMore(size) && plain.empty()) throw ProtocolError("TLS was ended by the client");
      return plain;
    }
    plain.append(buffer.data(), static_cast<std::size_t>(size));
  }
}

void TlsStream::Encrypt(std::string_view plain) {
  if (plain.empty()) return;
  const int result = SSL_write(state_->ssl.get(), plain.data(), static_cast<int>(plain.size()));
  if (result <= 0) throw ProtocolError("TLS: " + LastReason());
}

std::string TlsStream::TakeOutput() {
  std::string bytes(BIO_ctrl_pending(state_->output), '\0');
  if (!bytes.empty()) BIO_read(state_->output, bytes.data(), static_cast<int>(bytes.size()));
  return bytes;
}

}  // namespace tessarlorn::tds
