// A request on its way through the door: who asked, what was answered, and how long it took.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "hosts/http/answers/problem.h"
#include "hosts/http/metrics.h"
#include "hosts/http/transport/exchange.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// Who hears of visits that have ended.
struct VisitLog {
  Metrics* metrics = nullptr;
  /// Takes one line of JSON a request, without values of calls; may be empty. Called by several threads.
  std::function<void(const std::string&)> line;
};

/// One thread at a time. It is logged when it ends.
class Visit final : public BatchWatcher {
 public:
  using Clock = std::chrono::steady_clock;

  Visit(std::unique_ptr<Exchange> exchange, const VisitLog& log);
  ~Visit() override;

  [[nodiscard]] Exchange& exchange() noexcept { return *exchange_; }
  [[nodiscard]] const Request& request() const noexcept { return exchange_->request(); }
  [[nodiscard]] const Target& target() const noexcept { return target_; }
  /// False when the request's target is malformed.
  [[nodiscard]] bool has_target() const noexcept { return has_target_; }
  [[nodiscard]] const std::string& id() const noexcept { return id_; }
  [[nodiscard]] Clock::time_point begun() const noexcept { return begun_; }

  // For the log.
  void set_operation(std::string name) { operation_ = std::move(name); }
  void set_user(std::string name) { user_ = std::move(name); }

  /// The head of a good answer, with these headers and those that every answer has.
  [[nodiscard]] Response Head(Headers headers) const;
  /// Answers, with the headers that every answer has.
  void Answer(Response response);
  /// Answers the problem; when the answer has begun already the connection ends.
  void Fail(const Problem& problem);
  /// The same for the exception that is being handled.
  void FailByException();

  // Of BatchWatcher.
  void Ran(std::chrono::nanoseconds time) override { database_ += time; }

 private:
  std::unique_ptr<Exchange> exchange_;
  const VisitLog& log_;
  Clock::time_point begun_ = Clock::now();
  Target target_;
  bool has_target_;
  std::string id_;
  std::string trace_;
  std::string operation_ = "-";
  std::string user_;
  std::chrono::nanoseconds database_{0};
};

/// Logs and counts a request that could not be read, and answers what it gets.
Response RefusedVisit(const Problem& problem, const VisitLog& log);

/// The problem that an exception stands for: of a Refusal, an Error, a WrongCall, a lost transaction, and 500 for
/// others.
Problem ProblemOfException(const std::exception_ptr& exception);

}  // namespace tessarlorn::http
