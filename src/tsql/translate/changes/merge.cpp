#include "tsql/translate/changes/merge.h"

#include <string_view>

#include "platform/text/text.h"
#include "tsql/translate/changes/assignments.h"
#include "tsql/translate/changes/insert.h"
#include "tsql/translate/changes/output.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/queries/query.h"
#include "tsql/translate/queries/source.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

using Match = MergeStatement::Match;

class MergeTranslator {
 public:
  MergeTranslator(Translation& translation, const MergeStatement& merge, bool identity_insert)
      : translation_(translation),
        merge_(merge),
        identity_insert_(identity_insert),
        change_(translation, merge.output) {}

  Compiled Translate();

 private:
  /// The rows that a branch may take, but for those that an earlier one takes.
  Clauses ClausesOf(Match match) const;
  void Add(const MergeStatement::Branch& branch);

  Translation& translation_;
  const MergeStatement& merge_;
  bool identity_insert_;
  StagedChange change_;
  std::string with_;
  Target target_;
  Scope target_scope_;
  Scope source_scope_;
  Scope both_;
  std::string target_sql_;
  std::string source_sql_;
  std::string on_;
  std::string taken_[3];  // by Match: " AND NOT …" for each branch before
};

Clauses MergeTranslator::ClausesOf(Match match) const {
  Clauses clauses;
  clauses.with = with_;
  clauses.target = target_;
  const bool joins = std::holds_alternative<Join>(merge_.source->node);
  const std::string source = joins ? "(" + source_sql_ + ")" : source_sql_;
  const std::string joined = " JOIN " + source + " ON " + on_;
  switch (match) {
    case Match::kMatched:
      clauses.scope.sources = both_.sources;
      clauses.from = " FROM " + target_sql_ + " INNER" + joined;
      clauses.where = " WHERE true";
      break;
    case Match::kNotMatched:
      clauses.scope.sources = source_scope_.sources;
      clauses.from = " FROM " + source + " LEFT JOIN " + target_sql_ + " ON " + on_;
      clauses.where = " WHERE " + target_.row + " IS NULL";
      break;
    case Match::kNotMatchedBySource:
      clauses.scope.sources = both_.sources;
      // OUTPUT may name the source.
      for (std::size_t i = target_scope_.sources.size(); i < both_.sources.size(); ++i) {
        for (SourceColumn& column : clauses.scope.sources[i].OwnColumns()) column.sql = "NULL";
      }
      clauses.from = " FROM " + target_sql_;
      clauses.where =
          " WHERE " + target_.row + " NOT IN (SELECT " + target_.row + " FROM " + target_sql_ + " INNER" + joined + ")";
  }
  clauses.where += taken_[static_cast<std::size_t>(match)];
  return clauses;
}

void MergeTranslator::Add(const MergeStatement::Branch& branch) {
  Clauses clauses = ClausesOf(branch.match);
  std::string& taken = taken_[static_cast<std::size_t>(branch.match)];
  constexpr std::string_view kAll = " AND false";
  if (taken.ends_with(kAll)) {
    throw SqlError(5324,
                   "In a MERGE statement, a 'WHEN MATCHED' clause with a search condition cannot appear after a "
                   "'WHEN MATCHED' clause with no search condition.",
                   15);
  }
  if (branch.condition != nullptr) {
    const std::string condition = "(" + translation_.Condition(*branch.condition, clauses.scope) + ")";
    clauses.where += " AND " + condition;
    taken += " AND " + condition + " IS NOT TRUE";
  } else {
    taken += kAll;
  }
  if (const auto* update = std::get_if<MergeStatement::Update>(&branch.action)) {
    Assignments assignments(translation_, clauses);
    assignments.Translate(update->assignments);
    change_.Update(clauses, assignments.sets());
  } else if (const auto* insert = std::get_if<MergeStatement::Insert>(&branch.action)) {
    const auto values =
        InsertedValues(translation_, target_.table, insert->columns, insert->values, identity_insert_, clauses.scope);
    change_.Insert(clauses, values);
  } else {
    change_.Delete(clauses);
  }
}

Compiled MergeTranslator::Translate() {
  translation_.merges = true;
  with_ = TranslateWith(translation_, merge_.with, nullptr);
  for (const CommonTable& table : merge_.with) {
    if (EqualsIgnoreCase(table.name, merge_.target.name.name)) RaiseUnsupported("MERGE into a common table expression");
  }
  target_.table = translation_.Lookup(merge_.target.name);
  if (target_.table->kind == CatalogKind::kView) RaiseUnsupported("MERGE into the view '" + target_.table->name + "'");
  RequireTable(*target_.table);
  target_.alias = merge_.target.shown_name();
  target_.row = QuoteName(target_.alias) + "._rowid_";
  target_sql_ = TranslateTable(translation_, merge_.target, target_scope_);
  source_sql_ = TranslateSource(translation_, *merge_.source, source_scope_);
  both_ = target_scope_;
  for (const Source& source : source_scope_.sources) AddSource(both_, source);
  on_ = "(" + translation_.Condition(*merge_.on, both_) + ")";
  change_.TakeRowsOnce();
  for (const MergeStatement::Branch& branch : merge_.branches) Add(branch);
  Compiled compiled = change_.Finish();
  compiled.verb = "MERGE";
  compiled.changed_table = target_.table->name;
  return compiled;
}

}  // namespace

Compiled CompileMerge(Translation& translation, const MergeStatement& merge, bool identity_insert) {
  return MergeTranslator(translation, merge, identity_insert).Translate();
}

}  // namespace tessarlorn::tsql
