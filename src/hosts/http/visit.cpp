#include "hosts/http/visit.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <random>

#include "hosts/calls/json_text.h"
#include "hosts/calls/save_point.h"
#include "hosts/calls/wrong_call.h"
#include "platform/handled_error.h"
#include "platform/text/text.h"
#include "workbench/question.h"

namespace tessarlorn::http {
namespace {

std::string NewId() {
  thread_local std::mt19937_64 random{std::random_device{}()};
  const std::uint64_t number = random();
  return LowerCase(HexText(&number, sizeof number));
}

/// The client's own id when it is short and plain.
std::string IdOf(const Request& request) {
  constexpr std::size_t kLongest = 64;
  const std::string_view given = request.Header("X-Request-Id");
  const bool plain = std::all_of(given.begin(), given.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_' ||
           c == '.';
  });
  return given.empty() || given.size() > kLongest || !plain ? NewId() : std::string(given);
}

/// The trace of a header traceparent (W3C Trace Context), "" when it has none.
std::string TraceOf(const Request& request) {
  constexpr std::size_t kSize = 55;
  constexpr std::size_t kTraceSize = 32;
  const std::string_view given = request.Header("traceparent");
  if (given.size() != kSize || given[2] != '-' || given[35] != '-' || given[52] != '-') return "";
  const std::string_view trace = given.substr(3, kTraceSize);
  return BytesOfHex(trace) ? std::string(trace) : "";
}

/// The time now as `2026-11-22T13:45:01.123Z`.
std::string TimeNow() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  std::tm parts{};
  gmtime_r(&now.tv_sec, &parts);
  std::array<char, 32> text{};
  const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
  const std::string milliseconds = std::to_string(1000 + now.tv_nsec / 1'000'000).substr(1);
  return std::string(text.data(), size) + "." + milliseconds + "Z";
}

}  // namespace

Visit::Visit(std::unique_ptr<Exchange> exchange, const VisitLog& log)
    : exchange_(std::move(exchange)),
      log_(log),
      has_target_(ReadTarget(request().target, target_)),
      id_(IdOf(request())),
      trace_(TraceOf(request())) {}

Visit::~Visit() {
  const std::chrono::nanoseconds time = Clock::now() - begun_;
  log_.metrics->Count(operation_, exchange_->status(), time, database_);
  if (!log_.line) return;
  const auto microseconds = [](std::chrono::nanoseconds span) {
    return std::to_string(std::chrono::duration_cast<std::chrono::microseconds>(span).count());
  };
  std::string line = "{\"time\":\"" + TimeNow() + "\",\"id\":\"" + id_ + "\"";
  if (!trace_.empty()) line += ",\"trace\":\"" + trace_ + "\"";
  line += ",\"peer\":";
  AppendJsonText(line, request().peer);
  line += ",\"user\":";
  AppendJsonText(line, user_);
  line += ",\"method\":";
  AppendJsonText(line, request().method);
  line += ",\"operation\":";
  AppendJsonText(line, operation_);
  line += ",\"status\":" + std::to_string(exchange_->status()) + ",\"us\":" + microseconds(time) +
          ",\"database_us\":" + microseconds(database_) + ",\"bytes\":" + std::to_string(exchange_->size()) + "}";
  log_.line(line);
}

Response Visit::Head(Headers headers) const {
  headers.emplace_back("X-Request-Id", id_);
  return {.status = 200, .headers = std::move(headers), .common_headers = SafetyHeaders(request().secure)};
}

void Visit::Answer(Response response) {
  Response whole = Head(std::move(response.headers));
  whole.status = response.status;
  whole.body = std::move(response.body);
  whole.packed = response.packed;
  exchange_->Answer(std::move(whole));
}

void Visit::Fail(const Problem& problem) {
  if (exchange_->begun()) {
    exchange_->Break();
  } else {
    Answer(ProblemResponse(problem, id_));
  }
}

void Visit::FailByException() { Fail(ProblemOfException(std::current_exception())); }

Response RefusedVisit(const Problem& problem, const VisitLog& log) {
  const std::string id = NewId();
  log.metrics->Count("-", problem.status, {}, {});
  if (log.line) {
    std::string line = "{\"time\":\"" + TimeNow() + "\",\"id\":\"" + id +
                       "\",\"operation\":\"-\",\"status\":" + std::to_string(problem.status) + ",\"why\":";
    AppendJsonText(line, problem.detail);
    log.line(line + "}");
  }
  Response response = ProblemResponse(problem, id);
  response.headers.emplace_back("X-Request-Id", id);
  response.common_headers = SafetyHeaders(false);
  return response;
}

Problem ProblemOfException(const std::exception_ptr& exception) {
  try {
    std::rethrow_exception(exception);
  } catch (const Refusal& refusal) {
    return refusal.problem();
  } catch (const WrongCall& wrong) {
    return {.status = 400, .detail = wrong.what(), .key = wrong.name()};
  } catch (const workbench::WrongValue& wrong) {
    return {.status = 422, .detail = wrong.what(), .key = wrong.key()};
  } catch (const TransactionLost& lost) {
    return ProblemOf(lost.cause());
  } catch (const ClientGone&) {
    return {.status = 500, .detail = "the client is gone"};
  } catch (...) {
    return ProblemOf(HandledError());
  }
}

}  // namespace tessarlorn::http
