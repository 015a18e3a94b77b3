// How the description of the operations shows the resources.
#include <array>
#include <string>

#include "hosts/http/house/resource.h"

namespace tessarlorn::http {
namespace {

struct Member {
  const char* name;
  /// "integer", "string", "boolean", or "array" of texts
  const char* type;
  const char* help;
  bool required = false;
};

SchemaJson ObjectOf(std::initializer_list<Member> members) {
  SchemaJson schema = {{"type", "object"}, {"properties", SchemaJson::object()}};
  for (const Member& member : members) {
    SchemaJson property = {{"type", member.type}, {"description", member.help}};
    if (std::string_view(member.type) == "array") property["items"] = {{"type", "string"}};
    if (std::string_view(member.name) == "password") property["format"] = "password";
    schema["properties"][member.name] = std::move(property);
    if (member.required) schema["required"].push_back(member.name);
  }
  return schema;
}

constexpr const char* kErpUser = "Id of the user in the ERP";
constexpr const char* kRole = "Role, which says what may be called";
constexpr const char* kLanguage = "CHS, CHT or EN";
constexpr const char* kPassword = "At least eight characters";
constexpr const char* kSql = "Whether SQL may be passed; administrators only";

void AddSchemas(SchemaJson& schemas) {
  schemas["UserRow"] = ObjectOf({{"Name", "string", "Name", true},
                                 {"ErpUser", "integer", kErpUser, true},
                                 {"Language", "string", kLanguage, true},
                                 {"Role", "string", kRole, true},
                                 {"SQL", "boolean", kSql, true},
                                 {"Disabled", "boolean", "May not log in, nor do its tokens", true},
                                 {"Tokens", "integer", "How many tokens it has", true},
                                 {"Made", "string", "When it was added, UTC", true}});
  schemas["NewUser"] = ObjectOf({{"name", "string", "Name", true},
                                 {"password", "string", kPassword, true},
                                 {"erpUser", "integer", kErpUser, true},
                                 {"role", "string", kRole, true},
                                 {"language", "string", kLanguage},
                                 {"sql", "boolean", kSql}});
  schemas["UserChange"] = ObjectOf({{"password", "string", kPassword},
                                    {"erpUser", "integer", kErpUser},
                                    {"role", "string", kRole},
                                    {"language", "string", kLanguage},
                                    {"sql", "boolean", kSql},
                                    {"disabled", "boolean", "Ends its sessions, and lets its tokens do nothing"}});
  schemas["TokenRow"] = ObjectOf({{"User", "string", "Whose it is", true},
                                  {"Token", "string", "Its name", true},
                                  {"Made", "string", "When it was made, UTC", true},
                                  {"Expires", "string", "When it ends, UTC; null = never"},
                                  {"Used", "string", "When it was used last, UTC; null = never"},
                                  {"Expired", "boolean", "Whether it has ended", true}});
  for (const char* const name : {"Expires", "Used"}) {
    schemas["TokenRow"]["properties"][name]["type"] = {"string", "null"};
  }
  schemas["NewToken"] = ObjectOf({{"user", "string", "Whose it is", true},
                                  {"name", "string", "Its name", true},
                                  {"days", "integer", "Until it ends, 1 to 36500; none = it does not"}});
  schemas["MadeToken"] = ObjectOf({{"token", "string", "Shown this once", true}});
  schemas["RoleRow"] = ObjectOf({{"name", "string", "Name", true},
                                 {"builtIn", "boolean", "It cannot be removed", true},
                                 {"administrator", "boolean", "May call everything", true},
                                 {"operations", "array", "What it may call, beside TransMode", true}});
  schemas["RoleList"] = {{"type", "object"},
                         {"properties", {{"roles", {{"type", "array"}, {"items", SchemaReference("RoleRow")}}}}},
                         {"required", {"roles"}}};
  schemas["NewRole"] = ObjectOf(
      {{"name", "string", "Name", true}, {"operations", "array", "Names of operations that it may call", true}});
  for (const char* const row : {"User", "Token"}) {
    schemas[std::string(row) + "List"] = {{"type", "object"},
                                          {"properties", {{"result", RecordsetSchema(std::string(row) + "Row")}}},
                                          {"required", {"result"}}};
  }
  schemas["Made"] = {{"type", "object"}, {"description", "It was made"}};
  schemas["Kept"] = {{"type", "object"}, {"additionalProperties", true}, {"description", "What is kept, by name"}};
}

struct Path {
  const char* path;
  const char* method;
  const char* id;
  const char* summary;
  /// Schemas, "" for none.
  const char* body;
  const char* answer;
};
constexpr std::array kPaths = {
    Path{"users", "get", "listUsers", "List the users, for administrators", "", "UserList"},
    Path{"users", "post", "addUser", "Add a user, for administrators", "NewUser", "Made"},
    Path{"users/{name}", "patch", "changeUser", "Change a user, for administrators", "UserChange", ""},
    Path{"users/{name}", "delete", "removeUser", "Remove a user with its tokens and sessions, for administrators", "",
         ""},
    Path{"tokens", "get", "listTokens", "List the tokens, for administrators", "", "TokenList"},
    Path{"tokens", "post", "addToken", "Make a token, for administrators", "NewToken", "MadeToken"},
    Path{"tokens/{user}/{name}", "delete", "revokeToken", "Revoke a token, for administrators", "", ""},
    Path{"roles", "get", "listRoles", "List the roles and what each may call, for administrators", "", "RoleList"},
    Path{"roles", "post", "addRole", "Make a role, for administrators", "NewRole", "Made"},
    Path{"roles/{name}", "delete", "removeRole", "Remove a role that nobody has, for administrators", "", ""},
    Path{"kept", "get", "listKept", "Tell what the caller keeps of the workbench", "", "Kept"},
    Path{"kept/{name}", "put", "keep", "Keep a value of the workbench for the caller, at most 20 of 64 kB", "any", ""},
    Path{"kept/{name}", "delete", "unkeep", "Remove what the caller keeps under a name", "", ""},
};

SchemaJson ContentOf(const std::string& schema) {
  SchemaJson content;
  content["application/json"]["schema"] = schema == "any" ? SchemaJson(SchemaJson::object()) : SchemaReference(schema);
  return content;
}

}  // namespace

void DescribeResources(SchemaJson& document) {
  AddSchemas(document["components"]["schemas"]);
  for (const Path& path : kPaths) {
    const std::string shown = path.path;
    const std::string tag = shown.starts_with("kept") ? "workbench" : "access";
    SchemaJson method = {{"tags", {tag}}, {"operationId", path.id}, {"summary", path.summary}};
    for (const char* const name : {"user", "name"}) {
      if (shown.find("{" + std::string(name) + "}") == std::string::npos) continue;
      method["parameters"].push_back(
          {{"name", name}, {"in", "path"}, {"required", true}, {"schema", {{"type", "string"}}}});
    }
    const std::string body = path.body;
    if (!body.empty()) method["requestBody"] = {{"required", true}, {"content", ContentOf(body)}};
    const std::string answer = path.answer;
    const bool makes = std::string_view(path.method) == "post";
    SchemaJson& done = method["responses"][answer.empty() ? "204" : makes ? "201" : "200"];
    done["description"] = "Done";
    if (!answer.empty()) done["content"] = ContentOf(answer);
    std::vector<int> problems = {401, 403, 429, 500, 503, 504};
    if (!body.empty()) problems.insert(problems.end(), {400, 413, 415});
    if (!shown.starts_with("kept") || !body.empty()) problems.push_back(422);
    for (const int status : problems) {
      method["responses"][std::to_string(status)]["$ref"] = "#/components/responses/" + std::to_string(status);
    }
    document["paths"]["/api/v1/" + shown][path.method] = std::move(method);
  }
}

}  // namespace tessarlorn::http
