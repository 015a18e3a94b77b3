#include "hosts/http/events.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "hosts/calls/json_text.h"
#include "hosts/calls/save_point.h"
#include "hosts/http/safety/order_access.h"
#include "hosts/http/transport/signals.h"
#include "platform/text/text.h"
#include "tessarlorn/sql_command.h"

namespace tessarlorn::http {
namespace {

constexpr std::chrono::milliseconds kLook{500};
/// Behind so many looks without an event a comment shows who is still there.
constexpr int kQuietLooks = 30;
constexpr std::chrono::seconds kOldGap{10};
/// A stream ends then, and its client comes again: it may have lost its access.
constexpr std::chrono::minutes kLongest{5};
/// For what was missed, which a thread of few waits for.
constexpr std::chrono::seconds kLongestCatchUp{10};
/// So often it is asked whether a listener is still known.
constexpr int kLooksOfTrust = 4;
/// Rows of each log that one look takes.
constexpr std::size_t kMostRows = 1000;

RecordsetPtr ReadBehind(Connection& connection, std::string_view query, std::int64_t after) {
  std::array parameters = {SqlParameter{.name = "@after", .type = "bigint", .value = Variant(after)}};
  return connection.Query({query, parameters});
}

/// A bigint comes as a number of 32 bits or as an exact one.
std::int64_t Key(const Recordset& rows, std::string_view field = "FID") {
  return WholeNumber<std::int64_t>(rows.Get(field).ToText()).value_or(0);
}

void AppendValue(std::string& json, std::string_view name, const Recordset& rows, std::string_view field) {
  json.append(json.back() == '{' ? "\"" : ",\"").append(name).append("\":");
  AppendJson(json, rows.Get(field));
}

/// @param id of the event that the stream can be taken up from
std::string EventText(std::string_view type, const std::string& id, const std::string& data) {
  return "id: " + id + "\nevent: " + std::string(type) + "\ndata: " + data + "\n\n";
}

std::vector<std::int32_t> OrdersOfText(std::string_view text) {
  std::vector<std::int32_t> orders;
  for (const std::string_view part : Split(text, ',')) {
    if (const std::optional<std::int32_t> order = WholeNumber<std::int32_t>(part)) orders.push_back(*order);
  }
  return orders;
}

}  // namespace

bool LogCursor::Take(std::int64_t key) {
  if (key <= low_ || !seen_.insert(key).second) return false;
  return true;
}

void LogCursor::Settle(Clock::time_point now) {
  while (seen_.erase(low_ + 1) > 0) {
    ++low_;
    gap_since_.reset();
  }
  if (seen_.empty()) return;
  if (!gap_since_) gap_since_ = now;
  if (now - *gap_since_ < kOldGap) return;
  low_ = *seen_.begin() - 1;
  gap_since_.reset();
  Settle(now);
}

void LogCursor::GiveUpGaps() {
  if (!seen_.empty()) low_ = *seen_.rbegin();
  seen_.clear();
  gap_since_.reset();
}

Events::Events(Host& host, std::string session, Known known)
    : host_(host), session_(std::move(session)), known_(std::move(known)), thread_([this] { Run(); }) {}

Events::~Events() {
  Stop();
  thread_.join();
}

void Events::Stop() {
  const std::scoped_lock lock(mutex_);
  stopping_ = true;
  wake_.notify_all();
}

std::size_t Events::listeners() const {
  const std::scoped_lock lock(mutex_);
  return listeners_.size();
}

Events::Cursors Events::Now(Connection& connection) {
  const RecordsetPtr last = connection.Query(
      "SELECT ISNULL((SELECT MAX(FID) FROM IC_TradeLog), 0) AS LastLog, ISNULL((SELECT MAX(FID) FROM DoorCall), 0) AS "
      "LastCall");
  return {.log = LogCursor(Key(*last, "LastLog")), .calls = LogCursor(Key(*last, "LastCall"))};
}

std::vector<Event> Events::ReadNew(Connection& connection, Cursors& cursors) {
  std::vector<Event> events;
  const auto now = LogCursor::Clock::now();
  const auto id = [&cursors] { return std::to_string(cursors.log.low()) + "-" + std::to_string(cursors.calls.low()); };
  const RecordsetPtr log = ReadBehind(connection,
                                      "SELECT TOP (1000) FID, FOrderFID, FOPCode, FOPUserID, FOPTime FROM IC_TradeLog "
                                      "WHERE FID > @after ORDER BY FID",
                                      cursors.log.low());
  for (; !log->eof(); log->MoveNext()) {
    const std::int64_t key = Key(*log);
    if (!cursors.log.Take(key)) continue;
    cursors.log.Settle(now);
    std::string data = "{";
    AppendValue(data, "key", *log, "FID");
    AppendValue(data, "order", *log, "FOrderFID");
    AppendValue(data, "code", *log, "FOPCode");
    AppendValue(data, "user", *log, "FOPUserID");
    AppendValue(data, "time", *log, "FOPTime");
    Event event{.text = EventText("log", id(), data + "}"), .key = key, .orders = {}};
    if (!log->IsNull(1)) event.orders.push_back(log->Get("FOrderFID").ToInt32());
    events.push_back(std::move(event));
  }
  cursors.log.Settle(now);
  if (log->RecordCount() >= kMostRows) cursors.log.GiveUpGaps();
  const RecordsetPtr calls = ReadBehind(connection,
                                        "SELECT TOP (1000) FID, FOrders, FOperation, FUserID, FCaller, FTime FROM "
                                        "DoorCall WHERE FID > @after ORDER BY FID",
                                        cursors.calls.low());
  for (; !calls->eof(); calls->MoveNext()) {
    const std::int64_t key = Key(*calls);
    if (!cursors.calls.Take(key)) continue;
    cursors.calls.Settle(now);
    std::string data = "{";
    AppendValue(data, "key", *calls, "FID");
    const std::vector<std::int32_t> orders = OrdersOfText(calls->GetText(1));
    data += ",\"orders\":[";
    for (const std::int32_t order : orders) data += (data.back() == '[' ? "" : ",") + std::to_string(order);
    data += ']';
    AppendValue(data, "operation", *calls, "FOperation");
    AppendValue(data, "user", *calls, "FUserID");
    AppendValue(data, "caller", *calls, "FCaller");
    AppendValue(data, "time", *calls, "FTime");
    events.push_back({.text = EventText("call", id(), data + "}"), .of_call = true, .key = key, .orders = orders});
  }
  cursors.calls.Settle(now);
  if (calls->RecordCount() >= kMostRows) cursors.calls.GiveUpGaps();
  return events;
}

std::string Events::TextFor(Connection& connection, const Caller& caller, const std::vector<Event>& events) {
  std::vector<std::int32_t> named;
  for (const Event& event : events) named.insert(named.end(), event.orders.begin(), event.orders.end());
  std::set<std::int32_t> hidden;
  if (!caller.every_shop) hidden = HiddenOrders(named, caller.user, connection);
  std::string text;
  for (const Event& event : events) {
    // What names no order may be about any.
    const bool seen = std::none_of(event.orders.begin(), event.orders.end(),
                                   [&hidden](std::int32_t order) { return hidden.contains(order); });
    if (caller.every_shop || (seen && !event.orders.empty())) text += event.text;
  }
  return text;
}

void Events::Listen(std::unique_ptr<Visit> visit, Caller caller) {
  TransactionConnection session(host_, session_);
  Response head = visit->Head({{"Content-Type", "text/event-stream"}, {"Cache-Control", "no-store"}});
  Cursors from = Now(session.get());
  const std::vector<std::string_view> parts = Split(visit->request().Header("Last-Event-ID"), '-');
  const auto last_log = WholeNumber<std::int64_t>(parts[0]);
  const auto last_call = parts.size() == 2 ? WholeNumber<std::int64_t>(parts[1]) : std::nullopt;
  if (last_log && last_call) from = {.log = LogCursor(*last_log), .calls = LogCursor(*last_call)};
  Exchange& exchange = visit->exchange();
  Listener listener{.visit = std::move(visit), .caller = std::move(caller)};
  exchange.set_deadline(Visit::Clock::now() + kLongestCatchUp);
  exchange.Begin(std::move(head), false);
  // Whoever was away a while waits for each part here; what is live must not wait for him.
  exchange.Write("retry: 1000\n\n");
  exchange.Flush();
  for (std::size_t read = kMostRows; read >= kMostRows;) {
    const std::vector<Event> missed = ReadNew(session.get(), from);
    read = missed.size();
    exchange.Write(TextFor(session.get(), listener.caller, missed));
    exchange.Flush();
  }
  const std::scoped_lock lock(mutex_);
  // Nothing is told to the others meanwhile.
  const std::string rest = TextFor(session.get(), listener.caller, ReadNew(session.get(), from));
  if (!rest.empty() && !exchange.Offer(rest)) throw ClientGone();
  listener.told = from;
  if (!cursors_ || listeners_.empty()) cursors_ = std::move(from);
  listeners_.push_back(std::move(listener));
  wake_.notify_all();
}

void Events::Tell(Connection& connection, Listener& listener, const std::vector<Event>& events) {
  std::vector<Event> news;
  for (const Event& event : events) {
    if ((event.of_call ? listener.told.calls : listener.told.log).Take(event.key)) news.push_back(event);
  }
  listener.told.log.Settle(LogCursor::Clock::now());
  listener.told.calls.Settle(LogCursor::Clock::now());
  const std::string text = news.empty() ? "" : TextFor(connection, listener.caller, news);
  if (!text.empty() && !listener.visit->exchange().Offer(text)) throw ClientGone();
}

void Events::Run() {
  BlockSignals();
  int quiet = 0;
  std::unique_lock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this] { return stopping_ || !listeners_.empty(); });
    if (wake_.wait_for(lock, kLook, [this] { return stopping_; })) break;
    std::vector<Event> events;
    try {
      TransactionConnection session(host_, session_);
      events = ReadNew(session.get(), *cursors_);
      quiet = events.empty() ? quiet + 1 : 0;
      for (auto listener = listeners_.begin(); listener != listeners_.end();) {
        const auto next = std::next(listener);
        try {
          Tell(session.get(), *listener, events);
          const bool asks = ++listener->looks % kLooksOfTrust == 0;
          if (Visit::Clock::now() - listener->visit->begun() > kLongest ||
              (asks && !known_(listener->visit->request()))) {
            listener->visit->exchange().End();
            throw ClientGone();
          }
          if (quiet >= kQuietLooks && !listener->visit->exchange().Offer(": still here\n\n")) throw ClientGone();
        } catch (const ClientGone&) {
          listeners_.erase(listener);
        }
        listener = next;
      }
      if (quiet >= kQuietLooks) quiet = 0;
    } catch (const Error&) {
      // The database cannot be asked: the streams end, and their clients come again with what they saw last.
      listeners_.clear();
    }
  }
  for (Listener& listener : listeners_) {
    try {
      listener.visit->exchange().End();
    } catch (const ClientGone&) {
      // It has ended already.
    }
  }
  listeners_.clear();
}

}  // namespace tessarlorn::http
