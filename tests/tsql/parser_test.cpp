#include "tsql/syntax/parser.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

std::string Dump(const Query& query);

std::string Dump(const ExpressionPtr& expression);

std::string DumpAll(const std::vector<ExpressionPtr>& expressions) {
  std::string text;
  for (const ExpressionPtr& expression : expressions) text += " " + Dump(expression);
  return text;
}

std::string Join(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ".") + part;
  return text;
}

std::string Dump(const ExpressionPtr& expression) {
  using Kind = Expression::Kind;
  if (!expression) return "-";
  const Expression& e = *expression;
  const std::string no = e.negated ? "not-" : "";
  constexpr std::string_view kBinary = "+-*/%&|^";
  constexpr std::string_view kCompare[] = {"=", "<>", "<", "<=", ">", ">="};
  switch (e.kind) {
    case Kind::kLiteral:
      if (e.literal == LiteralKind::kNull) return "null";
      return e.literal >= LiteralKind::kString ? "'" + e.text + "'" : e.text;
    case Kind::kVariable:
    case Kind::kGlobal:
      return e.text;
    case Kind::kColumn:
      return Join(e.parts);
    case Kind::kStar:
      return e.parts.empty() ? "*" : e.parts[0] + ".*";
    case Kind::kUnary:
      return std::string("(") + "+-~"[static_cast<int>(e.unary)] + DumpAll(e.operands) + ")";
    case Kind::kBinary:
      return std::string("(") + kBinary[static_cast<std::size_t>(e.binary)] + DumpAll(e.operands) + ")";
    case Kind::kCase: {
      std::string text = "(case " + Dump(e.operands[0]);
      for (const CaseBranch& branch : e.branches) text += " " + Dump(branch.when) + ":" + Dump(branch.then);
      return text + " " + Dump(e.operands[1]) + ")";
    }
    case Kind::kCast:
    case Kind::kConvert:
      return "(to " + e.type.name + ":" + std::to_string(e.type.length) + ":" + std::to_string(e.type.scale) +
             DumpAll(e.operands) + ")";
    case Kind::kFunction: {
      std::string text = "(" + e.text + (e.distinct ? " distinct" : "");
      for (const std::string& part : e.parts) text += " #" + part;
      text += DumpAll(e.operands) + ")";
      if (e.window) text += "over[" + DumpAll(e.window->partition) + "|" + e.window->frame + "]";
      return text;
    }
    case Kind::kSubquery:
      return "{" + Dump(*e.query) + "}";
    case Kind::kCollate:
      return "(collate" + DumpAll(e.operands) + " " + e.text + ")";
    case Kind::kCompare:
      return "(" + std::string(kCompare[static_cast<std::size_t>(e.compare)]) + DumpAll(e.operands) + ")";
    case Kind::kAnd:
      return "(and" + DumpAll(e.operands) + ")";
    case Kind::kOr:
      return "(or" + DumpAll(e.operands) + ")";
    case Kind::kNot:
      return "(not" + DumpAll(e.operands) + ")";
    case Kind::kIsNull:
      return "(" + no + "null" + DumpAll(e.operands) + ")";
    case Kind::kBetween:
      return "(" + no + "between" + DumpAll(e.operands) + ")";
    case Kind::kLike:
      return "(" + no + "like" + DumpAll(e.operands) + ")";
    case Kind::kInList:
      return "(" + no + "in" + DumpAll(e.operands) + ")";
    case Kind::kInLiteralList:
      return "(" + no + "in" + DumpAll(e.operands) + " list" + std::to_string(e.list_index) + ")";
    case Kind::kInQuery:
      return "(" + no + "in" + DumpAll(e.operands) + " {" + Dump(*e.query) + "})";
    case Kind::kExists:
      return "(exists {" + Dump(*e.query) + "})";
    case Kind::kQuantified:
      return "(" + std::string(e.quantifier == Quantifier::kAll ? "all" : "any") + DumpAll(e.operands) + " {" +
             Dump(*e.query) + "})";
  }
  return "?";
}

std::string Dump(const TableSource& source) {
  constexpr std::string_view kJoins[] = {"inner", "left", "right", "full", "cross"};
  const std::string alias = source.alias.empty() ? "" : ":" + source.alias;
  switch (source.kind) {
    case TableSource::Kind::kTable:
      return (source.table.qualifier.empty() ? "" : source.table.qualifier + "/") + source.table.name + alias;
    case TableSource::Kind::kDerived:
      return "{" + Dump(*source.query) + "}" + alias;
    case TableSource::Kind::kJoin:
      return "[" + Dump(*source.left) + " " + std::string(kJoins[static_cast<std::size_t>(source.join)]) + " " +
             Dump(*source.right) + (source.on ? " on " + Dump(source.on) : "") + "]";
  }
  return "?";
}

std::string DumpFrom(const std::vector<TableSourcePtr>& from) {
  std::string text;
  for (const TableSourcePtr& source : from) text += (text.empty() ? " from " : ", ") + Dump(*source);
  return text;
}

std::string Dump(const Select& select) {
  std::string text = select.distinct ? "select distinct" : "select";
  if (select.top) text += " top" + std::string(select.top_percent ? "%" : "") + " " + Dump(select.top);
  for (const SelectItem& item : select.items) {
    text += " " + (item.variable.empty() ? "" : item.variable + ":=") + Dump(item.expression) +
            (item.alias.empty() ? "" : ":" + item.alias);
  }
  if (!select.into.name.empty()) text += " into " + select.into.name;
  text += DumpFrom(select.from);
  if (select.where) text += " where " + Dump(select.where);
  if (!select.group_by.empty()) text += " group" + DumpAll(select.group_by);
  if (select.having) text += " having " + Dump(select.having);
  return text;
}

std::string Dump(const Query& query) {
  constexpr std::string_view kOperators[] = {"", "union", "union-all", "except", "intersect"};
  std::string text;
  for (const CommonTable& table : query.with) text += "with " + table.name + "{" + Dump(*table.query) + "} ";
  if (query.select) text += Dump(*query.select);
  for (const auto& row : query.rows) text += "row(" + DumpAll(row) + ")";
  if (query.left) {
    text += "<" + Dump(*query.left) + " " + std::string(kOperators[static_cast<std::size_t>(query.set_operator)]) +
            " " + Dump(*query.right) + ">";
  }
  for (const OrderItem& item : query.order_by) text += " order " + Dump(item.expression) + (item.descending ? "-" : "");
  if (query.offset) text += " offset " + Dump(query.offset) + " fetch " + Dump(query.fetch);
  return text;
}

std::string Dump(const Statement& statement);

std::string DumpBody(const std::vector<StatementPtr>& body) {
  std::string text;
  for (const StatementPtr& statement : body) text += (text.empty() ? "" : "; ") + Dump(*statement);
  return text;
}

std::string DumpAssignments(const Statement& statement) {
  std::string text;
  for (const Assignment& assignment : statement.assignments) {
    text += " " + assignment.variable + (assignment.variable.empty() || assignment.column.empty() ? "" : "=") +
            Join(assignment.column) + (assignment.is_compound ? "op" : "") + "=" + Dump(assignment.value);
  }
  return text;
}

std::string DumpColumns(const Statement& statement) {
  std::string text;
  for (const ColumnDefinition& column : statement.column_definitions) {
    text += " " + column.name + ":" + column.type.name;
    if (column.nullable) text += *column.nullable ? " null" : " not-null";
    if (column.identity) text += " identity" + std::to_string(column.identity_seed);
    if (column.primary_key) text += " key";
    if (column.unique) text += " unique";
    if (column.default_value) text += " default<" + column.default_text + ">";
    if (column.check) text += " check<" + column.check_text + ">";
    if (column.computed) text += " as " + Dump(column.computed);
  }
  for (const TableConstraint& constraint : statement.constraints) {
    text += " +" + std::to_string(static_cast<int>(constraint.kind)) + constraint.name + "(" +
            Join(constraint.columns) + ")" + constraint.check_text + constraint.references.name;
  }
  return text;
}

std::string Dump(const Statement& s) {
  using Kind = Statement::Kind;
  std::string with;
  for (const CommonTable& table : s.with) with += "with " + table.name + " ";
  switch (s.kind) {
    case Kind::kSelect:
      return Dump(*s.query);
    case Kind::kInsert:
      return with + "insert " + s.table.name + "(" + Join(s.columns) + ") " +
             (s.query     ? Dump(*s.query)
              : s.execute ? Dump(*s.execute)
                          : "defaults");
    case Kind::kUpdate:
      return with + "update " + s.table.name + DumpAssignments(s) + DumpFrom(s.from) +
             (s.where ? " where " + Dump(s.where) : "");
    case Kind::kDelete:
      return with + "delete " + s.table.name + DumpFrom(s.from) + (s.where ? " where " + Dump(s.where) : "");
    case Kind::kDeclare: {
      std::string text = "declare";
      for (const auto& d : s.declarations)
        text += " " + d.name + ":" + d.type.name + (d.initial ? "=" + Dump(d.initial) : "");
      return text;
    }
    case Kind::kSet:
      return "set" + DumpAssignments(s);
    case Kind::kSetOption:
      return "option " + s.text + (s.flag ? " on" : "") + " " + s.text2 + s.table.name;
    case Kind::kIf:
      return "if " + Dump(s.condition) + " (" + Dump(*s.body[0]) + ")" +
             (s.body.size() > 1 ? " else (" + Dump(*s.body[1]) + ")" : "");
    case Kind::kWhile:
      return "while " + Dump(s.condition) + " (" + Dump(*s.body[0]) + ")";
    case Kind::kBlock:
      return "{" + DumpBody(s.body) + "}";
    case Kind::kReturn:
      return "return " + Dump(s.value);
    case Kind::kBreak:
      return "break";
    case Kind::kContinue:
      return "continue";
    case Kind::kPrint:
      return "print " + Dump(s.value);
    case Kind::kThrow:
      return "throw" + DumpAll(s.values);
    case Kind::kRaiseError:
      return "raise" + DumpAll(s.values);
    case Kind::kTryCatch:
      return "try{" + DumpBody(s.body) + "}catch{" + DumpBody(s.catch_body) + "}";
    case Kind::kBeginTransaction:
      return "begin-tran " + s.text;
    case Kind::kCommit:
      return "commit " + s.text;
    case Kind::kRollback:
      return "rollback " + s.text;
    case Kind::kSaveTransaction:
      return "save " + s.text;
    case Kind::kExecute: {
      std::string text =
          "exec " + s.result_variable + s.table.name + (s.text_expression ? Dump(s.text_expression) : "");
      for (std::size_t i = 0; i < s.arguments.size(); ++i) {
        text += " " + s.arguments[i].first + ":" + Dump(s.arguments[i].second) + (s.argument_outputs[i] ? "!" : "");
      }
      return text;
    }
    case Kind::kCreateTable:
      return "create " + s.table.name + DumpColumns(s);
    case Kind::kAlterTable:
      return "alter " + s.table.name + " " + std::to_string(static_cast<int>(s.alter)) + DumpColumns(s) +
             Join(s.columns);
    case Kind::kCreateIndex: {
      std::string text = std::string(s.flag ? "unique " : "") + "index " + s.text + " on " + s.table.name;
      for (const OrderItem& item : s.order) text += " " + Dump(item.expression) + (item.descending ? "-" : "");
      return text + " +" + Join(s.columns) + (s.where ? " where " + Dump(s.where) : "");
    }
    case Kind::kCreateView:
      return "view " + s.table.name + " <" + s.source_text + ">";
    case Kind::kCreateProcedure:
      return "proc " + s.table.name + " " + std::to_string(s.parameters.size()) + "{" + DumpBody(s.body) + "}";
    case Kind::kDropTable:
      return "drop " + std::to_string(s.tables.size()) + (s.if_exists ? " if" : "");
    case Kind::kDropIndex:
      return "drop-index " + s.table.name + "/" + s.text;
    default:
      return "#" + std::to_string(static_cast<int>(s.kind));
  }
}

std::vector<StatementPtr> Parse(std::string_view batch) {
  NameTable names;
  Tokens tokens;
  TokenizeBatch(batch, names, tokens);
  return ParseStatements(batch, tokens);
}

std::string ParseAndDump(std::string_view batch) { return DumpBody(Parse(batch)); }

std::string ValueOf(const std::string& text) {
  NameTable names;
  return Dump(ParseExpressionText(text, names));
}

std::string FailureOf(std::string_view batch) {
  try {
    return "parsed: " + ParseAndDump(batch);
  } catch (const SqlError& error) {
    return std::to_string(error.number()) + " " + error.what();
  }
}

TEST(ParserTest, BindsOperators) {
  const struct {
    std::string text;
    std::string tree;
  } cases[] = {
      {"1+2*3-4", "(- (+ 1 (* 2 3)) 4)"},
      {"1+2&3|4^5", "(^ (| (& (+ 1 2) 3) 4) 5)"},
      {"(1+2)*3", "(* (+ 1 2) 3)"},
      {"~1*2", "(* (~ 1) 2)"},
      {"8/-2*2", "(/ 8 (- (* 2 2)))"},
      {"-1+2", "(+ (- 1) 2)"},
      {"- -1", "(- (- 1))"},
      {"a=1 or b=2 and not c=3", "(or (= a 1) (and (= b 2) (not (= c 3))))"},
      {"(a=1 or b=2) and (c)=3", "(and (or (= a 1) (= b 2)) (= c 3))"},
      {"a between 1 and 2 and b=1", "(and (between a 1 2) (= b 1))"},
      {"a not like 'x!%' + @y escape '!'", "(not-like a (+ 'x!%' @y) '!')"},
      {"not a is not null", "(not (not-null a))"},
      {"a !< 1 and b > = 2 and c < > 3", "(and (>= a 1) (>= b 2) (<> c 3))"},
      {"a in (1,2) and b not in (1,'2') and c in (select 1)", "(and (in a 1 2) (not-in b 1 '2') (in c {select 1}))"},
      {"a > all (select b from t)", "(all a {select b from t})"},
      {"((select 1)) + ((select 2) + 3)", "(+ {select 1} (+ {select 2} 3))"},
      {"case a when null then '' else b end", "(case a null:'' b)"},
      {"case when a=1 then 'Y' end", "(case - (= a 1):'Y' -)"},
      {"cast(a as decimal(23, 0))", "(to decimal:23:0 a)"},
      {"convert(nvarchar(max),@d,120)", "(to nvarchar:-1:-2 @d 120)"},
      {"convert(varchar,@d)", "(to varchar:-2:-2 @d -)"},
      {"count(distinct a)+count(*)", "(+ (count distinct a) (count *))"},
      {"dateadd(Month,1,@d)", "(dateadd #month 1 @d)"},
      {"left(right(a,2),1)", "(left (right a 2) 1)"},
      {"iif(a>1,2,3)", "(iif (> a 1) 2 3)"},
      {"sum(a) over (partition by b order by c rows 3 preceding)",
       "(sum a)over[ b|ROWS BETWEEN 3 PRECEDING AND CURRENT ROW]"},
      {"a collate Chinese_PRC_CI_AS + 'x'", "(+ (collate a Chinese_PRC_CI_AS) 'x')"},
      {"db.dbo.t.a + [t].[select]", "(+ dbo.t.a t.select)"},
      {"@@ROWCOUNT", "@@rowcount"},
      {"current_timestamp", "(current_timestamp)"},
  };
  for (const auto& [text, tree] : cases) EXPECT_EQ(ValueOf(text), tree) << text;
}

TEST(ParserTest, ReadsQueries) {
  const struct {
    std::string batch;
    std::string tree;
  } cases[] = {
      {"select a x, b as y, z = c, d 'w', e as N'v', t.*, * from s.t", "select a:x b:y c:z d:w e:v t.* * from s/t"},
      {"select status, value type, text as date from first", "select status value:type text:date from first"},
      {"select top (5) percent a from t order by a desc", "select top% 5 a from t order a-"},
      {"select a from t1 with(nolock) left outer join t2 (nolock) on t1.a=t2.a, t3 x with (index(ix), rowlock)",
       "select a from [t1 left t2 on (= t1.a t2.a)], t3:x"},
      {"select * from a join b join c on 1=1 on 2=2 cross join d",
       "select * from [[a inner [b inner c on (= 1 1)] on (= 2 2)] cross d]"},
      {"select * from (a join (select 1 as b) c on 1=1)", "select * from [a inner {select 1:b}:c on (= 1 1)]"},
      {"select * from ((select 1) union (select 2)) t(a)", "select * from {<select 1 union select 2>}:t"},
      {"select * from (values (1,'a'),(2,'b')) v(x,y)", "select * from {row( 1 'a')row( 2 'b')}:v"},
      {"select 1 union select 2 intersect select 3 except select 4 order by 1",
       "<<select 1 union <select 2 intersect select 3>> except select 4> order 1"},
      {";with c(n) as (select 1 union all select n+1 from c) select * from c option (maxrecursion 0, recompile)",
       "with c{<select 1 union-all select (+ n 1) from c>} select * from c"},
      {"select distinct a into #d from tempdb..#t group by a having count(*)>1 order by a offset 5 rows fetch next 2 rows only",
       "select distinct a into #d from tempdb../#t group a having (> (count *) 1) order a offset 5 fetch 2"},
      {"select @s=@s+a, @n += 1 from t", "select @s:=(+ @s a) @n:=(+ @n 1) from t"},
      {"select *, identity(int,1,1) as i into #x from y", "select * (identity 1 1):i into #x from y"},
  };
  for (const auto& [batch, tree] : cases) EXPECT_EQ(ParseAndDump(batch), tree) << batch;
}

TEST(ParserTest, ReadsStatements) {
  const struct {
    std::string batch;
    std::string tree;
  } cases[] = {
      {"declare @a int set @a=1 if @a=1 select @a as a;;select 2 as b",
       "declare @a:int; set @a=1; if (= @a 1) (select @a:a); select 2:b"},
      {"if 1=1 if 2=2 print 1 else print 2", "if (= 1 1) (if (= 2 2) (print 1) else (print 2))"},
      {"if 1=1 begin select 1; end; else select 2", "if (= 1 1) ({select 1}) else (select 2)"},
      {"while 1=1 begin break continue end return select 1", "while (= 1 1) ({break; continue}); return -; select 1"},
      {"update m set @v=a, a+=@n, @w=t.b=c, @x=a where b=1", "update m @v=a aop=@n @w=t.b=c @x=a where (= b 1)"},
      {"update top (2) t with(rowlock) set t.a |= 4 from w t join l on 1=1",
       "update t t.aop=4 from [w:t inner l on (= 1 1)]"},
      {"delete l where a=1 delete from l delete t from l t", "delete l where (= a 1); delete l; delete t from l:t"},
      {"insert w (a,b) values (1,null),(2,'x') insert into w select 1 insert w default values insert w exec p 1",
       "insert w(a.b) row( 1 null)row( 2 'x'); insert w() select 1; insert w() defaults; insert w() exec p :1"},
      {"insert into w (select 1)", "insert w() select 1"},
      {"with c as (select 1 a) delete from c", "with c delete c"},
      {"p_nothing 1, @b = 'x', c", "exec p_nothing :1 @b:'x' :'c'"},
      {"exec @r = dbo.p @a output, -1, default exec('select '+@s)", "exec @rp :@a! :(- 1) :-; exec (+ 'select ' @s)"},
      {"begin try select 1 end try begin catch throw end catch throw 50001,'m',1",
       "try{select 1}catch{throw}; throw 50001 'm' 1"},
      {"begin tran t1 save tran s rollback tran s commit work begin transaction rollback",
       "begin-tran t1; save s; rollback s; commit ; begin-tran ; rollback "},
      {"set nocount on set ansi_nulls, quoted_identifier off set transaction isolation level read uncommitted",
       "option nocount on ; {option ansi_nulls ; option quoted_identifier }; option isolation read uncommitted"},
      {"set identity_insert t on set lock_timeout 100", "option identity_insert on t; option lock_timeout "},
      {"raiserror ('x %d',16,1,@n) with nowait", "raise 'x %d' 16 1 @n"},
      {"create unique nonclustered index ix on t (a, b desc) include (c) where a is not null drop index ix on t",
       "unique index ix on t a b- +c where (not-null a); drop-index t/ix"},
      {"create table t (a int identity(5,1) not null primary key clustered, b varchar(9) default ('x''') null unique,"
       " c int constraint df default 0 check (c>'0'), d as a+1, e int references u(x), constraint pk primary key (a asc))",
       "create t a:int not-null identity5 key b:varchar null unique default<('x''')> c:int default<0> check<c>'0'> "
       "d: as (+ a 1) e:int +4df(c) +3(e)u +0pk(a)"},
      {"alter table t add x int null, y bit alter table t add constraint d default 'x' for a alter table t drop column x,y",
       "alter t 0 x:int null y:bit; alter t 1 +4d(a)'x'; alter t 2x.y"},
      {"create or alter view v as select [a] from t where b in ('x','y') ;",
       "view v <create or alter view v as select [a] from t where b in ('x','y')>"},
      {"create procedure p @a int = 5, @b nvarchar(10) output as begin select @a end select 2",
       "proc p 2{{select @a}; select 2}"},
      {"drop table if exists a, b drop proc p", "drop 2 if; drop 1"},
  };
  for (const auto& [batch, tree] : cases) EXPECT_EQ(ParseAndDump(batch), tree) << batch;
}

TEST(ParserTest, NamesTheFault) {
  const struct {
    std::string batch;
    std::string failure;
  } cases[] = {
      {"select from where", "156 Incorrect syntax near the keyword 'from'."},
      {"select 1 as a foo", "102 Incorrect syntax near 'foo'."},
      {"select (1", "102 Incorrect syntax near '1'."},
      {"if 1=1", "102 Incorrect syntax near '1'."},
      {"begin end", "156 Incorrect syntax near the keyword 'end'."},
      {"select a from (select 1 as a)", "102 Incorrect syntax near ')'."},
      {"select (a=1) from t", "102 Incorrect syntax near '='."},
      {"select a from t where a",
       "4145 An expression of non-boolean type specified in a context where a condition is "
       "expected, near 'a'."},
      {"select a from t where (a=1)+1=2", "102 Incorrect syntax near '='."},
      {"select sum(*) from t", "102 Incorrect syntax near '*'."},
      {"select * from t with(nosuch)",
       "321 \"nosuch\" is not a recognized table hints option. If it is intended as a "
       "parameter to a table-valued function or to the CHANGETABLE function, ensure "
       "that your database compatibility mode is set to 90."},
      {"set nosuch on", "195 'nosuch' is not a recognized SET option."},
      {"select dateadd('day',1,a)", "1023 Invalid parameter 1 specified for dateadd."},
      {"select 1 create view v as select 1", "111 'CREATE VIEW' must be the first statement in a query batch."},
      {"select * from (select 1 as a into #t) t", "156 Incorrect syntax near the keyword 'into'."},
  };
  for (const auto& [batch, failure] : cases) {
    EXPECT_EQ(FailureOf(batch).substr(0, failure.size()), failure) << batch;
  }
}

TEST(ParserTest, RefusesByName) {
  const struct {
    std::string batch;
    std::string feature;
  } cases[] = {
      {"select 1 as a for xml path", "FOR XML"},
      {"select * from t cross apply u", "CROSS APPLY"},
      {"select * from t pivot (sum(a) for b in (1,2)) p", "PIVOT"},
      {"select * from f(1) x", "The table-valued function f"},
      {"select dbo.f(1)", "The function dbo.f"},
      {"select 1 group by rollup (a)", "ROLLUP"},
      {"declare @t table (a int)", "A table variable"},
      {"declare c cursor for select 1", "A cursor"},
      {"merge t using u on 1=1", "MERGE"},
      {"delete t output deleted.a into u", "OUTPUT … INTO"},
      {"create trigger x on t", "CREATE TRIGGER"},
      {"grant select on t to u", "GRANT"},
      {"create table t (a int references u(a) on delete cascade)", "ON DELETE CASCADE"},
  };
  for (const auto& [batch, feature] : cases) {
    EXPECT_EQ(FailureOf(batch), "40000 " + feature + " is not supported by the embedded database.") << batch;
  }
}

std::string Repeat(std::string_view text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

TEST(ParserTest, LimitsNesting) {
  // What may repeat without end, and how often it stands within the limit.
  const struct {
    std::string head;
    std::string link;
    std::string middle;
    std::string tail;
    int deep_enough;
  } cases[] = {
      {"select ", "(", "1", ")", 190},
      {"select ", "- ", "1", "", 190},
      {"select 1 where ", "not ", "1=1", "", 190},
      {"select ", "abs(", "1", ")", 190},
      {"select ", "(select ", "1", ")", 60},
      {"select * from ", "(select * from ", "t", ") x", 60},
      {"select * from ", "(", "a join b on 1=1", ")", 60},
      {"", "begin ", "select 1", " end", 190},
      {"", "if 1=1 ", "select 1", "", 190},
      {"select 1", "+1", "", "", 400},
      {"select 1", " union all select 1", "", "", 400},
      {"select * from t", " cross join t", "", "", 400},
  };
  for (const auto& [head, link, middle, tail, deep_enough] : cases) {
    EXPECT_NO_THROW(Parse(head + Repeat(link, deep_enough) + middle + Repeat(tail, deep_enough))) << link;
    EXPECT_EQ(FailureOf(head + Repeat(link, 100000) + middle + Repeat(tail, 100000)).substr(0, 4), "191 ") << link;
  }
  // Chains within parentheses add up: the tree would be deeper than either limit.
  EXPECT_EQ(FailureOf("select " + Repeat("(", 20) + "1" + Repeat(Repeat("+1", 100) + ")", 20)).substr(0, 4), "191 ");
  // Conditions side by side do not nest.
  EXPECT_NO_THROW(Parse("select 1 where 1=1" + Repeat(" or 1=1", 20000)));
}

TEST(ParserTest, NumbersLiteralsPerStatement) {
  const auto statements = Parse(
      "select top 3 cast('a' as varchar(9)), 7 'x' from t where b in (1,2) and c=null and d in (3,4) and e=5 select 8");
  const Select& first = *statements[0]->query->select;
  EXPECT_EQ(first.top->literal_index, 0);
  EXPECT_EQ(first.items[0].expression->operands[0]->literal_index, 1);
  // The 9 of the type is number 2, the alias number 4.
  EXPECT_EQ(first.items[1].expression->literal_index, 3);
  EXPECT_EQ(first.where->operands[0]->list_index, 0);
  EXPECT_EQ(first.where->operands[1]->operands[1]->literal_index, -1);
  EXPECT_EQ(first.where->operands[2]->list_index, 1);
  EXPECT_EQ(first.where->operands[3]->operands[1]->literal_index, 5);
  EXPECT_EQ(statements[1]->query->select->items[0].expression->literal_index, 0);
}

TEST(ParserTest, ReadsEveryServerCase) {
  std::ifstream file(TESSARLORN_TEST_DATA "/sqlserver_cases.json");
  const nlohmann::json cases = nlohmann::json::parse(file);
  constexpr int kSyntaxErrors[] = {102, 105, 156};
  int parsed = 0;
  for (const auto& one : cases) {
    for (const auto& batch : one["batches"]) {
      const auto sql = batch["sql"].get<std::string>();
      const auto errors = batch.value("error", std::vector<int>());
      const bool refused = std::any_of(errors.begin(), errors.end(), [&](int number) {
        return std::find(std::begin(kSyntaxErrors), std::end(kSyntaxErrors), number) != std::end(kSyntaxErrors);
      });
      try {
        EXPECT_FALSE(Parse(sql).empty());
        EXPECT_FALSE(refused) << sql;
        ++parsed;
      } catch (const SqlError& error) {
        EXPECT_NE(std::find(errors.begin(), errors.end(), error.number()), errors.end()) << sql << "\n" << error.what();
      }
    }
  }
  EXPECT_GT(parsed, 100);
}

}  // namespace
}  // namespace tessarlorn::tsql
