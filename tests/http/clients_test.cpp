// What others make of the description: a linter, a generator of types, and a typed client at a served database.
#include <fstream>
#include <gtest/gtest.h>

#include "hosts/http/answers/documents.h"
#include "support/shell.h"
#include "support/temporary_folder.h"

namespace tessarlorn::http {
namespace {

TEST(ClientsTest, TheDescriptionMakesATypedClient) {
  const TemporaryFolder folder;
  std::ofstream(folder.file("openapi.json")) << Documents({}).Find("/api/v1/openapi.json")->text;
  const std::string script = TESSARLORN_SOURCE_ROOT "/tests/http/clients/run";
  const Outcome outcome = RunLine("'" + script + "' " TESSARLORN_COMMAND " " TESSARLORN_TEST_FOLDER "/http_clients '" +
                                  folder.file("") + "' 2>&1");
  EXPECT_EQ(outcome.text, R"(read: true 3
by query: [{"FOrderType":"手工订单"}]
write: true null
write: true true
error: 422 dctPara.FID Unprocessable Content
)");
}

}  // namespace
}  // namespace tessarlorn::http
