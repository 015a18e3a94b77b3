// The built command, run as a user runs it, on a database file with sample orders.
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "support/shell.h"
#include "support/temporary_folder.h"
#include "tessarlorn/operations.h"
#include "tessarlorn/version.h"

namespace tessarlorn::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

struct Told {
  int status = -1;
  std::string out;
  std::string err;
};

class CommandTest : public testing::Test {
 protected:
  CommandTest() { UseDatabase("orders.db"); }
  static void SetUpTestSuite() {
    UseDatabase("orders.db");
    ASSERT_EQ(Run("init").status, 0);
    ASSERT_EQ(Run("seed --orders 60").status, 0);
  }
  static void UseDatabase(const std::string& name) {
    const std::string dsn = "Connect={Embedded=" + File(name) + "};User=16394;Client=10.0.0.5";
    ASSERT_EQ(setenv("TESSARLORN_DSN", dsn.c_str(), 1), 0);
  }
  static std::string File(const std::string& name) {
    static const TemporaryFolder folder;
    return folder.file(name);
  }
  /// @param words as the shell takes them, with redirections of its input if need be
  /// @param before stands before the command in the shell's line
  static Told Run(const std::string& words, const std::string& before = "") {
    const Outcome shell = RunLine("{ " + before + " '" TESSARLORN_COMMAND "' " + words + "\n} 2>'" + File("err") + "'");
    return {shell.status, shell.text, ReadFile(File("err"))};
  }
  /// The same, interrupted once it has printed a text to its standard error.
  static Told Interrupt(const std::string& words, const std::string& behind) {
    return Run(words + " & until grep -q '" + behind + "' '" + File("err") +
               "'; do sleep 0.01; done; kill -INT $!; wait $!; exit $?");
  }
  static nlohmann::json Query(const std::string& text) {
    return nlohmann::json::parse(Run("sql --json \"" + text + "\"").out);
  }
  /// The key of an order in this state.
  static std::string Order(int status) {
    return Query("select top 1 FID from IC_Web2ERPOrders where FOrderStatus=" + std::to_string(status))[0]["FID"]
        .dump();
  }
};

TEST_F(CommandTest, HelpsAtEveryLevel) {
  const std::string page = Run("man").out;
  for (const std::string command : {"", "init", "seed", "ops", "call", "sql", "check", "backup", "restore", "serve",
                                    "user", "user set", "token add", "role", "man", "completion"}) {
    EXPECT_THAT(page, HasSubstr(command.empty() ? ".SH EXIT STATUS\n" : ".SS tessarlorn " + command)) << command;
    const Told help = Run(command + " --help");
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_THAT(help.out, AllOf(HasSubstr("Example"), HasSubstr("tessarlorn " + command))) << command;
    EXPECT_EQ(help.err, "") << command;
  }
  EXPECT_EQ(Run("version").out, std::string("tessarlorn ") + kVersion + "\n");
  EXPECT_EQ(Run("--version").out, Run("version").out);
}

TEST_F(CommandTest, IsCompletedByBash) {
  const std::string script = File("completion");
  ASSERT_EQ(Run("completion bash >'" + script + "'").status, 0);
  for (const auto& [line, words] :
       {std::pair{"che", "check"},
        {"--dsn check res", "restore"},
        {"call --no", "--no-transaction"},
        {"call GetList", "GetListData GetListBySQL"},
        {"call --csv ConfirmBill dctPara.FPick", "dctPara.FPickManNumber= dctPara.FPickRem="},
        {"call clsGetData.GetWeightByFID --columns F", "FID FWeight"},
        {"user re", "remove"},
        {"token revoke --us", "--user"},
        {"sql --file che", ""}}) {
    EXPECT_EQ(RunLine("bash -c '. \"" + script + "\"; COMP_LINE=\"tessarlorn " + line +
                      "\"; COMP_POINT=${#COMP_LINE}; _tessarlorn; echo ${COMPREPLY[@]}'")
                  .text,
              words + std::string("\n"))
        << line;
  }
}

TEST_F(CommandTest, TellsSoundFilesFromDamagedOnes) {
  const std::string copy = File("copy.db");
  ASSERT_EQ(Run("backup '" + copy + "'").status, 0);
  EXPECT_EQ(nlohmann::json::parse(Run("check --json --dsn 'Embedded=" + copy + "'").out)["Faults"].size(), 0U);
  std::fstream(copy, std::ios::in | std::ios::out).seekp(4096 * 3) << std::string(20000, 'Z');
  const Told damaged = Run("check --dsn 'Embedded=" + copy + "'");
  EXPECT_EQ(damaged.status, 1);
  EXPECT_THAT(damaged.out, HasSubstr("copy.db is damaged:\n"));
  const Told refused = Run("restore '" + copy + "'");
  EXPECT_EQ(refused.status, 3);
  EXPECT_THAT(refused.err, HasSubstr("Native: 824"));
}

TEST_F(CommandTest, NamesWhatIsWrongWithACallAndDoesNothing) {
  const std::string folder = File("");
  std::ofstream(File("malformed.sql")) << "select 'a\xff' A";
  std::ofstream(File("broken.json")) << "{\"dctPara\":\n {\"FID\" 1}}";
  struct Case {
    std::string words;
    std::string fault;
    std::string help = "--help' explains the command.\n";
  };
  for (const Case& item : {
           Case{"", "tessarlorn: no command given"},
           Case{"cal GetListData", "tessarlorn: unknown command cal; did you mean call?"},
           Case{"ops --jsn", "tessarlorn ops: unknown option --jsn; did you mean --json?"},
           Case{"ops GetListDat", "tessarlorn ops: unknown operation GetListDat; did you mean GetListData?"},
           Case{"call", "tessarlorn call: OPERATION is required"},
           Case{"call Delivery dctPara.Fid=1", "tessarlorn call: dctPara has no key Fid; did you mean FID?",
                "\n'tessarlorn ops Delivery' explains the operation.\n"},
           Case{"call clsSaveData.Delivery FID=1", "tessarlorn call: Delivery has no argument FID",
                "\n'tessarlorn ops Delivery' explains the operation.\n"},
           Case{"call GetListData Filter={} --columns FIDD", "tessarlorn call: the result has no column FIDD"},
           Case{"call Delivery --args '" + File("broken.json") + "'", "broken.json:2:9: syntax error"},
           Case{"call Delivery --args nowhere.json", "cannot read nowhere.json: No such file or directory"},
           Case{"call Delivery --json --csv", "--json excludes --csv"},
           Case{"seed --orders many", "--orders"},
           Case{"token lst", "tessarlorn token: unknown command lst; did you mean list?"},
           Case{"user add ann --erp-user 7 --role picer",
                "tessarlorn user add: unknown role picer; did you mean picker?"},
           Case{"sql", "tessarlorn sql: give the text to run"},
           Case{"call GetListData --dsn ''", "--dsn: the connection string is empty"},
           Case{"--dsn '' sql 'select 1 A'", "--dsn: the connection string is empty"},
           Case{"call GetListData --args '" + folder + "'", "cannot read " + folder + ": it is a folder"},
           Case{"sql --file '" + folder + "'", "cannot read " + folder + ": it is a folder"},
           Case{"sql - <'" + folder + "'", "cannot read standard input: "},
           Case{"sql --file '" + folder + "/malformed.sql'", "malformed.sql: it is neither UTF-8 nor UTF-16"},
           Case{"call ConfirmBill \"$(printf 'dctPara.FPickRem=a\\377b')\"",
                "\"dctPara.FPickRem=a\xEF\xBF\xBD"
                "b\" is not valid UTF-8"},
       }) {
    const Told outcome = Run(item.words);
    EXPECT_EQ(outcome.status, 2) << item.words;
    EXPECT_THAT(outcome.err, AllOf(HasSubstr(item.fault), HasSubstr(item.help))) << item.words;
    EXPECT_EQ(outcome.out, "") << item.words;
  }
  EXPECT_THAT(Run("init", "TESSARLORN_DSN=").err, HasSubstr("no connection string"));
}

TEST_F(CommandTest, ShowsEveryOperationOnThePageWithAnExampleThatWorks) {
  const std::string page = Run("ops --markdown").out;
  EXPECT_EQ(page, ReadFile(TESSARLORN_SOURCE_ROOT "/docs/operations.md")) << "tessarlorn ops --markdown writes it anew";
  for (const Operation* const operation : Operations()) {
    const std::string signature =
        "\n\n`" + std::string(ClassName(operation->service)) + "." + std::string(operation->name);
    EXPECT_NE(page.find(signature + (operation->property ? " As" : "(")), std::string::npos) << signature;
  }
  // The first line of the page's first commands names the database.
  const std::size_t begin = page.find("export ");
  const std::string before = "mkdir -p '" + File("page") + "'; cd '" + File("page") +
                             "'; tessarlorn() { '" TESSARLORN_COMMAND "' \"$@\"; }\n" +
                             page.substr(begin, page.find('\n', begin) - begin + 1);
  for (std::size_t at = 0; (at = page.find("```sh\n", at)) != std::string::npos;) {
    at += 6;
    const std::string lines = page.substr(at, page.find("```\n", at) - at);
    EXPECT_LE(RunLine(before + lines).status, 1) << lines;
    at += lines.size() + 4;
  }
}

TEST_F(CommandTest, ExplainsEveryOperation) {
  const nlohmann::json all = nlohmann::json::parse(Run("ops --json").out);
  ASSERT_EQ(all.size(), Operations().size());
  const std::string list = Run("ops").out;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Operation& operation = *Operations()[i];
    const std::string name = std::string(ClassName(operation.service)) + "." + std::string(operation.name);
    EXPECT_EQ(all[i]["name"], operation.name);
    EXPECT_THAT(list, HasSubstr("  " + std::string(operation.name)));
    const Told text = Run("ops " + name);
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.out, StartsWith(name));
    for (const Argument& argument : operation.arguments()) {
      for (const Key& key : argument.keys) EXPECT_THAT(text.out, HasSubstr("    " + std::string(key.name) + " "));
    }
  }
}

TEST_F(CommandTest, TellsByItsStatusWhatCameOfACall) {
  const std::string order = Order(2);
  const Told list = Run("call GetListData Filter.FOrderStatus=2 Filter.WebOrderMaxDisplayCount=3 --json");
  EXPECT_EQ(list.status, 0) << list.err;
  EXPECT_EQ(nlohmann::json::parse(list.out).size(), 3U);
  EXPECT_THAT(Run("call GetListData Filter.WebOrderMaxDisplayCount=1 --csv --columns FID,FOrderID").out,
              testing::MatchesRegex("FID,FOrderID\r\n[0-9]+,[^\r]+\r\n"));
  EXPECT_THAT(Run("call NewGetWeightByFID sFID=" + order).out, HasSubstr("\nFWeight  "));

  const Told nothing = Run("call GetListData");
  EXPECT_EQ(nothing.status, 1);
  EXPECT_EQ(nothing.out, "Nothing\n");
  EXPECT_EQ(Run("call ConfirmBill --json").out, "false\n");
  EXPECT_EQ(Run("call lPickGoodsCount sDsn=").status, 1);
  EXPECT_EQ(Run("call GetListData Filter.FOrderStatus=99").status, 0) << "an empty recordset is an answer";

  const Told raised = Run("call GetEntryData dctParameters.FID=x1");
  EXPECT_EQ(raised.status, 3);
  EXPECT_EQ(raised.out, "");
  EXPECT_EQ(raised.err,
            "Number: -2147217900 (0x80040E14)\nSource: TessarLornPickingAndDelivery.clsGetData.GetEntryData\n"
            "Description: Invalid column name 'x1'.\nNative: 207\nSQLSTATE: 42S22\n");
}

TEST_F(CommandTest, ReadsJsonAndKeepsItsDigits) {
  const std::string order = Order(2);
  const std::string code =
      Query("select FUniqueCode from IC_Web2ERPOrders where FID=" + order)[0]["FUniqueCode"].dump();
  EXPECT_EQ(Run("call SetUpLogisticsNumber --args -", "echo '{\"dctPara\":{\"" + code + "\":\"SF 1\"}}' |").status, 0);
  EXPECT_EQ(Run("call SaveLogWeight 'vctPara=[{\"FID\":" + order +
                ",\"FWeight\":12345678.0125,\"FLogisticsCost\":0,\"FWeighttingMan\":7,\"FWeighttingStatus\":1}]'")
                .status,
            0);
  EXPECT_EQ(Run("sql --csv 'select FLogisticsOrder,FWeight from IC_Web2ERPOrders where FID=" + order + "'").out,
            "FLogisticsOrder,FWeight\r\nSF 1,12345678.0125\r\n");
}

TEST_F(CommandTest, RunsACallInATransactionUnlessTold) {
  std::filesystem::copy_file(File("orders.db"), File("damaged.db"));
  UseDatabase("damaged.db");
  const std::string order = Order(14);
  const std::string status = "select FOrderStatus from IC_Web2ERPOrders where FID=" + order;
  // The operation changes the orders before it fails on their lines.
  const std::string call = "call BackToThePreviousStep dctPara.UpdateFlag=True dctPara.FID=" + order;
  ASSERT_EQ(Run("sql 'drop table IC_Web2ERPOrdersEntry'").status, 0);
  EXPECT_EQ(Run(call).status, 3);
  EXPECT_EQ(Query(status)[0]["FOrderStatus"], 14);
  EXPECT_EQ(Run(call + " --no-transaction").status, 3);
  EXPECT_EQ(Query(status)[0]["FOrderStatus"], 6);
}

TEST_F(CommandTest, ShowsStatementsAndMessagesAsTheyCome) {
  EXPECT_EQ(Run("--show-sql sql \"select 1 A\"").err, "select 1 A\n");
  const Told told = Run("sql \"print 'half way'; select 1 A\" --csv");
  EXPECT_EQ(told.err, "half way\n");
  EXPECT_EQ(told.out, "A\r\n1\r\n");
  const Told shown = Run("call UpdateDeliveryData sFID=1,2 --show-sql");
  EXPECT_EQ(shown.status, 0);
  EXPECT_THAT(shown.err, AllOf(HasSubstr("VALUES (1,1,'')\r\n"), HasSubstr("VALUES (2,1,'')\r\n")));
}

TEST_F(CommandTest, RunsBatchesUpToTheFirstError) {
  std::ofstream(File("batches.sql")) << "select 1 A; select 'x' B\nGO\nselect 2 A where 1=0\ngo\n"
                                        "select * from Nowhere\nGO\nselect 3 A\n";
  const Told outcome = Run("sql --file '" + File("batches.sql") + "'");
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, "A\n-\n1\n(1 row)\n\nB\n-\nx\n(1 row)\n\nA\n-\n(0 rows)\n");
  EXPECT_THAT(outcome.err, AllOf(StartsWith("Number: -2147217865 (0x80040E37)\n"), HasSubstr("\nNative: 208\n")));
  EXPECT_EQ(Run("sql - --json", "printf 'select 1 A\\nGO\\nselect 2 A' |").out,
            "[\n  {\"A\":1}\n]\n[\n  {\"A\":2}\n]\n");
}

TEST_F(CommandTest, EndsWithAnErrorWhenItsOutputIsLost) {
  const Told full = Run("ops >/dev/full");
  EXPECT_EQ(full.status, 4);
  EXPECT_THAT(full.err, HasSubstr("cannot write to standard output"));
  EXPECT_EQ(Run("ops >&-").status, 4);
  // The reader is gone before the command writes.
  const std::string gone = "'" + File("gone") + "'";
  EXPECT_THAT(
      Run("ops; echo $? >&2; } | { exec <&-; echo >" + gone + "; }", "mkfifo " + gone + "; { read line <" + gone + ";")
          .err,
      AllOf(HasSubstr("cannot write to standard output: Broken pipe\n"), HasSubstr("\n4\n")));
}

TEST_F(CommandTest, IsInterrupted) {
  const Told told = Interrupt(
      "sql \"insert t_Stock (FItemID) values (76) print 'begun' declare @n int = 0 while 1=1 set @n = @n + 1\"",
      "begun");
  EXPECT_EQ(told.err, "begun\ntessarlorn: interrupted\n");
  EXPECT_EQ(told.status, 130);
  EXPECT_EQ(Query("select count(*) n from t_Stock where FItemID = 76")[0]["n"], 1) << "what came before stays";
}

// An operation that swallows its errors takes the end of its batch for an answer.
TEST_F(CommandTest, CommitsNothingOfACallThatIsInterrupted) {
  std::filesystem::copy_file(File("orders.db"), File("interrupted.db"));
  UseDatabase("interrupted.db");
  ASSERT_EQ(Run("sql 'drop procedure p_WebBillTitleData'").status, 0);
  ASSERT_EQ(Run("sql \"create procedure p_WebBillTitleData as insert t_Stock (FItemID) values (77) print 'begun' "
                "declare @n int = 0 while 1=1 set @n = @n + 1\"")
                .status,
            0);
  EXPECT_EQ(Interrupt("call ExeP_WebBillTitleData", "begun").status, 130);
  EXPECT_EQ(Query("select count(*) n from t_Stock where FItemID = 77")[0]["n"], 0);
}

TEST_F(CommandTest, IsInterruptedWhileItPrints) {
  constexpr std::size_t kWhole = 60 * 60 * 200;
  const std::string fifo = "'" + File("fifo") + "'";
  for (const std::string form : {"", " --csv", " --json"}) {
    // What a pipe does not hold stays to be written until the reader goes on, behind the signal.
    const Told outcome = Run("sql \"select replicate('x', 200) X from IC_Web2ERPOrders a, IC_Web2ERPOrders b\"" + form +
                                 " >" + fifo + " & { head -c 1; kill -INT $!; cat; } <" + fifo + "; wait $!; exit $?",
                             "rm -f " + fifo + "; mkfifo " + fifo + ";");
    EXPECT_EQ(outcome.err, "tessarlorn: interrupted\n") << form;
    EXPECT_EQ(outcome.status, 130) << form;
    EXPECT_LT(outcome.out.size(), kWhole / 2) << form;
  }
}

}  // namespace
}  // namespace tessarlorn::cli
