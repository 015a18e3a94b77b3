#include "hosts/http/door.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "hosts/calls/json_arguments.h"
#include "hosts/calls/save_point.h"
#include "hosts/http/answers/answer.h"
#include "hosts/http/answers/documents.h"
#include "hosts/http/answers/problem.h"
#include "hosts/http/house/members.h"
#include "hosts/http/house/resource.h"
#include "hosts/http/questions.h"
#include "hosts/http/transport/signals.h"
#include "hosts/http/writes/call_job.h"
#include "hosts/http/writes/question_job.h"
#include "platform/text/text.h"
#include "tessarlorn/collections.h"
#include "workbench/tabs.h"

namespace tessarlorn::http {
namespace {

constexpr std::string_view kApi = "/api/v1/";
constexpr std::string_view kQuestions = "/api/v1/workbench/";
constexpr unsigned kSlowThreads = 2;
constexpr std::size_t kSlowWaiting = 64;
constexpr std::size_t kMostLoginBytes = 4096;
constexpr std::chrono::hours kSweepEvery{1};

std::string HouseSession(const std::string& database) { return "Connect=" + Quoted(database, '{', '}'); }

Response CallerResponse(const Caller& caller) {
  // One name stands in both classes.
  std::set<std::string_view> operations;
  for (const Operation* const operation : Operations()) {
    if (caller.role->Allows(*operation)) operations.insert(operation->name);
  }
  const nlohmann::ordered_json json = {{"user", caller.name},         {"erpUser", caller.user},
                                       {"language", caller.language}, {"role", caller.role->name()},
                                       {"sql", caller.sql},           {"operations", operations}};
  return JsonResponse(json.dump());
}

void RequireMethods(const Visit& visit, std::initializer_list<std::string_view> methods) {
  if (std::find(methods.begin(), methods.end(), visit.request().method) != methods.end()) return;
  std::string list;
  for (const std::string_view method : methods) list.append(list.empty() ? "" : ", ").append(method);
  RefuseMethod(visit.target().path, list);
}

}  // namespace

class Door::Place {
 public:
  /// Raises Refusal 429 and 409.
  Place(Door& door, std::string caller, std::string key)
      : door_(door), caller_(std::move(caller)), key_(std::move(key)) {
    const std::scoped_lock lock(door_.mutex_);
    if (door_.running_[caller_] >= door_.options_.calls_per_caller) {
      throw http::Refusal({.status = 429,
                           .detail = "more than " + std::to_string(door_.options_.calls_per_caller) +
                                     " calls at once; wait for the answers",
                           .retry_after = 1});
    }
    if (!key_.empty() && !door_.under_way_.emplace(caller_, key_).second) {
      throw http::Refusal({.status = 409,
                           .detail = "a call with this Idempotency-Key is still under way",
                           .key = "Idempotency-Key",
                           .retry_after = 1});
    }
    ++door_.running_[caller_];
  }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() {
    const std::scoped_lock lock(door_.mutex_);
    if (--door_.running_[caller_] == 0) door_.running_.erase(caller_);
    if (!key_.empty()) door_.under_way_.erase({caller_, key_});
  }

 private:
  Door& door_;
  std::string caller_;
  std::string key_;
};

bool HasItsIndexes(Connection& connection) {
  const RecordsetPtr found =
      connection.Query("SELECT COUNT(*) FROM sys.indexes WHERE name = '" + std::string(workbench::kStateIndex) + "'");
  return found->Get(std::size_t{0}).ToInt32() > 0;
}

Door::Door(Host& host, DoorOptions options)
    : host_(host),
      options_(std::move(options)),
      session_(HouseSession(options_.database)),
      documents_(options_.page),
      visit_log_{.metrics = &metrics_, .line = options_.log},
      events_(host, session_, [this](const Request& request) { return Knows(request); }),
      writes_(host, dog_,
              {.dsn = session_,
               .threads = options_.writers,
               .shares_commits = options_.shares_commits,
               .most_waiting = options_.waiting}),
      reads_(dog_, options_.readers, options_.waiting),
      logins_(dog_, kSlowThreads, kSlowWaiting),
      streams_(dog_, kSlowThreads, kSlowWaiting) {
  {
    TransactionConnection connection(host_, session_);
    connection.get().Query("SELECT COUNT(*) AS Users FROM DoorUser");
  }
  if (!options_.replica.empty()) {
    replica_ = std::make_unique<Replica>(host_, session_, HouseSession(options_.replica), options_.longest_lag);
  }
  sweeper_ = std::thread([this] { Sweep(); });
}

Door::~Door() {
  Stop();
  {
    const std::scoped_lock lock(mutex_);
    stopping_ = true;
  }
  stop_sweeping_.notify_all();
  sweeper_.join();
}

void Door::Stop() { events_.Stop(); }

Response Door::Refused(int status, std::string_view why) {
  return RefusedVisit({.status = status, .detail = std::string(why), .retry_after = status == 503 ? 1 : 0}, visit_log_);
}

void Door::Handle(std::unique_ptr<Exchange> exchange) {
  auto visit = std::make_unique<Visit>(std::move(exchange), visit_log_);
  if (!visit->has_target()) {
    visit->Fail({.status = 400, .detail = "the request's path or query has a bad escape or is no UTF-8"});
    return;
  }
  Route(std::move(visit));
}

void Door::Route(VisitPtr visit) {
  struct Path {
    std::string_view path;
    Handler handler;
    Workers Door::*workers = &Door::reads_;
  };
  static constexpr std::array kPaths = {
      Path{"/api/v1/login", &Door::HandleLogin, &Door::logins_},
      Path{"/api/v1/logout", &Door::HandleLogout},
      Path{"/api/v1/me", &Door::HandleMe},
      Path{"/api/v1/events", &Door::HandleEvents, &Door::streams_},
      Path{"/metrics", &Door::HandleMetrics},
      Path{"/readyz", &Door::HandleReady},
  };
  const std::string& path = visit->target().path;
  for (const Path& known : kPaths) {
    if (known.path != path) continue;
    visit->set_operation(std::string(path.substr(path.rfind('/') + 1)));
    Post(this->*known.workers, std::move(visit), known.handler);
    return;
  }
  if (documents_.Find(path) != nullptr) {
    visit->set_operation("documents");
    Post(reads_, std::move(visit), &Door::HandleDocument);
  } else if (path == "/healthz") {
    visit->set_operation("healthz");
    visit->Answer({.status = 200, .headers = {{"Content-Type", "text/plain"}}, .body = "alive\n"});
  } else if (path.starts_with(kQuestions)) {
    Post(reads_, std::move(visit), &Door::HandleQuestion);
  } else if (path.starts_with(kApi) && IsResource(std::string_view(path).substr(kApi.size()))) {
    // Passwords are hashed here, too.
    Post(logins_, std::move(visit), &Door::HandleResource);
  } else if (path.starts_with(kApi)) {
    Post(reads_, std::move(visit), &Door::HandleCall);
  } else {
    visit->Fail({.status = 404, .detail = "there is nothing at " + path + "; the operations stand at /api/v1/docs"});
  }
}

void Door::Post(Workers& workers, VisitPtr visit, Handler handler) {
  // What is posted has to be copyable.
  const auto held = std::make_shared<VisitPtr>(std::move(visit));
  const auto task = [this, held, handler](Watchdog::Thread& self) {
    self.Allow((*held)->begun() + options_.time);
    (*held)->exchange().set_deadline((*held)->begun() + options_.time);
    try {
      (this->*handler)(*held);
    } catch (...) {
      if (*held) (*held)->FailByException();
    }
    held->reset();
  };
  if (!workers.Post(task)) {
    (*held)->Fail({.status = 503, .detail = "too many calls are waiting", .retry_after = 1});
  }
}

Caller Door::CallerOf(const Request& request) {
  std::optional<TransactionConnection> connection;
  return callers_.Find(request, options_.sessions,
                       [&]() -> Connection& { return connection.emplace(host_, session_).get(); });
}

bool Door::Knows(const Request& request) {
  try {
    CallerOf(request);
    return true;
  } catch (const http::Refusal&) {
    return false;
  }
}

Caller Door::FindCaller(Visit& visit) {
  Caller caller = CallerOf(visit.request());
  visit.set_user(caller.name);
  return caller;
}

void Door::HandleCall(VisitPtr& visit) {
  const WatchedBatches watched(visit.get());
  const Request& request = visit->request();
  const Caller caller = FindCaller(*visit);
  const Operation& operation = OperationOfPath(std::string_view(visit->target().path).substr(kApi.size()));
  visit->set_operation(std::string(operation.name));
  Call call = ReadCall(request, visit->target(), operation, caller, options_.database, request.peer);
  auto place = std::make_shared<Place>(*this, caller.name, call.key.text);
  {
    std::optional<TransactionConnection> connection;
    const auto connect = [&]() -> Connection& {
      return (connection ? *connection : connection.emplace(host_, session_)).get();
    };
    try {
      CutOrders(call, connect);
    } catch (const http::Refusal&) {
      // The call itself may have made it so: a repeated one gets the answer that it got.
      std::optional<std::string> answer;
      if (!call.key.empty()) answer = FindRecordedAnswer(connect(), caller, call.key);
      if (!answer) throw;
      place.reset();
      Response response = ResponseTo(call, *std::move(answer));
      MarkReplayed(response);
      visit->Answer(std::move(response));
      return;
    }
  }
  if (!call.writes()) {
    Read(call, *visit, place);
    return;
  }
  JobOrder order = OrderFor(caller, call.key, visit, place);
  PostWrite(std::make_unique<CallJob>(host_, std::move(call), std::move(order)));
}

JobOrder Door::OrderFor(const Caller& caller, const RequestKey& key, VisitPtr& visit, PlacePtr& place) const {
  const Watchdog::Clock::time_point until = visit->begun() + options_.time;
  return {.caller = caller,
          .key = key,
          .visit = std::move(visit),
          .until = until,
          .ended = [place = std::move(place)]() mutable { place.reset(); }};
}

void Door::PostWrite(std::unique_ptr<RecordedJob> job) {
  RecordedJob& posted = *job;
  WriteLane::Job waiting = std::move(job);
  if (writes_.Post(waiting)) return;
  posted.TakeVisit()->Fail({.status = 503, .detail = "too many writes are waiting", .retry_after = 1});
}

void Door::Read(Call& call, Visit& visit, PlacePtr& place) {
  const bool replica = replica_ && replica_->usable() && !call.operation->contract->needs_latest;
  if (!replica) {
    ReadFrom(call, visit, place);
    return;
  }
  const std::string primary = call.session;
  ReplaceConnection(call, SessionStringFor(options_.replica, call.caller, visit.request().peer));
  try {
    ReadFrom(call, visit, place);
    return;
  } catch (const Error& error) {
    if (visit.exchange().begun()) throw;
    // What it refuses is done on the database itself. One that cannot be reached gets no more reads for a while.
    if (ProblemOf(error).status != 500) replica_->Doubt();
  }
  ReplaceConnection(call, primary);
  ReadFrom(call, visit, place);
}

void Door::ReadFrom(const Call& call, Visit& visit, PlacePtr& place) {
  Headers headers = {{"Cache-Control", "no-store"}};
  AddNotFound(headers, call);
  StreamedAnswer answer(visit.exchange(), call.format, call.columns, visit.Head(std::move(headers)), options_.rows);
  Variant result;
  Beside beside;
  {
    const AnswerInParts parts(answer);
    ContainerTransaction transaction(host_);
    MakeCall(host_, call, nullptr, result, beside);
    transaction.Commit();
  }
  place.reset();
  answer.Finish(result, beside);
}

void Door::HandleQuestion(VisitPtr& visit) {
  const WatchedBatches watched(visit.get());
  const Request& request = visit->request();
  const Caller caller = FindCaller(*visit);
  const workbench::Question& question =
      QuestionOfPath(std::string_view(visit->target().path).substr(kQuestions.size()));
  visit->set_operation("workbench/" + std::string(question.name));
  const Dictionary values = ReadQuestion(question, request, visit->target(), caller);
  const RequestKey key = question.writes ? KeyOf(request) : RequestKey();
  auto place = std::make_shared<Place>(*this, caller.name, key.text);
  if (question.call != nullptr) {
    Call call = CallOf(question.call(values), caller, options_.database, request.peer);
    Read(call, *visit, place);
    return;
  }
  if (question.writes) {
    PostWrite(std::make_unique<QuestionJob>(question, values, OrderFor(caller, key, visit, place)));
    return;
  }
  StreamedAnswer answer(visit->exchange(), AnswerFormat::kJson, {}, visit->Head({{"Cache-Control", "no-store"}}),
                        options_.rows);
  RecordsetPtr rows;
  {
    const AnswerInParts parts(answer);
    TransactionConnection connection(host_, session_);
    rows = question.ask(connection.get(), AskerOf(caller), values);
  }
  place.reset();
  answer.Finish(rows, {});
}

void Door::HandleResource(VisitPtr& visit) {
  const WatchedBatches watched(visit.get());
  const Request& request = visit->request();
  const Caller caller = FindCaller(*visit);
  Wish wish{.request = request, .caller = caller, .names = {}};
  const Resource& resource =
      ResourceOf(std::string_view(request.target).substr(kApi.size()), request.method, wish.names);
  visit->set_operation(std::string(resource.name));
  if (resource.for_administrators && !caller.role->administrator()) {
    Refuse(403, "only administrators may see and change " + std::string(resource.name));
  }
  const PlacePtr place = std::make_shared<Place>(*this, caller.name, "");
  Response response;
  try {
    TransactionConnection connection(host_, session_);
    response = resource.answer(connection.get(), wish);
  } catch (const Error& error) {
    if (error.number() != error_number::kInvalidArgument) throw;
    Refuse(422, error.description());
  }
  if (resource.method != "GET") callers_.Forget();
  visit->Answer(std::move(response));
}

void Door::HandleLogin(VisitPtr& visit) {
  RequireMethods(*visit, {"POST"});
  RefuseForeignPage(visit->request(), false);
  if (visit->request().body.size() > kMostLoginBytes) Refuse(413, "a login has a name and a password, and no more");
  const Members members(ReadJson(visit->request().body, "body"), {"user", "password"});
  const std::string user = members.RequireText("user");
  const WatchedBatches watched(visit.get());
  TransactionConnection connection(host_, session_);
  const Login login = LogIn(connection.get(), user, members.RequireText("password"), visit->request().peer);
  if (login.wait.count() > 0) {
    throw http::Refusal({.status = 429,
                         .detail = "too many failed logins; wait " + std::to_string(login.wait.count()) + " seconds",
                         .retry_after = static_cast<int>(login.wait.count())});
  }
  if (!login.caller) Refuse(401, "the name or the password is wrong");
  visit->set_user(login.caller->name);
  Response response = CallerResponse(*login.caller);
  response.headers.emplace_back("Set-Cookie", SessionCookie(login.cookie, visit->request().secure));
  visit->Answer(std::move(response));
}

void Door::HandleLogout(VisitPtr& visit) {
  RequireMethods(*visit, {"POST"});
  const Caller caller = FindCaller(*visit);
  TransactionConnection connection(host_, session_);
  const std::string* const everywhere = visit->target().Find("everywhere");
  if (everywhere != nullptr && *everywhere != "false") {
    LogOutEverywhere(connection.get(), caller.name);
  } else {
    LogOut(connection.get(), CredentialsOf(visit->request()).cookie);
  }
  callers_.Forget();
  visit->Answer({.status = 204, .headers = {{"Set-Cookie", SessionCookie("", visit->request().secure)}}});
}

void Door::HandleMe(VisitPtr& visit) {
  RequireMethods(*visit, {"GET", "HEAD"});
  visit->Answer(CallerResponse(FindCaller(*visit)));
}

void Door::HandleEvents(VisitPtr& visit) {
  RequireMethods(*visit, {"GET"});
  Caller caller = FindCaller(*visit);
  events_.Listen(std::move(visit), std::move(caller));
}

void Door::HandleMetrics(VisitPtr& visit) {
  RequireMethods(*visit, {"GET", "HEAD"});
  if (!FindCaller(*visit).role->administrator()) Refuse(403, "only administrators may see the metrics");
  Gauges gauges{.connections = connections_(),
                .reads_waiting = reads_.waiting(),
                .writes_waiting = writes_.waiting(),
                .event_streams = events_.listeners()};
  {
    const std::scoped_lock lock(mutex_);
    for (const auto& [caller, count] : running_) gauges.calls_running += count;
  }
  if (replica_) gauges.replica = replica_->usable() ? 1 : 0;
  visit->Answer({.status = 200,
                 .headers = {{"Content-Type", "text/plain; version=0.0.4; charset=utf-8"}},
                 .body = metrics_.Text(gauges)});
}

void Door::HandleDocument(VisitPtr& visit) {
  RequireMethods(*visit, {"GET", "HEAD"});
  const Document& document = *documents_.Find(visit->target().path);
  const char* const keep = document.lasting ? "public, max-age=31536000, immutable" : "no-cache";
  visit->Answer({.status = 200,
                 .headers = {{"Content-Type", std::string(document.type)}, {"Cache-Control", keep}},
                 .body = std::string(document.text),
                 .packed = document.packed});
}

void Door::HandleReady(VisitPtr& visit) {
  RequireMethods(*visit, {"GET", "HEAD"});
  try {
    TransactionConnection connection(host_, session_);
    connection.get().Query("SELECT 1 AS Ready");
  } catch (const Error& error) {
    throw http::Refusal({.status = 503, .detail = "the database cannot be asked", .error = error, .retry_after = 2});
  }
  visit->Answer({.status = 200, .headers = {{"Content-Type", "text/plain"}}, .body = "ready\n"});
}

void Door::Sweep() {
  BlockSignals();
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    lock.unlock();
    try {
      TransactionConnection connection(host_, session_);
      SweepRecords(connection.get());
      SweepAccess(connection.get(), options_.sessions);
    } catch (const Error&) {
      // The next sweep finds it.
    }
    lock.lock();
    stop_sweeping_.wait_for(lock, kSweepEvery, [this] { return stopping_; });
  }
}

}  // namespace tessarlorn::http
