#include "hosts/http/transport/client.h"

#include <array>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <ctime>
#include <deque>
#include <limits>
#include <optional>
#include <utility>

#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
using Tcp = asio::ip::tcp;
using PlainStream = Tcp::socket;
using TlsStream = asio::ssl::stream<Tcp::socket>;
using Failure = beast::error_code;

constexpr std::chrono::seconds kLinger{2};
/// What is read at once beside the headers. Heads of chunks and what comes behind the last one fit in, too.
constexpr std::size_t kReadAhead = 65536;

/// For the header Date, made anew once a second on each thread.
const std::string& DateNow() {
  thread_local std::time_t made = 0;
  thread_local std::string text;
  const std::time_t now = std::time(nullptr);
  if (now != made) {
    std::tm parts{};
    gmtime_r(&now, &parts);
    std::array<char, 40> buffer{};
    text.assign(buffer.data(), std::strftime(buffer.data(), buffer.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts));
    made = now;
  }
  return text;
}

/// What to say of a request that cannot be read, 0 when there was none.
int StatusOf(const Failure& failure) {
  namespace http = beast::http;
  if (failure == http::error::header_limit || failure == http::error::buffer_overflow) return 431;
  if (failure == http::error::body_limit) return 413;
  if (failure == http::error::end_of_stream || failure == http::error::partial_message) return 0;
  return failure.category() == make_error_code(http::error::bad_method).category() ? 400 : 0;
}

std::string WhyOf(int status, const Failure& failure, const TransportLimits& limits) {
  if (status == 431) return "the headers have more than " + std::to_string(limits.header) + " bytes";
  if (status == 413) return "the body has more than " + std::to_string(limits.body) + " bytes";
  return "the request cannot be read: " + failure.message();
}

void BelieveProxy(Request& request) {
  // The proxy adds the address it sees behind those that it was told.
  for (const auto& [name, value] : request.headers) {
    if (!EqualsIgnoreCase(name, "X-Forwarded-For")) continue;
    const std::string_view last = Trim(std::string_view(value).substr(value.rfind(',') + 1));
    if (!last.empty()) request.peer = last;
  }
  if (EqualsIgnoreCase(request.Header("X-Forwarded-Proto"), "https")) request.secure = true;
}

/// Its functions run on the group's thread, but for those of AnswerWay.
template <typename Stream>
class StreamClient final : public Client, public AnswerWay, public std::enable_shared_from_this<StreamClient<Stream>> {
 public:
  template <typename... Arguments>
  StreamClient(ClientGroup& group, Arguments&&... arguments)
      : group_(group),
        stream_(std::forward<Arguments>(arguments)...),
        buffer_(group.options->limits.header + kReadAhead) {
    ++*group_.connections;
    Failure failure;
    const Tcp::endpoint peer = Socket().remote_endpoint(failure);
    if (!failure) peer_ = peer.address().to_string();
    Socket().set_option(Tcp::no_delay(true), failure);
  }
  ~StreamClient() override { --*group_.connections; }

  void Start() {
    if constexpr (std::is_same_v<Stream, TlsStream>) {
      Expect(Phase::kHandshake, limits().header_time);
      stream_.async_handshake(asio::ssl::stream_base::server, [self = Self()](Failure failure) {
        if (failure) {
          self->Close();
        } else {
          self->Begin();
        }
      });
    } else {
      Begin();
    }
  }

  void Tick(Clock::time_point now) override {
    if (now < deadline_) return;
    if (phase_ != Phase::kHead && phase_ != Phase::kBody) {
      Close();
      return;
    }
    // The read ends, and its handler answers.
    deadline_ = Clock::time_point::max();
    too_slow_ = true;
    Failure ignored;
    Socket().cancel(ignored);
  }

  void Drain() override {
    last_ = true;
    if (phase_ == Phase::kIdle || phase_ == Phase::kHandshake) Close();
  }

  void Close() override {
    if (std::exchange(phase_, Phase::kClosed) == Phase::kClosed) return;
    Failure ignored;
    Socket().close(ignored);
    DropQueue();
    group_.clients.erase(Self());
  }

  // Of AnswerWay, from any thread.
  void Send(Response response) override {
    Enqueue({.kind = Item::kWhole, .response = std::move(response), .part = {}, .sent = {}});
  }
  void SendHead(Response head) override {
    Enqueue({.kind = Item::kHead, .response = std::move(head), .part = {}, .sent = {}});
  }
  void SendPart(std::string part, std::function<void(bool)> sent) override {
    Enqueue({.kind = Item::kPart, .response = {}, .part = std::move(part), .sent = std::move(sent)});
  }
  void SendEnd() override { Enqueue({.kind = Item::kEnd, .response = {}, .part = {}, .sent = {}}); }
  void Break() override {
    asio::dispatch(stream_.get_executor(), [self = Self()] { self->Close(); });
  }

 private:
  using Parser = beast::http::request_parser<beast::http::string_body>;
  enum class Phase : std::uint8_t { kHandshake, kIdle, kHead, kBody, kAnswering, kLingering, kClosed };
  struct Item {
    enum Kind : std::uint8_t { kWhole, kHead, kPart, kEnd } kind;
    Response response;
    std::string part;
    std::function<void(bool)> sent;
  };

  [[nodiscard]] const TransportLimits& limits() const { return group_.options->limits; }
  auto Self() { return this->shared_from_this(); }
  Tcp::socket& Socket() {
    if constexpr (std::is_same_v<Stream, TlsStream>) {
      return stream_.next_layer();
    } else {
      return stream_;
    }
  }
  void Expect(Phase phase, std::chrono::milliseconds time) {
    phase_ = phase;
    too_slow_ = false;
    deadline_ = Clock::now() + time;
  }

  /// Waits for the first byte of a request.
  void Begin() {
    parser_.emplace();
    parser_->header_limit(static_cast<std::uint32_t>(limits().header));
    parser_->body_limit(limits().body);
    if (buffer_.size() > 0) {
      ReadHead();
      return;
    }
    Expect(Phase::kIdle, limits().idle);
    constexpr std::size_t kRead = 4096;
    stream_.async_read_some(buffer_.prepare(kRead), [self = Self()](Failure failure, std::size_t size) {
      if (failure) {
        self->Close();
        return;
      }
      self->buffer_.commit(size);
      self->ReadHead();
    });
  }

  void ReadHead() {
    Expect(Phase::kHead, limits().header_time);
    beast::http::async_read_header(stream_, buffer_, *parser_, [self = Self()](Failure failure, std::size_t) {
      if (self->Failed(failure)) return;
      self->ReadBody();
    });
  }

  /// Takes the headers before the body: what stands behind its last chunk is none of them.
  void ReadBody() {
    const auto& head = parser_->get();
    version_ = head.version();
    head_only_ = head.method() == beast::http::verb::head;
    request_ = {};
    request_.method = std::string(head.method_string());
    request_.target = std::string(head.target());
    for (const auto& field : head) {
      request_.headers.emplace_back(std::string(field.name_string()), std::string(field.value()));
    }
    if (const char* const fault = FaultOfHeaders(request_.headers, version_ < 11)) {
      Refuse(400, std::string("the request cannot be read: ") + fault);
      return;
    }
    if (parser_->is_done()) {
      Handle();
      return;
    }
    if (request_.Header("Authorization").empty() && request_.Header("Cookie").empty()) {
      parser_->body_limit(limits().nobodys_body);
      if (parser_->content_length_remaining().value_or(0) > limits().nobodys_body) {
        Refuse(413, "without a token or cookie a body has " + std::to_string(limits().nobodys_body) + " bytes at most");
        return;
      }
    }
    Expect(Phase::kBody, limits().body_time);
    if (version_ < 11 || !EqualsIgnoreCase(request_.Header("Expect"), "100-continue")) {
      ReadRest();
      return;
    }
    static constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";
    asio::async_write(stream_, asio::buffer(kContinue), [self = Self()](Failure failure, std::size_t) {
      if (failure) {
        self->Close();
      } else {
        self->ReadRest();
      }
    });
  }

  void ReadRest() {
    beast::http::async_read(stream_, buffer_, *parser_, [self = Self()](Failure failure, std::size_t) {
      if (self->Failed(failure)) return;
      self->Handle();
    });
  }

  /// Whether the request could not be read; then it is answered so, or the connection ends.
  bool Failed(const Failure& failure) {
    if (!failure) return false;
    const bool slow = std::exchange(too_slow_, false);
    const int status = slow ? 408 : StatusOf(failure);
    if (status == 0 || phase_ == Phase::kClosed) {
      Close();
      return true;
    }
    version_ = 11;
    head_only_ = false;
    Refuse(status, slow ? "the request came too slowly" : WhyOf(status, failure, limits()));
    return true;
  }

  /// The connection ends behind the answer: nobody knows where the next request would begin.
  void Refuse(int status, const std::string& why) {
    last_ = true;
    phase_ = Phase::kAnswering;
    Send(group_.options->refusal(status, why));
  }

  void Handle() {
    phase_ = Phase::kAnswering;
    deadline_ = Clock::time_point::max();
    last_ = last_ || group_.draining || !parser_->get().keep_alive();
    request_.body = std::move(parser_->get().body());
    request_.peer = peer_;
    request_.secure = std::is_same_v<Stream, TlsStream>;
    if (group_.options->behind_proxy) BelieveProxy(request_);
    (*group_.handler)(std::make_unique<Exchange>(std::move(request_), Self()));
  }

  void Enqueue(Item item) {
    asio::dispatch(stream_.get_executor(), [self = Self(), item = std::move(item)]() mutable {
      if (self->phase_ == Phase::kClosed) {
        if (item.sent) item.sent(false);
        return;
      }
      self->queue_.push_back(std::move(item));
      if (self->queue_.size() == 1) self->WriteNext();
    });
  }

  void DropQueue() {
    for (Item& item : std::exchange(queue_, {})) {
      if (item.sent) item.sent(false);
    }
  }

  void WriteNext() {
    Item& item = queue_.front();
    // So long for each block that the client reads.
    constexpr std::size_t kBlock = 32768;
    deadline_ = Clock::now() + limits().send * static_cast<int>(1 + item.response.body.size() / kBlock);
    switch (item.kind) {
      case Item::kWhole:
        WriteWhole(item.response);
        break;
      case Item::kHead:
        WriteHead(item.response);
        break;
      case Item::kPart:
        WritePart(item.part);
        break;
      case Item::kEnd:
        if (!in_chunks_ || head_only_) {
          Written({}, true);
        } else {
          asio::async_write(stream_, beast::http::make_chunk_last(), Done(true));
        }
        break;
    }
  }

  /// What every write ends with. @param whole whether the answer is whole then
  auto Done(bool whole) {
    return [self = Self(), whole](Failure failure, std::size_t) { self->Written(failure, whole); };
  }

  /// The head of an answer. @param length of its body, nothing when that comes in parts or there is none
  [[nodiscard]] std::string HeadText(const Response& response, std::optional<std::size_t> length) const {
    std::string text = version_ >= 11 ? "HTTP/1.1 " : "HTTP/1.0 ";
    text.append(std::to_string(response.status)).append(" ");
    const auto reason =
        beast::http::obsolete_reason(beast::http::int_to_status(static_cast<unsigned>(response.status)));
    text.append(reason.data(), reason.size());
    text.append("\r\nDate: ").append(DateNow()).append("\r\n");
    for (const auto& [name, value] : response.headers) text.append(name).append(": ").append(value).append("\r\n");
    text += response.common_headers;
    if (length) text.append("Content-Length: ").append(std::to_string(*length)).append("\r\n");
    if (in_chunks_) text += "Transfer-Encoding: chunked\r\n";
    if (last_ && version_ >= 11) text += "Connection: close\r\n";
    if (!last_ && version_ < 11) text += "Connection: keep-alive\r\n";
    return text + "\r\n";
  }

  void WriteWhole(const Response& response) {
    in_chunks_ = false;
    // 204 and 304 have no body, and no length of one.
    const bool bodiless = response.status == 204 || response.status == 304;
    head_ = HeadText(response, bodiless ? std::nullopt : std::optional(response.body.size()));
    const std::size_t size = head_only_ || bodiless ? 0 : response.body.size();
    const std::array<asio::const_buffer, 2> buffers = {asio::buffer(head_), asio::buffer(response.body.data(), size)};
    asio::async_write(stream_, buffers, Done(true));
  }

  void WriteHead(const Response& response) {
    in_chunks_ = version_ >= 11;
    if (!in_chunks_) last_ = true;
    head_ = HeadText(response, std::nullopt);
    asio::async_write(stream_, asio::buffer(head_), Done(false));
  }

  void WritePart(const std::string& part) {
    if (head_only_) {
      Written({}, false);
    } else if (in_chunks_) {
      asio::async_write(stream_, beast::http::make_chunk(asio::buffer(part)), Done(false));
    } else {
      asio::async_write(stream_, asio::buffer(part), Done(false));
    }
  }

  void Written(const Failure& failure, bool whole) {
    if (failure || phase_ == Phase::kClosed) {
      Close();
      return;
    }
    if (queue_.front().sent) queue_.front().sent(true);
    queue_.pop_front();
    deadline_ = Clock::time_point::max();
    if (whole) {
      if (last_) {
        Linger();
      } else {
        Begin();
      }
    } else if (!queue_.empty()) {
      WriteNext();
    }
  }

  /// Nothing more is sent, and what comes is thrown away for a while: unread, it would take from the client what was
  /// sent last.
  void Linger() {
    Expect(Phase::kLingering, kLinger);
    if constexpr (std::is_same_v<Stream, TlsStream>) {
      stream_.async_shutdown([self = Self()](Failure) { self->ThrowAway(); });
    } else {
      ThrowAway();
    }
  }
  void ThrowAway() {
    if (phase_ == Phase::kClosed) return;
    Failure failure;
    Socket().shutdown(Tcp::socket::shutdown_send, failure);
    Discard();
  }
  void Discard() {
    Socket().async_read_some(asio::buffer(discarded_), [self = Self()](Failure failure, std::size_t) {
      if (failure || self->phase_ == Phase::kClosed) {
        self->Close();
      } else {
        self->Discard();
      }
    });
  }

  ClientGroup& group_;
  Stream stream_;
  std::string peer_;
  beast::flat_buffer buffer_;
  std::optional<Parser> parser_;
  /// Whose headers have been read.
  Request request_;
  /// Of the answer that is being sent.
  std::string head_;
  std::deque<Item> queue_;
  std::array<char, 4096> discarded_{};
  Phase phase_ = Phase::kIdle;
  Clock::time_point deadline_ = Clock::time_point::max();
  unsigned version_ = 11;
  bool too_slow_ = false;
  bool head_only_ = false;
  bool in_chunks_ = false;
  /// The connection ends behind the answer.
  bool last_ = false;
};

}  // namespace

void AddClient(ClientGroup& group, Tcp::socket socket) {
  const auto start = [&group](const auto& client) {
    group.clients.insert(client);
    client->Start();
  };
  if (group.tls != nullptr) {
    start(std::make_shared<StreamClient<TlsStream>>(group, std::move(socket), *group.tls));
  } else {
    start(std::make_shared<StreamClient<PlainStream>>(group, std::move(socket)));
  }
}

}  // namespace tessarlorn::http
