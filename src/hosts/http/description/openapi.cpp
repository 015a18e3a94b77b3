#include "hosts/http/description/openapi.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "automation/order_list.h"
#include "hosts/http/answers/problem.h"
#include "hosts/http/description/openapi_schema.h"
#include "hosts/http/house/resource.h"

namespace tessarlorn::http {
namespace {

constexpr const char* kAbout =
    "Operations on web-shop orders in the warehouse. `clsGetData` reads, `clsSaveData` changes.\n\nA call is a POST of "
    "a JSON object with an entry for each argument. Operations of `clsGetData` take GET as well where their arguments "
    "fit into a query. The door converts numbers and texts into each other: `42` and `\"42\"` are the same key. Times "
    "are the database's own, without a zone. Exact numbers are written with all their digits, which may be more than a "
    "double of JavaScript keeps.";

SchemaJson Text(std::string_view description) { return {{"type", "string"}, {"description", description}}; }

SchemaJson Json(SchemaJson schema) { return {{"application/json", {{"schema", std::move(schema)}}}}; }

SchemaJson ProblemReference(int status) { return {{"$ref", "#/components/responses/" + std::to_string(status)}}; }

SchemaJson ParameterReference(const char* name) { return {{"$ref", "#/components/parameters/" + std::string(name)}}; }

void AddProblems(SchemaJson& responses, std::initializer_list<int> statuses) {
  for (const int status : statuses) responses[std::to_string(status)] = ProblemReference(status);
}

SchemaJson ProblemSchema() {
  return {{"type", "object"},
          {"description", "RFC 9457"},
          {"properties",
           {{"title", Text("The status in words")},
            {"status", {{"type", "integer"}}},
            {"detail", Text("One sentence for people")},
            {"key", Text("The argument, key or header at fault, as dctPara.FID")},
            {"number", {{"type", "integer"}, {"description", "Number of the error that the operation raised"}}},
            {"hex", Text("The same, as 0x80040E14")},
            {"source", Text("Source of that error")},
            {"description", Text("Its description")},
            {"native", {{"type", "integer"}, {"description", "The database's own number"}}},
            {"sqlstate", Text("SQLSTATE of the database")},
            {"request", Text("Id of the request, as in X-Request-Id")}}},
          {"required", {"title", "status", "detail"}}};
}

SchemaJson Schemas() {
  const SchemaJson scalar = {{"type", {"string", "number", "boolean", "null"}}};
  return {
      {"Problem", ProblemSchema()},
      {"Field",
       {{"type", "object"},
        {"properties", {{"name", Text("Key in the rows")}, {"type", Text("Type in the database")}}},
        {"required", {"name", "type"}}}},
      {"Row", {{"type", "object"}, {"additionalProperties", scalar}}},
      {"DryRun",
       {{"type", "object"},
        {"description", "What the call would have done; with dry-run=true only"},
        {"properties",
         {{"statements", {{"type", "array"}, {"items", {{"type", "string"}}}}},
          {"changes",
           {{"type", "array"},
            {"items",
             {{"type", "object"},
              {"properties", {{"table", {{"type", "string"}}}, {"rows", {{"type", "integer"}}}}},
              {"required", {"table", "rows"}}}}}}}},
        {"required", {"statements", "changes"}}}},
      {"Caller",
       {{"type", "object"},
        {"properties",
         {{"user", Text("Name")},
          {"erpUser", {{"type", "integer"}, {"description", "Id of the user in the ERP"}}},
          {"language", Text("CHS, CHT or EN")},
          {"role", Text("Role, which says what may be called")},
          {"sql", {{"type", "boolean"}, {"description", "Whether SQL may be passed"}}},
          {"operations",
           {{"type", "array"},
            {"items", {{"type", "string"}}},
            {"description", "Names of operations that may be called"}}}}},
        {"required", {"user", "erpUser", "language", "role", "sql", "operations"}}}},
      {"Login",
       {{"type", "object"},
        {"properties", {{"user", {{"type", "string"}}}, {"password", {{"type", "string"}, {"format", "password"}}}}},
        {"required", {"user", "password"}}}},
  };
}

SchemaJson Problems() {
  struct Case {
    int status;
    const char* when;
  };
  constexpr std::array kCases = {
      Case{400, "The call is malformed, or has a name that the operation does not know."},
      Case{401, "Nobody is logged in, or the token or session has ended."},
      Case{403, "The role does not allow it, or another site's page asked."},
      Case{404, "There is no such operation, or none of the orders is there for this user."},
      Case{406, "None of the media types that Accept wants is there."},
      Case{409, "A call with the same Idempotency-Key is still under way."},
      Case{413, "The body is too large."},
      Case{415, "The body is not sent as application/json."},
      Case{422, "A value is not what the operation takes, or the Idempotency-Key was used for another request."},
      Case{429, "Too many calls of this user at once, or too many failed logins."},
      Case{500, "The operation or the database raised an error."},
      Case{503, "The database is busy or cannot be reached, or too many calls are waiting."},
      Case{504, "The call took too long and was cancelled."},
  };
  SchemaJson responses = SchemaJson::object();
  for (const Case& item : kCases) {
    SchemaJson headers = {{"X-Request-Id", {{"$ref", "#/components/headers/RequestId"}}}};
    if (item.status == 429 || item.status == 503 || item.status == 409) {
      headers["Retry-After"] = {{"$ref", "#/components/headers/RetryAfter"}};
    }
    responses[std::to_string(item.status)] = {
        {"description", std::string(TitleOf(item.status)) + ": " + item.when},
        {"headers", std::move(headers)},
        {"content", {{"application/problem+json", {{"schema", SchemaReference("Problem")}}}}}};
  }
  return responses;
}

SchemaJson Parameters() {
  const auto query = [](const char* name, const char* description, SchemaJson schema) -> SchemaJson {
    return {{"name", name}, {"in", "query"}, {"description", description}, {"schema", std::move(schema)}};
  };
  return {
      {"Columns",
       query("columns", "Columns of the recordset, in this order, with commas between them", {{"type", "string"}})},
      {"DryRun", query("dry-run", "Do it, tell what was done, and take it back", {{"type", "boolean"}})},
      {"Each", query("each", "Call the operation for each order by itself: what can be done is done",
                     {{"type", "string"}, {"enum", {"order"}}})},
      {"IdempotencyKey",
       {{"name", "Idempotency-Key"},
        {"in", "header"},
        {"description",
         "A text of the client's own. The same request with the same key is made once, and answered the same again "
         "with the header Idempotency-Replayed."},
        {"schema", {{"type", "string"}, {"maxLength", 255}}}}},
  };
}

SchemaJson Components() {
  SchemaJson components = {
      {"securitySchemes",
       {{"bearer",
         {{"type", "http"}, {"scheme", "bearer"}, {"description", "A token of `tessarlorn token add`, for programs"}}},
        {"cookie",
         {{"type", "apiKey"},
          {"in", "cookie"},
          {"name", "tessarlorn"},
          {"description",
           "The session of a login, for pages of this server. Over TLS the cookie's name is "
           "`__Host-tessarlorn`. What changes something wants Sec-Fetch-Site or Origin."}}}}}};
  components["headers"] = {
      {"RequestId", {{"description", "Id of the request, also in the log"}, {"schema", {{"type", "string"}}}}},
      {"RetryAfter", {{"description", "Seconds after which to try again"}, {"schema", {{"type", "integer"}}}}},
      {"IdempotencyReplayed",
       {{"description", "true when the answer is that of an earlier request with the same Idempotency-Key"},
        {"schema", {{"type", "string"}, {"enum", {"true"}}}}}}};
  components["parameters"] = Parameters();
  components["responses"] = Problems();
  components["schemas"] = Schemas();
  return components;
}

/// The name of an operation in the description; both classes have a TransMode.
std::string IdOf(const Operation& operation) {
  const ServiceClass other =
      operation.service == ServiceClass::kGetData ? ServiceClass::kSaveData : ServiceClass::kGetData;
  const bool taken = FindOperation(other, operation.name) != nullptr;
  return (taken ? std::string(ClassName(operation.service)) + "_" : "") + std::string(operation.name);
}

/// The first sentence, without its point.
std::string FirstSentence(std::string_view help) {
  const std::string_view sentence = help.substr(0, help.find(". "));
  return MarkdownText(sentence.ends_with('.') ? sentence.substr(0, sentence.size() - 1) : sentence);
}

SchemaJson OptionsOf(const Operation& operation) {
  SchemaJson options = SchemaJson::array();
  if (operation.result == ValueType::kRecordset) options.push_back(ParameterReference("Columns"));
  options.push_back(ParameterReference("DryRun"));
  if (FindOrderList(operation)) options.push_back(ParameterReference("Each"));
  return options;
}

SchemaJson MethodOf(const Operation& operation, const std::string& operation_id) {
  const std::string id = IdOf(operation);
  SchemaJson method = {{"tags", {ClassName(operation.service)}},
                       {"operationId", operation_id},
                       {"summary", FirstSentence(operation.contract->help)},
                       {"description", MarkdownText(operation.help())},
                       {"parameters", OptionsOf(operation)}};
  method["responses"]["200"] = {
      {"description", "What the operation answers"},
      {"headers", {{"X-Request-Id", {{"$ref", "#/components/headers/RequestId"}}}}},
      {"content",
       {{"application/json", {{"schema", SchemaReference(id + "Answer")}}},
        {"application/x-ndjson", {{"schema", Text("One JSON value a line: the rows, or the result")}}},
        {"text/csv", {{"schema", Text("A line of heads and a line a row")}}}}}};
  AddProblems(method["responses"], {400, 401, 403, 404, 406, 422, 429, 500, 503, 504});
  return method;
}

/// The call may be made again under its key.
void AllowKey(SchemaJson& post) {
  post["parameters"].push_back(ParameterReference("IdempotencyKey"));
  post["responses"]["200"]["headers"]["Idempotency-Replayed"] = {{"$ref", "#/components/headers/IdempotencyReplayed"}};
  AddProblems(post["responses"], {409});
}

void AddOperation(SchemaJson& document, const Operation& operation) {
  const std::string id = IdOf(operation);
  SchemaJson& schemas = document["components"]["schemas"];
  SchemaJson row = RowSchema(operation);
  const std::string row_name = row.is_null() ? "Row" : id + "Row";
  if (!row.is_null()) schemas[row_name] = std::move(row);
  schemas[id + "Answer"] = AnswerSchema(operation, row_name);
  SchemaJson post = MethodOf(operation, id);
  SchemaJson body = RequestSchema(operation);
  if (!body["properties"].empty()) {
    SchemaJson content = {{"content", Json(SchemaReference(id + "Request"))}};
    if (body.contains("required")) content["required"] = true;
    post["requestBody"] = std::move(content);
    schemas[id + "Request"] = std::move(body);
  }
  AllowKey(post);
  AddProblems(post["responses"], {413, 415});
  SchemaJson& path =
      document["paths"]["/api/v1/" + std::string(ClassName(operation.service)) + "/" + std::string(operation.name)];
  path["post"] = std::move(post);
  SchemaJson query = QuerySchema(operation);
  if (operation.service != ServiceClass::kGetData || query.is_null()) return;
  SchemaJson get = MethodOf(operation, id + "ByQuery");
  for (SchemaJson& option : get["parameters"]) query.push_back(std::move(option));
  get["parameters"] = std::move(query);
  path["get"] = std::move(get);
}

/// A question of the workbench. Its values stand in the body, its rows in the answer.
void AddQuestion(SchemaJson& document, const workbench::Question& question) {
  const std::string name(question.name);
  std::string id = "Ask" + name;
  id[3] = static_cast<char>(id[3] - 'a' + 'A');
  SchemaJson& schemas = document["components"]["schemas"];
  SchemaJson body = QuestionSchema(question);
  const bool rows_are_fixed = !question.columns.empty();
  if (rows_are_fixed) schemas[id + "Row"] = QuestionRowSchema(question);
  schemas[id + "Answer"] = {{"type", "object"},
                            {"required", {"result"}},
                            {"properties", {{"result", RecordsetSchema(rows_are_fixed ? id + "Row" : "Row")}}}};
  SchemaJson post = {{"tags", {"workbench"}},
                     {"operationId", id},
                     {"summary", FirstSentence(question.help)},
                     {"description", MarkdownText(question.help)}};
  post["requestBody"] = {{"required", body.contains("required")}, {"content", Json(SchemaReference(id + "Request"))}};
  schemas[id + "Request"] = std::move(body);
  post["responses"]["200"] = {{"description", "The rows"},
                              {"headers", {{"X-Request-Id", {{"$ref", "#/components/headers/RequestId"}}}}},
                              {"content", Json(SchemaReference(id + "Answer"))}};
  AddProblems(post["responses"], {400, 401, 403, 413, 415, 422, 429, 500, 503, 504});
  if (question.writes) AllowKey(post);
  document["paths"]["/api/v1/workbench/" + name]["post"] = std::move(post);
}

struct Route {
  const char* path;
  const char* method;
  const char* id;
  const char* tag;
  const char* summary;
  /// Media type of the answer, "" for none.
  const char* type;
  bool open = false;
};

constexpr std::array kRoutes = {
    Route{"/api/v1/login", "post", "login", "access", "Log in with a password and get a session's cookie",
          "application/json", true},
    Route{"/api/v1/logout", "post", "logout", "access", "End the session", ""},
    Route{"/api/v1/me", "get", "me", "access", "Tell who is calling", "application/json"},
    Route{"/api/v1/events", "get", "events", "server", "Hear what happens to orders", "text/event-stream"},
    Route{"/healthz", "get", "healthz", "server", "Tell that the server is alive", "text/plain", true},
    Route{"/readyz", "get", "readyz", "server", "Tell that the server reaches its database", "text/plain", true},
    Route{"/metrics", "get", "metrics", "server", "Count calls and times, for administrators", "text/plain"},
};

constexpr const char* kEvents =
    "Server-sent events. `log` is an entry of the orders' log: key, order, code, user, time. `call` is a call that "
    "changed something: key, orders, operation, user, caller, time. Events of orders that the user may not see are "
    "left out. The stream ends after five minutes; come again with Last-Event-ID.";

void AddRoutes(SchemaJson& paths) {
  for (const Route& route : kRoutes) {
    SchemaJson method = {{"tags", {route.tag}}, {"operationId", route.id}, {"summary", route.summary}};
    if (route.open) method["security"] = SchemaJson::array();
    const std::string_view type = route.type;
    SchemaJson& done = method["responses"][type.empty() ? "204" : "200"];
    done["description"] = "Done";
    if (type == "application/json") {
      done["content"] = Json(SchemaReference("Caller"));
    } else if (!type.empty()) {
      done["content"][route.type]["schema"]["type"] = "string";
    }
    if (!route.open) AddProblems(method["responses"], {401, 403});
    if (std::string_view(route.path) != "/healthz") AddProblems(method["responses"], {500, 503, 504});
    paths[route.path][route.method] = std::move(method);
  }
  SchemaJson& login = paths["/api/v1/login"]["post"];
  login["requestBody"] = {{"required", true}, {"content", Json(SchemaReference("Login"))}};
  login["responses"]["200"]["headers"]["Set-Cookie"] = {{"description", "The session"},
                                                        {"schema", {{"type", "string"}}}};
  AddProblems(login["responses"], {400, 401, 403, 413, 429});
  paths["/api/v1/logout"]["post"]["parameters"] =
      SchemaJson::array({{{"name", "everywhere"},
                          {"in", "query"},
                          {"description", "End every session of the user"},
                          {"schema", {{"type", "string"}, {"enum", {"true"}}}}}});
  SchemaJson& events = paths["/api/v1/events"]["get"];
  events["description"] = kEvents;
  events["parameters"] = SchemaJson::array({{{"name", "Last-Event-ID"},
                                             {"in", "header"},
                                             {"description", "The id of the last event that was seen"},
                                             {"schema", {{"type", "string"}}}}});
}

}  // namespace

std::string OpenApiText() {
  SchemaJson document = {
      {"openapi", "3.1.0"},
      {"info", {{"title", "TessarLornPickingAndDelivery"}, {"version", "1"}, {"description", kAbout}}},
      {"servers", SchemaJson::array({{{"url", "/"}}})},
      {"security", {{{"bearer", SchemaJson::array()}}, {{"cookie", SchemaJson::array()}}}},
      {"tags",
       {{{"name", "clsGetData"}, {"description", "Operations that read"}},
        {{"name", "clsSaveData"}, {"description", "Operations that change orders"}},
        {{"name", "workbench"}, {"description", "What the workbench page asks beside the operations; it may change"}},
        {{"name", "access"}, {"description", "Logging in and out; users, tokens and roles"}},
        {{"name", "server"}, {"description", "Events, health and metrics"}}}}};
  document["paths"] = SchemaJson::object();
  document["components"] = Components();
  for (const Operation* const operation : Operations()) AddOperation(document, *operation);
  for (const workbench::Question& question : workbench::Questions()) AddQuestion(document, question);
  AddRoutes(document["paths"]);
  DescribeResources(document);
  return document.dump();
}

}  // namespace tessarlorn::http
