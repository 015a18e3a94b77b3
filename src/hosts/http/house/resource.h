// What the server itself keeps, as resources of their own: users, tokens and roles, and what users keep of the page.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/http/access/caller.h"
#include "hosts/http/description/openapi_schema.h"
#include "hosts/http/transport/message.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// A request for a resource.
struct Wish {
  const Request& request;
  const Caller& caller;
  /// What stands in the path behind the resource, part by part: {"ann"} of /api/v1/users/ann.
  std::vector<std::string> names;
};

struct Resource {
  /// As "users".
  std::string_view name;
  std::string_view method;
  /// How many names the path has.
  std::size_t names = 0;
  bool for_administrators = true;
  /// Does it on a connection outside of transactions. Raises Refusal, and Error 5 for a value at fault.
  Response (*answer)(Connection& connection, const Wish& wish) = nullptr;
};

std::span<const Resource> AdministrationResources();
std::span<const Resource> KeptResources();

/// Whether the path behind "/api/v1/" is one of a resource.
bool IsResource(std::string_view path);

/// The resource of a request, whose names are put into `names`. Raises Refusal 404 and 405.
/// @param path behind "/api/v1/", with its escapes: names may hold a slash
const Resource& ResourceOf(std::string_view path, std::string_view method, std::vector<std::string>& names);

/// The schemas and paths of all resources, put into the description of the operations.
void DescribeResources(SchemaJson& document);

}  // namespace tessarlorn::http
