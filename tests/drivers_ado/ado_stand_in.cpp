#include "drivers_ado/ado_stand_in.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "com_base/counted.h"
#include "com_base/errors.h"
#include "com_base/plain_values.h"
#include "com_base/pointers.h"
#include "drivers/ado/ado_interfaces.h"
#include "hosts/objects/recordset/field_traits.h"
#include "platform/text/text.h"
#include "support/test_host.h"
#include "tessarlorn/connection.h"

// A member that nobody needs.
#define NOT_HERE(name, ...) \
  HRESULT STDMETHODCALLTYPE name(__VA_ARGS__) override { return E_NOTIMPL; }

namespace tessarlorn {
namespace {

using namespace ado;
using com::Pointer;

constexpr LONG kStateOpen = 1;
bool clones_are_possible = true;
constexpr LONG kLongest = 1073741823;

HRESULT AnswerText(BSTR* out, std::string_view text) {
  *out = com::NewBstr(text);
  return S_OK;
}
template <typename Target, typename Value>
HRESULT Answer(Target* out, Value value) {
  *out = static_cast<Target>(value);
  return S_OK;
}
/// A number of ADO's own.
HRESULT Refuse(std::int32_t number) { return com::ToHresult(number); }

/// With the thread's error object.
HRESULT Tell(const Error& error) {
  try {
    throw Error(error);
  } catch (const Error&) {
    com::ReportCurrent(nullptr);
    return com::CurrentStatus();
  }
}

template <typename Interface>
class Base : public com::Counted<Interface> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    const bool own = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) || Is(id);
    *out = own ? static_cast<Interface*>(this) : nullptr;
    if (!own) return E_NOINTERFACE;
    this->AddRef();
    return S_OK;
  }
  NOT_HERE(GetTypeInfoCount, UINT*)
  NOT_HERE(GetTypeInfo, UINT, LCID, ITypeInfo**)
  NOT_HERE(GetIDsOfNames, REFIID, LPOLESTR*, UINT, LCID, DISPID*)
  NOT_HERE(Invoke, DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*)

 protected:
  [[nodiscard]] virtual bool Is(REFIID /*id*/) const { return false; }
};

/// Only the index is different from one collection to the other.
template <typename Interface, typename Item>
class BaseCollection : public Base<Interface> {
 public:
  explicit BaseCollection(std::vector<Pointer<Item>> items) : items_(std::move(items)) {}
  HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override { return Answer(count, items_.size()); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, Item** item) override {
    if (index.vt != VT_I4 || index.lVal < 0 || index.lVal >= static_cast<LONG>(items_.size())) return Refuse(3265);
    return Answer(item, Pointer<Item>(items_[static_cast<std::size_t>(index.lVal)]).Release());
  }

 protected:
  std::vector<Pointer<Item>> items_;
};

class StandInError final : public Base<IAdoError> {
 public:
  explicit StandInError(Error error) : error_(std::move(error)) {}
  HRESULT STDMETHODCALLTYPE get_Number(LONG* out) override { return Answer(out, com::ToHresult(error_.number())); }
  HRESULT STDMETHODCALLTYPE get_Source(BSTR* out) override { return AnswerText(out, error_.source()); }
  HRESULT STDMETHODCALLTYPE get_Description(BSTR* out) override { return AnswerText(out, error_.description()); }
  HRESULT STDMETHODCALLTYPE get_SQLState(BSTR* out) override { return AnswerText(out, error_.native().sqlstate); }
  HRESULT STDMETHODCALLTYPE get_NativeError(LONG* out) override { return Answer(out, error_.native().number); }

 private:
  Error error_;
};

class StandInErrors final : public BaseCollection<IAdoErrors, IAdoError> {
 public:
  StandInErrors() : BaseCollection({}) {}
  void Add(const Error& error) { items_.push_back(Pointer<IAdoError>::Adopt(new StandInError(error))); }
  HRESULT STDMETHODCALLTYPE Clear() override {
    items_.clear();
    return S_OK;
  }
};

/// A value as ADO gives one of that type, in `*out`.
void PutCell(const Variant& value, const Field& field, VARIANT* out) {
  if (field.type == FieldType::kBigInt && !value.is_null()) {
    out->llVal = value.ToDecimal().ToScaled(0).value();
    out->vt = VT_I8;
  } else {
    com::ToPlainVariant(ClientValue(field, value), out);
  }
}

class StandInField final : public Base<IAdoField> {
 public:
  explicit StandInField(Field field) : field_(std::move(field)), traits_(TraitsOf(field_)) {}
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* out) override { return AnswerText(out, field_.name); }
  HRESULT STDMETHODCALLTYPE get_Type(LONG* out) override { return Answer(out, traits_.type); }
  HRESULT STDMETHODCALLTYPE get_DefinedSize(LONG_PTR* out) override {
    return Answer(out, traits_.unlimited ? std::min<LONG>(traits_.size, kLongest) : traits_.size);
  }
  HRESULT STDMETHODCALLTYPE get_Attributes(LONG* out) override {
    return Answer(out, field_.nullable ? kFieldIsNullable : 0);
  }
  HRESULT STDMETHODCALLTYPE get_Precision(BYTE* out) override { return Answer(out, traits_.precision); }
  HRESULT STDMETHODCALLTYPE get_NumericScale(BYTE* out) override { return Answer(out, traits_.scale); }

 private:
  Field field_;
  FieldTraits traits_;
};

class StandInFields final : public BaseCollection<IAdoFields, IAdoField> {
 public:
  explicit StandInFields(const std::vector<Field>& fields) : BaseCollection({}) {
    for (const Field& field : fields) items_.push_back(Pointer<IAdoField>::Adopt(new StandInField(field)));
  }
};

/// What one statement of a batch answers.
struct Step {
  /// nullptr for one without rows.
  RecordsetPtr rows = nullptr;
  /// Said before it.
  std::vector<Error> messages = {};
  std::optional<Error> failure = std::nullopt;
};

/// What a batch that has run still has to tell. The last step is its end.
class Batch {
 public:
  Batch(std::deque<Step> steps, Pointer<StandInErrors> errors) : steps_(std::move(steps)), errors_(std::move(errors)) {}
  /// The next step, nothing behind the end and for one that fails.
  std::optional<Step> Next(HRESULT* status) {
    *status = S_OK;
    errors_->Clear();
    if (steps_.empty()) return std::nullopt;
    Step step = std::move(steps_.front());
    steps_.pop_front();
    for (const Error& message : step.messages) errors_->Add(message);
    if (step.failure) {
      errors_->Add(*step.failure);
      *status = com::ToHresult(step.failure->number());
    }
    if (step.failure || steps_.empty()) return std::nullopt;
    return step;
  }

 private:
  std::deque<Step> steps_;
  Pointer<StandInErrors> errors_;
};

class StandInStream final : public Base<IAdoStream> {
 public:
  HRESULT STDMETHODCALLTYPE Open(VARIANT, LONG, LONG, BSTR, BSTR) override { return Answer(&open_, true); }
  HRESULT STDMETHODCALLTYPE WriteText(BSTR written, LONG) override {
    if (!open_) return Refuse(3704);
    text += com::ToText(written);
    return Answer(&position, text.size());
  }
  HRESULT STDMETHODCALLTYPE put_Position(LONG_PTR place) override { return Answer(&position, place); }
  std::string text;
  std::size_t position = 0;

 private:
  [[nodiscard]] bool Is(REFIID id) const override { return IsEqualIID(id, kStreamInterface); }
  bool open_ = false;
};

class StandInRecordset final : public Base<IAdoRecordset> {
 public:
  StandInRecordset() = default;
  StandInRecordset(RecordsetPtr rows, std::shared_ptr<Batch> batch, Pointer<IAdoConnection> connection)
      : rows_(std::move(rows)), batch_(std::move(batch)), connection_(std::move(connection)) {}

  [[nodiscard]] bool attached() const { return static_cast<bool>(connection_); }
  [[nodiscard]] const std::string& persisted() const { return persisted_; }

  HRESULT STDMETHODCALLTYPE Open(VARIANT source, VARIANT, LONG, LONG, LONG) override {
    const auto* const stream = static_cast<const StandInStream*>(source.pdispVal);
    persisted_ = stream->text.substr(stream->position);
    return persisted_.starts_with("<xml") ? S_OK : Tell({3000, "stand-in", "These are no rows."});
  }

  HRESULT STDMETHODCALLTYPE get_State(LONG* out) override { return Answer(out, rows_ ? kStateOpen : kStateClosed); }
  HRESULT STDMETHODCALLTYPE get_EOF(VARIANT_BOOL* out) override {
    return WithRows([&] { return Answer(out, position_ >= rows_->RecordCount() ? VARIANT_TRUE : VARIANT_FALSE); });
  }
  HRESULT STDMETHODCALLTYPE get_Fields(IAdoFields** out) override {
    return WithRows([&] { return Answer(out, static_cast<IAdoFields*>(new StandInFields(rows_->fields()))); });
  }
  HRESULT STDMETHODCALLTYPE MoveFirst() override {
    return WithRows([&] {
      position_ = 0;
      return rows_->RecordCount() == 0 ? Refuse(3021) : S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE GetRows(LONG wanted, VARIANT, VARIANT, VARIANT* out) override {
    return WithRows([&] {
      if (position_ >= rows_->RecordCount()) return Refuse(3021);
      const std::size_t left = rows_->RecordCount() - position_;
      const std::size_t count = wanted < 0 ? left : std::min(left, static_cast<std::size_t>(wanted));
      const std::vector<Field>& fields = rows_->fields();
      SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(fields.size()), 0}, {static_cast<ULONG>(count), 0}};
      out->parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
      out->vt = VT_ARRAY | VT_VARIANT;
      auto* cell = static_cast<VARIANT*>(out->parray->pvData);
      for (std::size_t row = 0; row < count; ++row, ++position_) {
        rows_->MoveTo(position_);
        for (std::size_t i = 0; i < fields.size(); ++i) PutCell(rows_->Get(i), fields[i], cell++);
      }
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE Close() override {
    return WithRows([&] {
      rows_.reset();
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE Clone(LONG, IAdoRecordset** out) override {
    if (!clones_are_possible) return kFeatureNotAvailable;
    return WithRows(
        [&] { return Answer(out, static_cast<IAdoRecordset*>(new StandInRecordset(rows_, nullptr, connection_))); });
  }
  /// Clears this one, whatever comes.
  HRESULT STDMETHODCALLTYPE NextRecordset(VARIANT*, IAdoRecordset** out) override {
    *out = nullptr;
    rows_.reset();
    if (!batch_ || !connection_) return kFeatureNotAvailable;
    HRESULT status = S_OK;
    if (std::optional<Step> step = batch_->Next(&status)) {
      *out = new StandInRecordset(std::move(step->rows), batch_, connection_);
    }
    return status;
  }
  HRESULT STDMETHODCALLTYPE putref_ActiveConnection(IDispatch* connection) override {
    if (connection != nullptr) return E_NOTIMPL;
    connection_ = {};
    return S_OK;
  }

 private:
  [[nodiscard]] bool Is(REFIID id) const override { return IsEqualIID(id, kRecordsetInterface); }
  template <typename Action>
  HRESULT WithRows(const Action& action) {
    return rows_ == nullptr ? Refuse(3704) : action();
  }

  RecordsetPtr rows_;
  std::string persisted_;
  std::size_t position_ = 0;
  std::shared_ptr<Batch> batch_;
  Pointer<IAdoConnection> connection_;
};

/// Cuts a batch's answers into steps.
class StepSink final : public BatchSink {
 public:
  void Rows(RecordsetPtr rows) override { End({.rows = std::move(rows)}); }
  void RowCount(std::int64_t /*rows*/) override { End({}); }
  void Message(std::string_view text, const NativeError& about) override {
    messages_.emplace_back(0, "stand-in", std::string(text), about);
  }
  bool StatementFailed(const Error& error) override {
    End({.failure = error});
    return true;
  }
  void End(Step step) {
    step.messages = std::exchange(messages_, {});
    steps.push_back(std::move(step));
  }
  std::deque<Step> steps;

 private:
  std::vector<Error> messages_;
};

class StandInConnection final : public Base<IAdoConnection> {
 public:
  HRESULT STDMETHODCALLTYPE Open(BSTR text, BSTR, BSTR, LONG) override {
    const std::string string = com::ToText(text);
    const std::string_view name = "Data Source=\"";
    const std::size_t start = string.find(name) + name.size();
    try {
      if (location_ != kUseClient) throw std::runtime_error("the rows are not at the client");
      connection_ = OpenConnection(string.substr(start, string.find('"', start) - start));
      return S_OK;
    } catch (const Error& error) {
      return Fail(error);
    }
  }
  HRESULT STDMETHODCALLTYPE Execute(BSTR text, VARIANT* affected, LONG options, IAdoRecordset** out) override {
    if (affected != nullptr || options != kOptionUnspecified) return E_INVALIDARG;
    return Run(out, [&](Connection& connection, StepSink& sink) { connection.ExecuteAll(com::ToText(text), sink); });
  }
  template <typename Action>
  HRESULT Run(IAdoRecordset** out, const Action& action) {
    *out = nullptr;
    if (connection_ == nullptr) return Refuse(3704);
    StepSink sink;
    try {
      action(*connection_, sink);
      sink.End({});
      // A batch whose statements all are silent answers one closed recordset.
      if (sink.steps.size() == 1 && !sink.steps.front().failure) sink.End({});
    } catch (const Error& error) {
      sink.End({.failure = error});
    }
    const auto batch = std::make_shared<Batch>(std::move(sink.steps), errors_);
    HRESULT status = S_OK;
    if (std::optional<Step> step = batch->Next(&status)) {
      *out = new StandInRecordset(std::move(step->rows), batch, Pointer<IAdoConnection>(this));
    }
    return status;
  }
  HRESULT STDMETHODCALLTYPE get_Errors(IAdoErrors** out) override {
    return Answer(out, static_cast<IAdoErrors*>(Pointer<StandInErrors>(errors_).Release()));
  }
  HRESULT STDMETHODCALLTYPE put_CursorLocation(LONG location) override { return Answer(&location_, location); }
  HRESULT STDMETHODCALLTYPE put_CommandTimeout(LONG) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE put_ConnectionTimeout(LONG) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Cancel() override {
    if (connection_ != nullptr) connection_->Cancel();
    return S_OK;
  }

 private:
  [[nodiscard]] bool Is(REFIID id) const override { return IsEqualIID(id, kConnectionInterface); }
  HRESULT Fail(const Error& error) {
    errors_->Clear();
    errors_->Add(error);
    return com::ToHresult(error.number());
  }

  LONG location_ = 0;
  std::unique_ptr<Connection> connection_;
  Pointer<StandInErrors> errors_ = Pointer<StandInErrors>::Adopt(new StandInErrors);
};

class StandInParameter final : public Base<IAdoParameter> {
 public:
  StandInParameter(LONG type, bool is_output, LONG_PTR size, const VARIANT& value)
      : sql({"", DeclarationOf(type, size), com::FromPlainVariant(value), is_output}) {}
  HRESULT STDMETHODCALLTYPE get_Value(VARIANT* out) override {
    PutCell(sql.value, FieldOfDeclaration(sql.type), out);
    return S_OK;
  }
  SqlParameter sql;

 private:
  static std::string DeclarationOf(LONG type, LONG_PTR size) {
    for (const std::string word : {"bit", "tinyint", "smallint", "int", "bigint", "real", "float", "money", "datetime",
                                   "nvarchar(max)", "varbinary(max)"}) {
      if (TraitsOf(FieldOfDeclaration(word)).type == type) return word;
    }
    return (static_cast<DataType>(type) == DataType::kVarWChar ? "nvarchar(" : "varbinary(") + std::to_string(size) +
           ")";
  }
};

class StandInParameters final : public Base<IAdoParameters> {
 public:
  HRESULT STDMETHODCALLTYPE Append(IDispatch* parameter) override {
    items.emplace_back(static_cast<StandInParameter*>(parameter));
    return S_OK;
  }
  std::vector<Pointer<StandInParameter>> items;
};

class StandInCommand final : public Base<IAdoCommand> {
 public:
  HRESULT STDMETHODCALLTYPE putref_ActiveConnection(IAdoConnection* connection) override {
    connection_ = Pointer<StandInConnection>(static_cast<StandInConnection*>(connection));
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE put_CommandText(BSTR text) override {
    text_ = com::ToText(text);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE put_CommandTimeout(LONG) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE put_CommandType(LONG type) override { return type == kStoredProcedure ? S_OK : E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateParameter(BSTR, LONG type, LONG direction, LONG_PTR size, VARIANT value,
                                            IAdoParameter** out) override {
    return Answer(out,
                  static_cast<IAdoParameter*>(new StandInParameter(type, direction == kInputAndOutput, size, value)));
  }
  HRESULT STDMETHODCALLTYPE get_Parameters(IAdoParameters** out) override {
    return Answer(out, static_cast<IAdoParameters*>(Pointer<StandInParameters>(parameters_).Release()));
  }
  HRESULT STDMETHODCALLTYPE Execute(VARIANT*, VARIANT*, LONG, IAdoRecordset** out) override {
    std::vector<SqlParameter> arguments;
    for (const auto& parameter : parameters_->items) arguments.push_back(parameter->sql);
    const HRESULT status =
        connection_->Run(out, [&](Connection& connection, StepSink& sink) { connection.Call(text_, arguments, sink); });
    for (std::size_t i = 0; i < arguments.size(); ++i) parameters_->items[i]->sql.value = arguments[i].value;
    return status;
  }

 private:
  [[nodiscard]] bool Is(REFIID id) const override { return IsEqualIID(id, kCommandInterface); }

  std::string text_;
  Pointer<StandInConnection> connection_;
  Pointer<StandInParameters> parameters_ = Pointer<StandInParameters>::Adopt(new StandInParameters);
};

template <typename Object>
class Factory final : public com::Counted<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    const bool own = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IClassFactory);
    *out = own ? this : nullptr;
    if (own) AddRef();
    return own ? S_OK : E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** out) override {
    return Pointer<Object>::Adopt(new Object)->QueryInterface(id, out);
  }
  NOT_HERE(LockServer, BOOL)
};

const StandInRecordset& Own(IDispatch* recordset) {
  void* found = nullptr;
  if (FAILED(recordset->QueryInterface(kRecordsetInterface, &found))) throw std::runtime_error("no recordset of ADO");
  // Whoever asks holds it.
  const auto own = Pointer<IAdoRecordset>::Adopt(static_cast<IAdoRecordset*>(found));
  return *static_cast<const StandInRecordset*>(own.get());
}

}  // namespace

void AdoStandIn::SetClones(bool possible) { clones_are_possible = possible; }

AdoStandIn::AdoStandIn() {
  SetClones(true);
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) throw std::runtime_error("CoInitializeEx failed");
  Register<StandInConnection>(kConnectionClass);
  Register<StandInCommand>(kCommandClass);
  Register<StandInRecordset>(kRecordsetClass);
  Register<StandInStream>(kStreamClass);
}

template <typename Object>
void AdoStandIn::Register(const GUID& class_id) {
  const auto factory = Pointer<Factory<Object>>::Adopt(new Factory<Object>);
  if (FAILED(CoRegisterClassObject(class_id, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                   &registrations_.emplace_back()))) {
    throw std::runtime_error("CoRegisterClassObject failed");
  }
}

AdoStandIn::~AdoStandIn() {
  for (const DWORD registration : registrations_) CoRevokeClassObject(registration);
  CoUninitialize();
}

bool AdoStandIn::IsAttached(IDispatch* recordset) { return Own(recordset).attached(); }

std::string AdoStandIn::Persisted(IDispatch* recordset) { return Own(recordset).persisted(); }

}  // namespace tessarlorn
