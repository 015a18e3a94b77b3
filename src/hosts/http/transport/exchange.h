// One request and the way of its answer, from whichever thread makes it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "hosts/http/transport/gzip.h"
#include "hosts/http/transport/message.h"

namespace tessarlorn::http {

/// Raised where an answer is written for a client that is gone, or does not read what it asked for.
class ClientGone : public std::runtime_error {
 public:
  ClientGone() : std::runtime_error("the client is gone") {}
};

/// What takes an answer to the client. Its functions hand over and return at once; any thread may call them.
class AnswerWay {
 public:
  AnswerWay() = default;
  AnswerWay(const AnswerWay&) = delete;
  AnswerWay& operator=(const AnswerWay&) = delete;
  virtual ~AnswerWay() = default;

  /// The whole answer.
  virtual void Send(Response response) = 0;
  /// The head of an answer whose body comes in parts.
  virtual void SendHead(Response head) = 0;
  /// A part of its body. `sent` is called once it is on its way, with false when the client is gone.
  virtual void SendPart(std::string part, std::function<void(bool)> sent) = 0;
  virtual void SendEnd() = 0;
  /// Ends the connection, so that the client sees that the answer is not whole.
  virtual void Break() = 0;
};

/// One thread at a time. When it goes without an answer the connection ends.
class Exchange {
 public:
  Exchange(Request request, std::shared_ptr<AnswerWay> way);
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;
  ~Exchange();

  [[nodiscard]] const Request& request() const noexcept { return request_; }
  /// Whether the answer has begun.
  [[nodiscard]] bool begun() const noexcept { return begun_; }
  /// Status of the answer, 0 before it has begun.
  [[nodiscard]] int status() const noexcept { return status_; }
  /// Bytes of the answer's body before compression.
  [[nodiscard]] std::size_t size() const noexcept { return size_; }

  /// The whole answer; compressed when the client takes that and it is worth it.
  void Answer(Response response);
  /// Parts that the client has not taken by then are not waited for.
  void set_deadline(std::chrono::steady_clock::time_point deadline) noexcept { deadline_ = deadline; }
  /// The head of an answer in parts. @param compress whether it may be compressed
  void Begin(Response head, bool compress = true);
  /// A part; waits while the client has more than 256 KB to read yet, until the deadline. Raises ClientGone.
  void Write(std::string_view part);
  /// What was written so far goes out now, also when it is little. Raises ClientGone.
  void Flush();
  /// A part for a client that may be slow: sent at once, without waiting. False when the client is gone, or has more
  /// than 256 KB to read yet.
  bool Offer(std::string_view part);
  void End();
  /// What was written is not the whole answer: the connection ends.
  void Break();

 private:
  /// What is under way, shared with the thread that sends.
  struct Flow {
    std::mutex mutex;
    std::condition_variable moved;
    std::size_t unsent = 0;
    bool gone = false;
  };
  void Hand(std::string part);

  Request request_;
  std::shared_ptr<AnswerWay> way_;
  std::shared_ptr<Flow> flow_ = std::make_shared<Flow>();
  std::chrono::steady_clock::time_point deadline_ = std::chrono::steady_clock::time_point::max();
  std::string buffer_;
  std::optional<Gzip> gzip_;
  bool begun_ = false;
  bool ended_ = false;
  int status_ = 0;
  std::size_t size_ = 0;
};

}  // namespace tessarlorn::http
