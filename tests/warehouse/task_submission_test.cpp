#include <gmock/gmock.h>

#include "support/batches.h"
#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

using testing::StartsWith;

const std::string kSource = " TessarLornPickingAndDelivery.clsSaveData.";

class TaskSubmissionTest : public SampleTest {
 protected:
  std::string Tasks() {
    return Read(
        "select FTaskId,FTaskType,FTaskName,FWebTplType,FWebTplID,FProgressPer,FUserName,FStatus,FPriority from "
        "TPLTaskFlow");
  }
};

TEST_F(TaskSubmissionTest, SubmitsOrdersThatAreNotSubmittedYet) {
  Run("insert into IC_Web2ERPOrdersEx(FID,FLotNumber,FTplStatus) values "
      "(1,'L1','0'),(2,'L2','2'),(3,'L3','1'),(4,'L4',''),(5,'L5',null),(7,'L7','0')");
  EXPECT_TRUE(save().SubMitTplOrderTask(dsn_, "1,2,3,4,5,6", 3, "Li"));
  EXPECT_EQ(Read("select FID,FLotNumber,FTplStatus from IC_Web2ERPOrdersEx order by FID"),
            "1|L1|3|2|L2|3|3|L3|1|4|L4||5|L5|null|6||3|7|L7|0|");
  EXPECT_EQ(Read("select FOrderID,FSerialNumber from IC_Web2ERPOrdersEx where FID=6 and FCreateDate is not null"),
            "||");
  EXPECT_EQ(Read("select FTaskType,FTaskName,FWebTplType,FWebTplID,FProgressPer,FUserName,FStatus,FPriority from "
                 "TPLTaskFlow where FRefreshTime is not null"),
            "130|1,2,3,4,5,6|3||0|Li|0|10|");
}

TEST_F(TaskSubmissionTest, KeepsTheBatchesBeforeAFailingOne) {
  EXPECT_EQ(Raised([&] { save().SubMitTplOrderTask(dsn_, KeysTo(301, 160), 3, "Li", "W1"); }),
            "-2147217900" + kSource + "SubMitTplOrderTask");
  EXPECT_EQ(Read("select count(*),max(FID) from IC_Web2ERPOrdersEx where FTplStatus='3'"), "150|150|");
  EXPECT_EQ(Read("select FWebTplID from TPLTaskFlow"), "W1|");
}

TEST_F(TaskSubmissionTest, SubmitsLinesOfPurchaseAndSalesOrders) {
  Run(R"(
insert into POOrderEntry(FInterID,FEntryID,FTplEStatus,FTplEFail) values (1,1,'0','old'),(1,2,'3','old'),(2,1,'','old')
insert into SEOrderEntry(FInterID,FEntryID,FTplEStatus,FTplEFail) values (1,1,'','old'),(9,1,'0','old'))");
  EXPECT_EQ(save().SubMitPorTask(dsn_, "T1", "1", 3, "20", "Li", "t1.FInterID=1 or t1.FEntryID=9", 71), "");
  EXPECT_EQ(Tasks(), "T1|120|1|3|20|0|Li|0|10|");
  EXPECT_EQ(Read("select FTplEStatus,FTplEFail,FTplEflat,FTplEStock from POOrderEntry where FTplEFail=''"), "3||3|20|");
  EXPECT_EQ(Read("select count(*) from SEOrderEntry where FTplEFail=''"), "0|");
  EXPECT_EQ(save().SubMitPorTask(dsn_, "T2", "9", 3, "20", "Li", "t1.FInterID=9", 81), "");
  EXPECT_EQ(Read("select FInterID,FTplEStatus from SEOrderEntry where FTplEFail=''"), "9|3|");
  EXPECT_EQ(Read("select FTaskType from TPLTaskFlow where FTaskId='T2'"), "160|");

  EXPECT_EQ(Raised([&] { save().SubMitPorTask(dsn_, "T3", "1", 3, "20", "Li", "1=1", 72); }),
            "-2147217865" + kSource + "SubMitPorTask");
  EXPECT_EQ(Read("select FTaskType from TPLTaskFlow where FTaskId='T3'"), "0|");
  EXPECT_EQ(save().SubMitPorTask(dsn_, "T4", "", 3, "20", "Li", "1=1", 71), "");
  EXPECT_EQ(Read("select count(*) from TPLTaskFlow"), "3|");
}

TEST_F(TaskSubmissionTest, ClearsOnePurchaseOrder) {
  Run(R"(
insert into POOrder(FInterID,FBillNo,FTplStatus,FTplFail,FTplflat,FTplStock) values (1,'P1','3','f','3','20')
insert into POOrder(FInterID,FBillNo,FTplStatus,FTplFail,FTplflat,FTplStock) values (2,'P2','3','f','3','20')
insert into POOrderEntry(FInterID,FEntryID,FTplEStatus,FTplEFail,FTplEflat,FTplEStock)
  values (1,1,'3','f','3','20'),(1,2,'3','f','3','20'),(2,1,'3','f','3','20'))");
  EXPECT_TRUE(save().ClearTplFieldInfo(dsn_, "P1"));
  EXPECT_EQ(Read("select FBillNo,FTplStatus,FTplFail,FTplflat,FTplStock from POOrder order by FBillNo"),
            "P1|||||P2|3|f|3|20|");
  EXPECT_EQ(Read("select FInterID,FTplEStatus,FTplEFail,FTplEflat,FTplEStock from POOrderEntry order by FInterID"),
            "1|||||1|||||2|3|f|3|20|");
}

TEST_F(TaskSubmissionTest, StoresTheDownloadSchemeOnlyWhereTheSettingIs) {
  Run("delete from IC_SynchSetting");
  EXPECT_TRUE(save().DownloadWebTpls(dsn_, 2));
  EXPECT_EQ(Read("select * from IC_SynchSetting"), "");
  Run("insert into IC_SynchSetting(FSettingName,FSettingValue) values ('DownloadWebTpls','1'),('Other','1')");
  EXPECT_TRUE(save().DownloadWebTpls(dsn_, 2));
  EXPECT_EQ(Read("select FSettingName,FSettingValue from IC_SynchSetting order by FSettingName"),
            "DownloadWebTpls|2|Other|1|");
}

TEST_F(TaskSubmissionTest, TellsWhetherATaskHasEnded) {
  Run(R"(
insert into TPLTaskFlow(FTaskId,FTaskType,FTaskName,FWebTplType,FWebTplID,FStatus)
  values ('T1',120,'1,2',3,'20',0),('T2',120,'1,2',3,'20',2),('T3',160,'5',3,'20',2),('T4',120,'6',3,'20',1))");
  const std::tuple<const char*, const char*, const char*, const char*, std::int32_t> cases[] = {
      {"", "T2", "", "", -1},    {"1,2", "T1", "3", "20", 0}, {"1,2", "", "3", "20", -1},
      {"1,2", "", "4", "20", 0}, {"1,2", "", "3", "21", 0},   {"5", "", "3", "20", 0},
      {"6", "", "3", "20", 0},   {"", "T9", "", "", 0},       {"", "", "3", "20", 0}};
  for (const auto& [name, id, type, warehouse, answer] : cases) {
    EXPECT_EQ(get().GetPurchaseTaskInfo(dsn_, name, id, type, warehouse), answer) << name << " " << id;
  }
  EXPECT_EQ(get().GetPurchaseTaskInfo("", "1,2", "T2", "3", "20"), 0);
}

using TaskTextTest = RecordingTest;

TEST_F(TaskTextTest, SendsTheTaskAtTheHeadOfTheFirstBatch) {
  for (const BatchCase& c : kBatchCases) {
    Events().clear();
    EXPECT_TRUE(save_.SubMitTplOrderTask(kDsn, KeysTo(c.keys), 3, "Li", "W1"));
    EXPECT_EQ(CountsOf("IF EXISTS (", Events()), c.blocks);
    EXPECT_EQ(Events().size(), c.blocks.size());
    EXPECT_THAT(Events().front(), StartsWith(" INSERT TPLTaskFlow  ("));
    EXPECT_EQ(CountsOf("INSERT TPLTaskFlow", Events()), std::vector<int>{1});
  }
}

}  // namespace
}  // namespace tessarlorn
