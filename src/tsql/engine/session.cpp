#include "tsql/engine/session.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "platform/text.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/list_table.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/storage/database_file.h"
#include "tsql/syntax/parser.h"
#include "tsql/values/variant_datum.h"

namespace tessarlorn::tsql {
namespace {

/// The object's own name of "tempdb..#t", "dbo.t", "[t]".
std::string PlainName(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  std::string_view plain = dot == std::string_view::npos ? name : name.substr(dot + 1);
  plain = Trim(plain);
  if (plain.size() > 1 && plain.front() == '[' && plain.back() == ']') plain = plain.substr(1, plain.size() - 2);
  return std::string(plain);
}

int StorageBytes(const SqlType& type) {
  switch (type.kind) {
    case FieldType::kBit:
    case FieldType::kTinyInt:
      return 1;
    case FieldType::kSmallInt:
      return 2;
    case FieldType::kInt:
    case FieldType::kReal:
      return 4;
    case FieldType::kDecimal:
      return type.precision <= 9 ? 5 : type.precision <= 19 ? 9 : type.precision <= 28 ? 13 : 17;
    case FieldType::kDate:
      return 3;
    case FieldType::kDateTimeOffset:
      return BytesOfMoment(type.scale);
    case FieldType::kGuid:
      return 16;
    case FieldType::kChar:
    case FieldType::kVarChar:
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      return type.size == 0 ? -1 : type.size;
    case FieldType::kNChar:
    case FieldType::kNVarChar:
      return type.size == 0 ? -1 : type.size * 2;
    default:
      return 8;
  }
}

void ObjectId(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const CatalogObjectPtr object = catalog.Find(PlainName(TextOf(arguments[0])));
  if (object == nullptr) return;
  if (arguments.size() > 1) {
    const std::string kind = UpperCase(Trim(TextOf(arguments[1])));
    const char* own = object->kind == CatalogKind::kTable ? "U" : object->kind == CatalogKind::kView ? "V" : "P";
    if (kind != own) return;
  }
  sqlite3_result_int64(context, object->id);
}

// ts_ident_current(table): the last identity value that it gave, or else the first that it will give
void IdentCurrent(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const CatalogObjectPtr object = catalog.Find(PlainName(TextOf(arguments[0])));
  if (object == nullptr || object->identity_column() < 0) return;
  const std::string sql = std::string("SELECT seq FROM ") + (object->temporary ? "temp" : "main") +
                          ".sqlite_sequence WHERE name = " + QuoteText(object->name);
  const StatementHandle last = Prepare(sqlite3_context_db_handle(context), sql);
  sqlite3_result_int64(context, sqlite3_step(last.get()) == SQLITE_ROW ? sqlite3_column_int64(last.get(), 0) : 1);
}

void ColumnLength(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  if (AnyNull(arguments) || arguments.size() != 2) return;
  const CatalogObjectPtr object = catalog.Find(PlainName(TextOf(arguments[0])));
  const int column = object == nullptr ? -1 : object->FindColumn(TextOf(arguments[1]));
  if (column >= 0) sqlite3_result_int(context, StorageBytes(object->columns[static_cast<std::size_t>(column)].type));
}

using CatalogFunction = void (*)(sqlite3_context*, const Catalog&, Arguments);

template <CatalogFunction F>
void CallCatalogFunction(sqlite3_context* context, int count, sqlite3_value** values) {
  F(context, *static_cast<const Catalog*>(sqlite3_user_data(context)),
    Arguments(values, static_cast<std::size_t>(count)));
}

}  // namespace

Session::Session(DatabaseHandle database, std::chrono::milliseconds lock_timeout, std::size_t memory_limit)
    : runtime_(memory_limit),
      database_(std::move(database)),
      catalog_(database_.get()),
      plans_(names_),
      longest_wait_(lock_timeout) {
  // A value is copied three times on its way from a function to a row.
  constexpr std::size_t kCopies = 4;
  constexpr std::size_t kMostOfSqlite = 1'000'000'000;
  constexpr int kMostOperations = 10'000'000;
  sqlite3_limit(database_.get(), SQLITE_LIMIT_LENGTH,
                static_cast<int>(std::min(kMostOfSqlite, memory_limit / kCopies)));
  sqlite3_limit(database_.get(), SQLITE_LIMIT_VDBE_OP, kMostOperations);
  sqlite3_busy_handler(database_.get(), WaitForLock, this);
  RegisterFunctions(database_.get(), runtime_);
  RegisterListTable(database_.get());
  RegisterSessionFunctions();
}

Session::~Session() {
  plans_.Clear();
  procedures_.clear();
}

void Session::RegisterSessionFunctions() {
  sqlite3* database = database_.get();
  sqlite3_create_function_v2(database, "ts_object_id", -1, SQLITE_UTF8, &catalog_, CallCatalogFunction<ObjectId>,
                             nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(database, "ts_ident_current", 1, SQLITE_UTF8, &catalog_, CallCatalogFunction<IdentCurrent>,
                             nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(database, "ts_col_length", 2, SQLITE_UTF8, &catalog_, CallCatalogFunction<ColumnLength>,
                             nullptr, nullptr, nullptr);
}

void Session::Cancel() noexcept {
  runtime_.cancelled.store(true);
  sqlite3_interrupt(database_.get());
}

void Session::CheckCancelled() { runtime_.CheckCancelled(); }

int Session::WaitForLock(void* session, int times) {
  Session& self = *static_cast<Session*>(session);
  const auto now = std::chrono::steady_clock::now();
  if (times == 0) self.waiting_since_ = now;
  auto longest = std::min(self.longest_wait_, self.options_.lock_timeout.value_or(self.longest_wait_));
  if (!self.taking_write_lock_) longest = std::max<std::chrono::milliseconds>(longest, kLongestReadWait);
  if (now - self.waiting_since_ >= longest) return 0;
  if (self.runtime_.cancelled.load(std::memory_order_relaxed)) {
    self.runtime_.error = Cancelled();
    return 0;
  }
  constexpr int kLongestPause = 25;
  std::this_thread::sleep_for(std::chrono::milliseconds(std::min(times + 1, kLongestPause)));
  return 1;
}

Translator Session::MakeTranslator(Scope& scope) {
  return Translator(catalog_, *scope.frame, names_, scope.plan->lifted, scope.plan->dependencies, runtime_.memory);
}

void Session::Revalidate(Plan& plan, Frame& frame) {
  bool same = plan.identity_insert == identity_insert_;
  if (same && plan.checked_generation != catalog_.generation()) {
    for (const Dependencies::Object& object : plan.dependencies.objects) {
      const CatalogObjectPtr now = catalog_.Find(object.name);
      same = same && (now == nullptr ? std::string() : now->signature()) == object.signature;
    }
  }
  for (const Dependencies::Variable& variable : plan.dependencies.variables) {
    const Variable* now = frame.Find(variable.name);
    same = same && now != nullptr && now->type == variable.type;
  }
  plan.checked_generation = catalog_.generation();
  if (same) return;
  plan.compiled.clear();
  plan.dependencies = {};
  plan.complete = false;
  plan.identity_insert = identity_insert_;
}

Compiled& Session::CompiledStatement(const Statement& statement, Scope& scope) {
  return CompiledFor(&statement, scope, [&](Translator& translator) {
    switch (statement.kind) {
      case Statement::Kind::kInsert:
        return translator.CompileInsert(statement, EqualsIgnoreCase(identity_insert_, statement.table.name));
      case Statement::Kind::kUpdate:
        return translator.CompileUpdate(statement);
      case Statement::Kind::kDelete:
        return translator.CompileDelete(statement);
      default:
        return translator.CompileQuery(*statement.query);
    }
  });
}

Compiled& Session::CompiledCondition(const Statement& statement, Scope& scope) {
  return CompiledFor(statement.condition.get(), scope,
                     [&](Translator& translator) { return translator.CompileCondition(*statement.condition); });
}

Compiled& Session::CompiledValue(const Expression& expression, const SqlType* type, Scope& scope) {
  const auto make = [&](Translator& translator) {
    if (type == nullptr) return translator.CompileValue(expression);
    Compiled compiled = translator.CompileValue(expression, *type);
    compiled.target = *type;
    return compiled;
  };
  Compiled& compiled = CompiledFor(&expression, scope, make);
  // The arguments of a call go to parameters whose types are those of the procedure or text that it names this time.
  if (type != nullptr && compiled.target != *type) {
    Translator translator = MakeTranslator(scope);
    compiled = make(translator);
  }
  return compiled;
}

void Session::CompileTree(const Statement& statement, Scope& scope) {
  using Kind = Statement::Kind;
  try {
    switch (statement.kind) {
      case Kind::kSelect:
      case Kind::kUpdate:
      case Kind::kDelete:
        CompiledStatement(statement, scope);
        break;
      case Kind::kInsert:
        if (statement.execute == nullptr) CompiledStatement(statement, scope);
        break;
      case Kind::kIf:
      case Kind::kWhile:
        CompiledCondition(statement, scope);
        break;
      case Kind::kDeclare:
        for (const VariableDeclaration& declaration : statement.declarations) {
          if (declaration.initial != nullptr) {
            CompiledValue(*declaration.initial, &scope.frame->Get(declaration.name).type, scope);
          }
        }
        break;
      case Kind::kSet: {
        // @v += x is compiled when it runs, as it is put together then.
        const Assignment& assignment = statement.assignments[0];
        const Variable& variable = scope.frame->Get(assignment.variable);
        if (!assignment.is_compound) CompiledValue(*assignment.value, &variable.type, scope);
        break;
      }
      default:
        break;
    }
  } catch (SqlError& error) {
    error.set_line(statement.line);
    // A table that is missing now may be there when the statement's turn comes.
    if (error.number() != 208) throw;
    scope.plan->complete = false;
  }
  for (const StatementPtr& child : statement.body) CompileTree(*child, scope);
  for (const StatementPtr& child : statement.catch_body) CompileTree(*child, scope);
}

void Session::Precompile(const PlanCache::Batch& batch, Frame& frame) {
  for (const BatchStatement& entry : batch.statements) {
    // What comes behind a new definition can only be understood when that has run.
    if (entry.plan->defines) break;
    Revalidate(*entry.plan, frame);
    if (entry.plan->complete) continue;
    entry.plan->complete = true;
    Scope scope{&frame, entry.plan.get(), entry.literals, entry.lists, &batch.tokens.list_items};
    try {
      CompileTree(*entry.plan->statement, scope);
    } catch (...) {
      entry.plan->complete = false;
      throw;
    }
  }
}

void Session::Declare(const Statement& statement, Frame& frame) {
  for (const VariableDeclaration& declaration : statement.declarations) {
    frame.Declare(declaration.name, ResolveType(declaration.type, false));
  }
  for (const StatementPtr& child : statement.body) Declare(*child, frame);
  for (const StatementPtr& child : statement.catch_body) Declare(*child, frame);
}

void Session::RunBatch(std::string_view text, Frame& frame) {
  std::unique_ptr<PlanCache::Batch> batch;
  if (spare_batches_.empty()) {
    batch = std::make_unique<PlanCache::Batch>();
  } else {
    batch = std::move(spare_batches_.back());
    spare_batches_.pop_back();
  }
  struct GiveBack {
    Session& session;
    std::unique_ptr<PlanCache::Batch>& batch;
    Frame* frame;
    std::size_t used;
    ~GiveBack() {
      batch->statements.clear();
      session.runtime_.frame = frame;
      session.runtime_.memory.ReleaseTo(used);
      constexpr std::size_t kMostKept = 65536;
      const Tokens& tokens = batch->tokens;
      if (tokens.tokens.capacity() + tokens.list_items.capacity() > kMostKept) return;
      session.spare_batches_.push_back(std::move(batch));
    }
  } give_back{*this, batch, runtime_.frame, runtime_.memory.used()};
  batch->tokens.memory = &runtime_.memory;
  spare_batches_.reserve(spare_batches_.size() + 1);
  runtime_.frame = &frame;
  catalog_.Refresh();
  Understanding([&] {
    plans_.Parse(text, *batch);
    for (const BatchStatement& entry : batch->statements) {
      if (entry.plan->declares) Declare(*entry.plan->statement, frame);
    }
    Precompile(*batch, frame);
  });
  for (const BatchStatement& entry : batch->statements) {
    CheckCancelled();
    Revalidate(*entry.plan, frame);
    Scope scope{&frame, entry.plan.get(), entry.literals, entry.lists, &batch->tokens.list_items};
    if (entry.plan->writes) EnsureWrite();
    if (ExecuteGuarded(*entry.plan->statement, scope) == Flow::kReturn) break;
  }
}

void Session::ForgetNames() {
  // The shapes of plans are made of the names' numbers.
  plans_.Clear();
  names_ = NameTable();
}

/// The parameters of a command.
class Session::TypedArguments final : public CallArguments {
 public:
  TypedArguments(SqlCommand& command, DateOrder order) : command_(command), order_(order) {}

  [[nodiscard]] std::size_t size() const override { return command_.parameters.size(); }
  [[nodiscard]] std::string name(std::size_t argument) const override {
    return LowerCase(command_.parameters[argument].name);
  }
  [[nodiscard]] bool is_default(std::size_t argument) const override {
    return command_.parameters[argument].is_default;
  }
  /// By way of the type that its caller gave it.
  Datum Value(std::size_t argument, const SqlType& type) override {
    const SqlParameter& parameter = command_.parameters[argument];
    const SqlType own = ParseTypeText(LowerCase(parameter.type));
    Datum value = DatumOf(parameter.value, own, order_);
    return own == type ? value : Convert(value, own, type, StyleFor(type, 0, order_));
  }
  void TakeBack(std::size_t argument, const Datum& value, const SqlType& type) override {
    SqlParameter& parameter = command_.parameters[argument];
    if (!parameter.is_output) return;
    const SqlType own = ParseTypeText(LowerCase(parameter.type));
    parameter.value = VariantOf(Convert(value, type, own, StyleFor(own, 0, order_)), own);
  }
  void TakeStatus(std::int32_t status) override { command_.status = status; }

 private:
  SqlCommand& command_;
  DateOrder order_;
};

void Session::RunCommand(SqlCommand& command) {
  TypedArguments arguments(command, runtime_.date_order);
  if (command.is_procedure) {
    catalog_.Refresh();
    Call(ParseObjectNameText(command.text, names_), arguments);
    return;
  }
  Frame frame;
  for (std::size_t i = 0; i < command.parameters.size(); ++i) {
    const SqlType type = ParseTypeText(LowerCase(command.parameters[i].type));
    const std::string name = arguments.name(i);
    frame.Declare(name, type);
    frame.Get(name).value = arguments.Value(i, type);
  }
  RunBatch(command.text, frame);
  for (std::size_t i = 0; i < command.parameters.size(); ++i) {
    const Variable& left = frame.Get(arguments.name(i));
    arguments.TakeBack(i, left.value, left.type);
  }
}

/// Bytes of text and parameters.
std::size_t SizeOf(const SqlCommand& command) {
  std::size_t size = command.text.size();
  for (const SqlParameter& parameter : command.parameters) {
    if (const auto* text = parameter.value.get_if<std::string>()) size += text->size();
    if (const auto* bytes = parameter.value.get_if<Bytes>()) size += bytes->size();
  }
  return size;
}

void Session::Run(SqlCommand& command, bool first_only, BatchSink& sink) {
  runtime_.cancelled.store(false);
  runtime_.error.reset();
  first_error_.reset();
  try_depth_ = 0;
  call_depth_ = 0;
  caught_.clear();
  scope_identity_.reset();
  runtime_.memory.Begin(SizeOf(command));
  if (names_.size() > kMostNames) ForgetNames();
  Results results{sink, first_only};
  results_ = &results;
  bool takes_back = false;
  try {
    try {
      RunCommand(command);
    } catch (const SqlError& error) {
      takes_back = error.takes_transaction_back();
      throw;
    }
  } catch (...) {
    NoteLostTransaction();
    results_ = nullptr;
    if ((doomed_ || takes_back) && depth_ > 0) {
      EndTransaction(false);
      sink.Transaction(TransactionEvent::kRolledBack);
    } else if (depth_ == 0 && writing_) {
      // What ran before the failing statement stays. When even that cannot be committed the first error says enough.
      try {
        CommitWrite();
      } catch (const SqlError&) {
        RollbackWrite();
      }
    }
    throw;
  }
  results_ = nullptr;
  if (doomed_) {
    EndTransaction(false);
    sink.Transaction(TransactionEvent::kRolledBack);
    throw SqlError(3998,
                   "Uncommittable transaction is detected at the end of the batch. The transaction is rolled back.");
  }
  if (depth_ == 0 && writing_) CommitWrite();
  if (first_error_) throw SqlError(*first_error_);
}

void Session::Reset() {
  runtime_.cancelled.store(false);
  if (depth_ > 0 || writing_) EndTransaction(false);
  catalog_.Refresh();
  DropTemporaryTables();
  identity_insert_.clear();
  identity_.reset();
  runtime_.date_order = DateOrder::kMdy;
  options_ = {};
  row_count_ = 0;
  last_error_ = 0;
}

}  // namespace tessarlorn::tsql
