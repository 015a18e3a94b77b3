#include "tessarlorn/ado_driver.h"

#include <gmock/gmock.h>
#include <thread>

#include "drivers/ado/ado_rows.h"
#include "drivers/ado/connection_options.h"
#include "drivers/ado/persisted_rows.h"
#include "support/error_of.h"
#include "support/test_database.h"

namespace tessarlorn {
namespace {

using testing::HasSubstr;

TEST(AdoConnectionOptionsTest, TakesItsOwnKeysAndLeavesTheRestToAdo) {
  const auto options = ado::ParseConnectionOptions(
      "Provider=X; Password = \"a;StatementTimeout=7;\"\"b\" ;LOGINTIMEOUT=3;Extended Properties='DSN=\"d;\"';"
      "statementtimeout = 20");
  EXPECT_EQ(options.ado_string,
            "Provider=X; Password = \"a;StatementTimeout=7;\"\"b\" ;Extended Properties='DSN=\"d;\"';");
  EXPECT_EQ(options.login_timeout, 3);
  EXPECT_EQ(options.statement_timeout, 20);
  EXPECT_EQ(ado::ParseConnectionOptions("Provider=X").login_timeout, 15);
  for (const auto& [text, fault] : {std::pair{"Provider=X;Password=\"open", "the quote behind Password= is not closed"},
                                    std::pair{"Provider=X;LoginTimeout=soon", "LoginTimeout"},
                                    std::pair{"Provider=X;StatementTimeout", "StatementTimeout"}}) {
    const Error error = ErrorOf([text = text] { ado::ParseConnectionOptions(text); });
    EXPECT_EQ(error.number(), error_number::kLoginRefused) << text;
    EXPECT_THAT(error.description(), HasSubstr(fault));
  }
}

TEST(AdoDriverTest, HandsAdosOwnRecordsetOutAndReadsItOnlyWhenAsked) {
  const TestDatabase database(Reach::kOverAdo);
  RecordsetPtr rows;
  {
    const auto connection = OpenConnection(database.string());
    rows = connection->Execute("select 1 as a, N'发货' as b union all select 2, null");
  }
  const auto* const source = dynamic_cast<const ado::AdoRows*>(rows->source().get());
  ASSERT_NE(source, nullptr);
  const auto& own = source->recordset();
  EXPECT_TRUE(AdoStandIn::IsAttached(own.get()));
  VARIANT_BOOL at_end = VARIANT_TRUE;
  ASSERT_EQ(own->get_EOF(&at_end), S_OK) << "it outlives the session that it came from";
  EXPECT_EQ(at_end, VARIANT_FALSE);
  rows->Detach();
  EXPECT_FALSE(AdoStandIn::IsAttached(own.get()));

  EXPECT_EQ(rows->RecordCount(), 2U);
  EXPECT_EQ(rows->Get("b").ToText(), "发货");
  rows->MoveTo(1);
  EXPECT_TRUE(rows->Get("b").is_null());
  // Whoever gets it finds it as the database produced it.
  ASSERT_EQ(own->get_EOF(&at_end), S_OK);
  EXPECT_EQ(at_end, VARIANT_FALSE);
  ASSERT_EQ(own->Close(), S_OK);
  EXPECT_EQ(rows->Get("a").ToInt32(), 2) << "read once, the rows need it no more";
}

TEST(AdoDriverTest, AResultThatAdoDoesNotKeepIsAnError) {
  const TestDatabase database(Reach::kOverAdo);
  const auto connection = OpenConnection(database.string());
  AdoStandIn::SetClones(false);
  const Error error = ErrorOf([&] { connection->Execute("select 1 as a select 2 as b"); });
  EXPECT_EQ(error.number(), error_number::kDatabaseFailure);
  EXPECT_EQ(error.source(), "TessarLorn ADO driver");
}

TEST(AdoDriverTest, FailuresBeforeAnyServerSayWhatIsMissing) {
  const auto open = [] { OpenConnection("Provider=Nobody;Data Source=none"); };
  // A thread that has joined no apartment, and so gets what the system has of ADO and not what stands in for it here.
  Error unknown(0, "", "");
  std::thread([&] { unknown = ErrorOf(open); }).join();
  EXPECT_THAT(unknown.description(), HasSubstr("Connection.Open failed: Provider cannot be found."));
  const TestDatabase database(Reach::kOverAdo);
  EXPECT_EQ(ErrorOf([] { ado::OpenPersisted("no rows"); }).description(), "These are no rows.");
  const Error refused = ErrorOf([] { OpenConnection(AdoStandIn::StringOf("Nowhere=1")); });
  EXPECT_EQ(refused.number(), error_number::kLoginRefused);
  EXPECT_THAT(refused.description(), HasSubstr("Nowhere"));
}

}  // namespace
}  // namespace tessarlorn
