#include "tsql/syntax/token.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tsql/syntax/keywords.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

// One word a token: a letter for its kind and its text, lists with their items.
std::string Cut(std::string_view batch) {
  constexpr std::string_view kKinds = "$wqvgidfxsnlo";
  NameTable names;
  Tokens tokens;
  TokenizeBatch(batch, names, tokens);
  std::string cut;
  for (const Token& token : tokens.tokens) {
    if (token.kind == TokenKind::kEnd) break;
    cut += (cut.empty() ? "" : " ");
    cut += kKinds[static_cast<std::size_t>(token.kind)];
    if (token.kind == TokenKind::kList) {
      for (std::size_t i = 0; i < token.count; ++i) cut += ":" + std::string(tokens.list_items[token.id + i].text);
    } else {
      cut += ":" + Unquote(token);
    }
  }
  return cut;
}

SqlError FailureOf(std::string_view batch) {
  try {
    Cut(batch);
  } catch (const SqlError& error) {
    return error;
  }
  return {0, "no error"};
}

TEST(TokenTest, CutsEveryKind) {
  const struct {
    std::string batch;
    std::string tokens;
  } cases[] = {
      {"select @a,@@RowCount", "w:select v:@a o:, g:@@RowCount"},
      {"1 2.5 .5 3. 1e5 1.5E-3 0x1Ff", "i:1 d:2.5 d:.5 d:3. f:1e5 f:1.5E-3 x:0x1Ff"},
      {"1e 1else", "i:1 w:e i:1 w:else"},
      {"'a''b' N'发''货' n'x' nx", "s:a'b n:发'货 n:x w:nx"},
      {"[a]]b] [a\"\"b] \"c\"\"d\" [select]", "q:a]b q:a\"\"b q:c\"d q:select"},
      {"idx_#data_FID #t 单价 a$b", "w:idx_#data_FID w:#t w:单价 w:a$b"},
      {"a<>b!=c!<d!>e<=f>=g", "w:a o:<> w:b o:!= w:c o:!< w:d o:!> w:e o:<= w:f o:>= w:g"},
      {"a+=1-=2 a*b", "w:a o:+= i:1 o:-= i:2 w:a o:* w:b"},
      {"a--x 'y\n/* 1 /* 2 */ 3 ' */b/**/c", "w:a w:b w:c"},
      {"\xEF\xBB\xBF"
       "a\xE3\x80\x80"
       "b\xC2\xA0"
       "c\t\r\n",
       "w:a w:b w:c"},
      {"1.FID", "d:1. w:FID"},
  };
  for (const auto& [batch, tokens] : cases) EXPECT_EQ(Cut(batch), tokens) << batch;
}

TEST(TokenTest, MakesOneTokenOfAKeyList) {
  const struct {
    std::string batch;
    std::string tokens;
  } cases[] = {
      {"x IN ( 1, -2,\n3 )and", "w:x w:IN l:1:-2:3 w:and"},
      {"in('a',N'b''c','','d','e')", "w:in l:a:b''c::d:e"},
      {"in('a',N'b','c','d')", "w:in o:( s:a o:, n:b o:, s:c o:, s:d o:)"},
      {"in (1 /* one */, 2 -- two\n)", "w:in l:1:2"},
      {"in (1)", "w:in o:( i:1 o:)"},
      {"in (1,'2')", "w:in o:( i:1 o:, s:2 o:)"},
      {"in (1,2.5)", "w:in o:( i:1 o:, d:2.5 o:)"},
      {"in (1,2+3)", "w:in o:( i:1 o:, i:2 o:+ i:3 o:)"},
      {"in (1,- 2)", "w:in o:( i:1 o:, o:- i:2 o:)"},
      {"in (1,2", "w:in o:( i:1 o:, i:2"},
      {"(1,2)", "o:( i:1 o:, i:2 o:)"},
      {"[in] (1,2)", "q:in o:( i:1 o:, i:2 o:)"},
  };
  for (const auto& [batch, tokens] : cases) EXPECT_EQ(Cut(batch), tokens) << batch;
}

TEST(TokenTest, NamesAreOneWithoutRegardToCase) {
  NameTable names;
  EXPECT_EQ(names.Intern("SELECT"), static_cast<std::uint32_t>("select"_kw));
  EXPECT_LT(names.Intern("Throw"), kKeywordCount);
  const std::uint32_t id = names.Intern("FPIckingGoodsStatus");
  EXPECT_GE(id, kKeywordCount);
  EXPECT_NE(names.Intern("FPIckingGoodsStatu"), id);
  EXPECT_NE(names.Intern("@PIckingGoodsStatus"), names.Intern("`PIckingGoodsStatus"));
  EXPECT_EQ(names.Intern("ÄПЖ"), names.Intern("äпж"));
  // The table keeps its numbers when it grows.
  for (int i = 0; i < 5000; ++i) names.Intern("name" + std::to_string(i));
  EXPECT_EQ(names.Intern("fpickinggoodsstatus"), id);
  EXPECT_EQ(names.Intern("NAME4999"), names.Intern("name4999"));

  Tokens tokens;
  TokenizeBatch("[Odd]]Name] \"odd]name\" abc [ABC]", names, tokens);
  EXPECT_EQ(tokens.tokens[0].id, tokens.tokens[1].id);
  EXPECT_EQ(tokens.tokens[2].id, tokens.tokens[3].id);
}

TEST(TokenTest, CountsLines) {
  NameTable names;
  Tokens tokens;
  TokenizeBatch("a\r\n'b\nc' d /*\n*/ in (1,\n2) e", names, tokens);
  std::vector<std::uint32_t> lines;
  for (const Token& token : tokens.tokens) lines.push_back(token.line);
  EXPECT_EQ(lines, (std::vector<std::uint32_t>{1, 2, 3, 4, 4, 5, 5}));
}

TEST(TokenTest, RefusesWhatNeverEnds) {
  const struct {
    std::string batch;
    std::int32_t number;
    std::string message;
    std::uint32_t line;
  } cases[] = {
      {"delete\nselect 'abc", 105, "Unclosed quotation mark after the character string 'abc'.", 2},
      {"[abc", 105, "Unclosed quotation mark after the character string 'abc'.", 1},
      {"x in ('a','b", 105, "Unclosed quotation mark after the character string 'b'.", 1},
      {"/* /* */", 113, "Missing end comment mark '*/'.", 1},
      {"a ? b", 102, "Incorrect syntax near '?'.", 1},
      {"a ! b", 102, "Incorrect syntax near '!'.", 1},
      {"@", 102, "Incorrect syntax near '@'.", 1},
  };
  for (const auto& expected : cases) {
    const SqlError error = FailureOf(expected.batch);
    EXPECT_EQ(error.number(), expected.number) << expected.batch;
    EXPECT_EQ(error.what(), expected.message);
    EXPECT_EQ(error.line(), expected.line) << expected.batch;
  }
}

}  // namespace
}  // namespace tessarlorn::tsql
