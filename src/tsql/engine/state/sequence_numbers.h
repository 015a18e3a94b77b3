// The numbers that sequences give in a session.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "tsql/engine/state/session_database.h"
#include "tsql/storage/sequence_text.h"

namespace tessarlorn::tsql {

/// While a session has the write lock nobody else takes numbers: they are counted here, and noted in the file when the
/// lock is given back, behind a rollback too. So a number is not given again.
class SequenceNumbers {
 private:
  struct Given {
    CatalogObjectPtr sequence;
    SequenceDefinition definition;
    std::optional<std::int64_t> last;
    std::set<std::int64_t> places;  // those of the row at hand that have their number
  };

 public:
  explicit SequenceNumbers(SessionDatabase& database) : database_(database) {}

  /// Numbers that are taken while it lives are given again.
  class Trial {
   public:
    explicit Trial(SequenceNumbers& numbers) : numbers_(numbers), given_(numbers.given_) {}
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;
    ~Trial() { numbers_.given_.swap(given_); }

   private:
    SequenceNumbers& numbers_;
    std::map<std::int64_t, Given> given_;
  };

  /// The next number. All places of a row get the same. Raises 11728.
  std::int64_t Next(std::string_view sequence, std::int64_t place);
  /// The last number that was given, nothing for none.
  [[nodiscard]] std::optional<std::int64_t> Last(std::int64_t sequence) const;
  /// A statement begins, and with it a new row.
  void BeginStatement();
  /// The sequence is about to be defined anew. @param restarts it forgets its last number
  void Redefine(const CatalogObject& sequence, bool restarts);

  /// Notes what was given in the open transaction.
  void Note();
  /// Behind a rollback to a save point: what was defined since then is not so any longer.
  void RollbackToSavePoint();
  /// Notes what was given behind a rollback of all; and forgets it.
  void NoteAfterRollback() noexcept;
  /// The lock is given back.
  void Forget();

 private:
  Given& Of(const CatalogObjectPtr& sequence);
  /// Whether the sequence stands in the catalog as it did then.
  [[nodiscard]] bool Stands(const Given& given) const;
  static void Advance(Given& given, std::string_view sequence);

  SessionDatabase& database_;
  std::map<std::int64_t, Given> given_;
  std::map<std::int64_t, Given> redefined_;  // as they stood before the transaction defined them anew
};

}  // namespace tessarlorn::tsql
