#include "hosts/http/house/resource.h"

#include <algorithm>

#include "hosts/http/answers/problem.h"
#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

const std::vector<Resource>& Resources() {
  static const std::vector<Resource> all = [] {
    std::vector<Resource> resources;
    for (const std::span<const Resource> some : {AdministrationResources(), KeptResources()}) {
      resources.insert(resources.end(), some.begin(), some.end());
    }
    return resources;
  }();
  return all;
}

}  // namespace

bool IsResource(std::string_view path) {
  const std::string_view first = path.substr(0, path.find('/'));
  const std::vector<Resource>& all = Resources();
  return std::any_of(all.begin(), all.end(), [&](const Resource& resource) { return resource.name == first; });
}

const Resource& ResourceOf(std::string_view path, std::string_view method, std::vector<std::string>& names) {
  for (const std::string_view part : Split(path.substr(0, path.find('?')), '/')) {
    Target decoded;
    if (!ReadTarget(part, decoded)) Refuse(400, "the path has a bad escape");
    names.push_back(std::move(decoded.path));
  }
  const std::string name = names.front();
  names.erase(names.begin());
  std::string methods;
  for (const Resource& resource : Resources()) {
    if (resource.name != name || resource.names != names.size()) continue;
    if (resource.method == method || (resource.method == "GET" && method == "HEAD")) return resource;
    methods.append(methods.empty() ? "" : ", ").append(resource.method);
  }
  if (methods.empty()) Refuse(404, "there is nothing at /api/v1/" + std::string(path));
  RefuseMethod("/api/v1/" + std::string(path), methods);
}

}  // namespace tessarlorn::http
