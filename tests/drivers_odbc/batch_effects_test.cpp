#include "drivers/odbc/batch_effects.h"

#include <gtest/gtest.h>

namespace tessarlorn::odbc {
namespace {

/// "reads", "writes", and what would have to be cleaned up.
std::string Summary(std::string_view text) {
  const BatchEffects effects = EffectsOf(text);
  std::string summary = effects.reads_only ? "reads" : "writes";
  if (effects.prints) summary += " prints";
  if (effects.transaction) summary += " transaction";
  if (effects.lasting) summary += " lasting";
  for (const std::string& option : effects.options) summary += " " + option;
  for (const std::string& table : effects.temporary_tables) summary += " " + table;
  return summary;
}

TEST(BatchEffects, AreReadOffTheText) {
  const std::pair<const char*, const char*> cases[] = {
      {"select a from t where b = 'use #t' -- set nocount on", "reads"},
      {"/* exec /* sp_who */ use x */ select [use], \"exec\" from t", "reads"},
      {"declare @a int set @a = 1 select @a", "reads"},
      {"if 1 = 1 begin select 1 as a end else print 'none'", "reads prints"},
      {"update t set a = 1, b = 2 from t", "writes"},
      {"update t set t.[a] += 1", "writes"},
      {"update t set a.b.c = 1", "writes"},
      {"select a into b from t", "writes"},
      {"Select distinct FID into #Data from t select * from #Data", "writes #Data"},
      {"create table ##shared (a int)", "writes lasting"},
      {"set nocount on; select 1 as a", "reads NOCOUNT OFF"},
      {"SET TRANSACTION ISOLATION LEVEL READ UNCOMMITTED", "reads TRANSACTION ISOLATION LEVEL READ COMMITTED"},
      {"set nocount, xact_abort on", "reads lasting"},
      {"set dateformat dmy", "reads lasting"},
      {"set identity_insert t on", "reads lasting"},
      {"begin tran", "writes transaction"},
      {"exec p_WebBillTitleData", "writes prints transaction"},
      {"exec dbo.p_WebBillTitleData select 1 as a", "writes prints transaction"},
      {"p_WebBillTitleData", "writes prints transaction"},
      {"exec sp_executesql N'select ''#t'' as a' select 1 as a", "writes prints transaction"},
      {"exec sys.sp_executesql @stmt = N'set nocount on select 1 as a into #t'",
       "writes prints transaction NOCOUNT OFF #t"},
      {"exec sp_executesql @text", "writes prints transaction lasting"},
      {"exec('use other')", "writes prints transaction lasting"},
      {"exec [sp_setapprole] 'x'", "writes prints transaction lasting"},
      {"exec dbo.sp_setapprole 'x'", "writes prints transaction lasting"},
      {"exec msdb..[sp_x]", "writes prints transaction lasting"},
      {"sp_setapprole 'x'", "writes prints transaction lasting"},
      {"use other", "reads lasting"},
      {"declare c cursor for select 1 as a", "reads lasting"},
  };
  for (const auto& [text, wanted] : cases) EXPECT_EQ(Summary(text), wanted) << text;
}

TEST(BatchEffects, CleanUpInOneBatch) {
  BatchEffects effects;
  EXPECT_TRUE(effects.none());
  for (const char* text : {"select 1 as a into #t", "begin tran set nocount on", "set nocount on drop table #t",
                           "create table [#It's ]]] (a int)"}) {
    effects.Add(EffectsOf(text));
  }
  EXPECT_EQ(effects.CleaningBatch(),
            "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION\nSET NOCOUNT OFF\n"
            "IF OBJECT_ID(N'tempdb..[#t]') IS NOT NULL DROP TABLE [#t]\n"
            "IF OBJECT_ID(N'tempdb..[#It''s ]]]') IS NOT NULL DROP TABLE [#It's ]]]\n");
}

}  // namespace
}  // namespace tessarlorn::odbc
