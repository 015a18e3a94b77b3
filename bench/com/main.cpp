// What automation costs above the C++ calls behind it. The library has to be registered; run it under Windows or Wine.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "com_base/pointers.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/embedded_driver.h"
#include "tessarlorn/error.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn::bench {
namespace {

using Work = std::function<void()>;
using com::Pointer;

constexpr const char* kDatabase = "Embedded=:memory:bench";
constexpr int kRows = 10000;
constexpr int kColumns = 100;

double Microseconds(const Work& work, int rounds) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < rounds; ++i) work();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count() / rounds;
}

/// Medians of so many repetitions, run in turns.
std::vector<double> Medians(const std::vector<Work>& works, int rounds, int repetitions) {
  std::vector<std::vector<double>> times(works.size());
  for (int repetition = 0; repetition < repetitions; ++repetition) {
    for (std::size_t i = 0; i < works.size(); ++i) times[i].push_back(Microseconds(works[i], rounds));
  }
  std::vector<double> medians;
  for (std::vector<double>& own : times) {
    std::sort(own.begin(), own.end());
    medians.push_back(own[own.size() / 2]);
  }
  return medians;
}

void Check(HRESULT status, const char* what) {
  if (FAILED(status)) throw Error(status, "com_bench", std::string(what) + " failed");
}

Pointer<IDispatch> Create(const wchar_t* prog_id) {
  CLSID class_id{};
  void* created = nullptr;
  Check(CLSIDFromProgID(prog_id, &class_id), "CLSIDFromProgID");
  Check(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &created), "CoCreateInstance");
  return Pointer<IDispatch>::Adopt(static_cast<IDispatch*>(created));
}

DISPID Number(IDispatch* object, const wchar_t* name) {
  std::wstring text(name);
  LPOLESTR names = text.data();
  DISPID id = DISPID_UNKNOWN;
  Check(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id), "GetIDsOfNames");
  return id;
}

/// @param arguments in the reverse order, as automation has them
void Call(IDispatch* object, DISPID id, VARIANT* arguments, UINT count, VARIANT* result) {
  DISPPARAMS parameters = {arguments, nullptr, count, 0};
  Check(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters, result,
                       nullptr, nullptr),
        "Invoke");
}

void Put(com::OwnedVariant& target, std::string_view text) {
  target.get().vt = VT_BSTR;
  target.get().bstrVal = com::NewBstr(text);
}

/// A function of an object's vtable, as a compiled client binds to it. @param arguments their types in C++
template <typename... Arguments>
class Bound {
 public:
  Bound(IDispatch* object, DISPID id) {
    Pointer<ITypeInfo> late;
    Pointer<ITypeInfo> info;
    HREFTYPE partner = 0;
    Check(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, late.Receive()), "GetTypeInfo");
    Check(late->GetRefTypeOfImplType(static_cast<UINT>(-1), &partner), "GetRefTypeOfImplType");
    Check(late->GetRefTypeInfo(partner, info.Receive()), "GetRefTypeInfo");
    FUNCDESC* function = nullptr;
    for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &function)); ++i) {
      const bool found = function->memid == id && (function->invkind & (INVOKE_FUNC | INVOKE_PROPERTYGET)) != 0;
      if (found) slot_ = static_cast<std::size_t>(function->oVft) / sizeof(void*);
      info->ReleaseFuncDesc(function);
      if (found) return;
    }
    Check(DISP_E_MEMBERNOTFOUND, "GetFuncDesc");
  }
  void operator()(IDispatch* object, Arguments... arguments) const {
    using Function = HRESULT(STDMETHODCALLTYPE*)(IDispatch*, Arguments...);
    Check((*reinterpret_cast<Function* const*>(object))[slot_](object, arguments...), "The vtable's function");
  }

 private:
  std::size_t slot_ = 0;
};

/// The rows of a query as a recordset object.
Pointer<IDispatch> Query(IDispatch* reads, const std::string& sql) {
  com::OwnedVariant texts[2];
  Put(texts[0], sql);
  Put(texts[1], kDatabase);
  VARIANT arguments[2] = {texts[0].get(), texts[1].get()};
  com::OwnedVariant rows;
  Call(reads, Number(reads, L"ExecuteSQL"), arguments, 2, &rows.get());
  return Pointer<IDispatch>(rows.get().vt == VT_DISPATCH ? rows.get().pdispVal : nullptr);
}

Dictionary EightKeys() {
  Dictionary dictionary;
  dictionary.SetValue("sDSN", kDatabase);
  dictionary.SetValue("FID", "1");
  for (const char* const key : {"FA", "FB", "FC", "FD", "FE", "FF"}) dictionary.SetValue(key, "some value");
  return dictionary;
}

Pointer<IDispatch> EightKeys(const wchar_t* prog_id) {
  Pointer<IDispatch> dictionary = Create(prog_id);
  const DISPID add = Number(dictionary.get(), L"Add");
  for (const auto& [key, value] : EightKeys()) {
    com::OwnedVariant texts[2];
    Put(texts[0], value.ToText());
    Put(texts[1], key);
    VARIANT arguments[2] = {texts[0].get(), texts[1].get()};
    Call(dictionary.get(), add, arguments, 2, nullptr);
  }
  return dictionary;
}

void MeasureCalls(clsGetData& native, IDispatch* reads) {
  constexpr int kRounds = 2000;
  constexpr int kRepetitions = 9;
  const Dictionary keys = EightKeys();
  const DISPID id = Number(reads, L"bExistStock");
  const auto call = [&](const Pointer<IDispatch>& dictionary) {
    return [&, dictionary] {
      VARIANT argument{};
      argument.vt = VT_DISPATCH;
      argument.pdispVal = dictionary.get();
      VARIANT result{};
      Call(reads, id, &argument, 1, &result);
      if (result.vt != VT_BOOL) Check(DISP_E_TYPEMISMATCH, "bExistStock");
    };
  };
  const Bound<IDispatch*, VARIANT_BOOL*> early(reads, id);
  const Pointer<IDispatch> own = EightKeys(L"Mirel.Dictionary");
  const auto call_early = [&] {
    VARIANT_BOOL exists = VARIANT_FALSE;
    early(reads, own.get(), &exists);
  };
  const std::vector<double> times = Medians({[&] { static_cast<void>(native.bExistStock(&keys)); }, call(own),
                                             call(EightKeys(L"Scripting.Dictionary")), call_early},
                                            kRounds, kRepetitions);
  std::printf(
      "| bExistStock, eight keys, own dictionary - C++ call | %.2f us | %.2f us | %.2f us more | <= 30 us more |\n",
      times[1], times[0], times[1] - times[0]);
  std::printf(
      "| bExistStock, eight keys, the platform's dictionary - C++ call | %.2f us | %.2f us | %.2f us more | |\n",
      times[2], times[0], times[2] - times[0]);
  std::printf(
      "| bExistStock, eight keys, through the vtable - C++ call | %.2f us | %.2f us | %.2f us more | <= 0.6 us more |\n",
      times[3], times[0], times[3] - times[0]);
}

std::string WideTable() {
  std::string columns;
  std::string values;
  for (int i = 0; i < kColumns; ++i) {
    constexpr const char* kTypes[] = {" int", " nvarchar(40)", " decimal(19,4)", " datetime"};
    constexpr const char* kValues[] = {"123456", "N'some text of an order'", "1234.5678", "'2026-11-21 18:45:10'"};
    columns += (i == 0 ? "F" : ", F") + std::to_string(i) + kTypes[i % 4];
    values += std::string(i == 0 ? "" : ", ") + kValues[i % 4];
  }
  std::string sql = "create table Wide (" + columns + ")\ninsert into Wide values (" + values + ")\n";
  for (int rows = 1; rows < kRows; rows *= 2) sql += "insert into Wide select * from Wide\n";
  return sql;
}

/// Every value by rs.Fields(i).Value, row by row.
void ReadFields(IDispatch* rows) {
  const DISPID fields = Number(rows, L"Fields");
  const DISPID next = Number(rows, L"MoveNext");
  for (int row = 0; row < kRows; ++row) {
    for (int column = 0; column < kColumns; ++column) {
      VARIANT index{};
      index.vt = VT_I4;
      index.lVal = column;
      com::OwnedVariant field;
      com::OwnedVariant value;
      Call(rows, fields, &index, 1, &field.get());
      Call(field.get().pdispVal, DISPID_VALUE, nullptr, 0, &value.get());
    }
    Call(rows, next, nullptr, 0, nullptr);
  }
}

/// The same through the vtables: rs.Fields, Item(i), Value.
void ReadFieldsEarly(IDispatch* rows) {
  Pointer<IDispatch> fields;
  const Bound<IDispatch**> get_fields(rows, DISPID_VALUE);
  get_fields(rows, fields.Receive());
  const Bound<VARIANT, IDispatch**> get_item(fields.get(), DISPID_VALUE);
  const Bound<> next(rows, Number(rows, L"MoveNext"));
  VARIANT index{};
  index.vt = VT_I4;
  Pointer<IDispatch> field;
  get_item(fields.get(), index, field.Receive());
  const Bound<VARIANT*> get_value(field.get(), DISPID_VALUE);
  for (int row = 0; row < kRows; ++row) {
    get_fields(rows, fields.Receive());
    for (index.lVal = 0; index.lVal < kColumns; ++index.lVal) {
      com::OwnedVariant value;
      get_item(fields.get(), index, field.Receive());
      get_value(field.get(), &value.get());
    }
    next(rows);
  }
}

void ReadNative(Recordset& rows) {
  std::size_t numbers = 0;
  for (rows.MoveFirst(); !rows.eof(); rows.MoveNext()) {
    for (std::size_t column = 0; column < rows.fields().size(); ++column)
      numbers += rows.Get(column).is_number() ? 1 : 0;
  }
  if (numbers == 0) Check(E_FAIL, "Reading");
}

/// An array as GetRows answers for the wide table, with numbers in the place of all that is no text: what the system
/// itself takes for the array and its texts.
void MakeBareArray() {
  constexpr wchar_t kText[] = L"some text of an order";
  SAFEARRAYBOUND bounds[2] = {{kColumns, 0}, {kRows, 0}};
  com::OwnedVariant values;
  values.get().parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  values.get().vt = VT_ARRAY | VT_VARIANT;
  auto* cell = static_cast<VARIANT*>(values.get().parray->pvData);
  for (int i = 0; i < kRows * kColumns; ++i, ++cell) {
    const bool text = i % 4 == 1;
    cell->vt = text ? VT_BSTR : VT_I4;
    if (text) cell->bstrVal = SysAllocStringLen(kText, static_cast<UINT>(std::size(kText) - 1));
  }
}

void MeasureReading(clsGetData& native, IDispatch* reads) {
  constexpr int kRepetitions = 5;
  const std::string sql = "select top " + std::to_string(kRows) + " * from Wide";
  const auto get_rows = [](IDispatch* rows) {
    com::OwnedVariant values;
    Call(rows, Number(rows, L"GetRows"), nullptr, 0, &values.get());
  };
  const RecordsetPtr own = native.ExecuteSQL(kDatabase, sql);
  const Pointer<IDispatch> rows = Query(reads, sql);
  const DISPID first = Number(rows.get(), L"MoveFirst");
  const std::vector<double> times =
      Medians({[&] { ReadNative(*native.ExecuteSQL(kDatabase, sql)); }, [&] { get_rows(Query(reads, sql).get()); },
               [&] { ReadFields(Query(reads, sql).get()); }, [&] { ReadNative(*own); },
               [&] {
                 Call(rows.get(), first, nullptr, 0, nullptr);
                 get_rows(rows.get());
               },
               [&] {
                 Call(rows.get(), first, nullptr, 0, nullptr);
                 ReadFields(rows.get());
               },
               [&] {
                 Call(rows.get(), first, nullptr, 0, nullptr);
                 ReadFieldsEarly(rows.get());
               },
               MakeBareArray},
              1, kRepetitions);
  const auto line = [](const char* what, double ours, double against, const char* wanted = "<= 2 x") {
    std::printf("| %s | %.1f ms | %.1f ms | %.2f x | %s |\n", what, ours / 1000, against / 1000, ours / against,
                wanted);
  };
  line("10,000 x 100, query and GetRows : query and Recordset::Get", times[1], times[0]);
  line("10,000 x 100, query and rs.Fields(i).Value : query and Recordset::Get", times[2], times[0]);
  line("10,000 x 100, GetRows alone : Recordset::Get alone", times[4], times[3]);
  line("10,000 x 100, the system's part of it : Recordset::Get alone", times[7], times[3], "");
  line("10,000 x 100, rs.Fields(i).Value alone : Recordset::Get alone", times[5], times[3], "<= 4 x");
  line("10,000 x 100, rs.Fields(i).Value through the vtable : Recordset::Get alone", times[6], times[3], "<= 3 x");
}

void MeasureAll() {
  Host host;
  AddEmbeddedDriver(host);
  clsGetData native(host);
  const Pointer<IDispatch> reads = Create(L"TessarLornPickingAndDelivery.clsGetData");
  for (const std::string& sql :
       {std::string("create table IC_Web2ERPOrdersEntry (FID int primary key, FStockID int)"), WideTable()}) {
    static_cast<void>(native.ExecuteSQL(kDatabase, sql));
    static_cast<void>(Query(reads.get(), sql));
  }
  std::printf("| work | ours | against | result | wanted |\n|---|---|---|---|---|\n");
  MeasureCalls(native, reads.get());
  MeasureReading(native, reads.get());
}

}  // namespace
}  // namespace tessarlorn::bench

int main() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  int status = 0;
  try {
    tessarlorn::bench::MeasureAll();
  } catch (const tessarlorn::Error& error) {
    std::fprintf(stderr, "%s: %s (0x%08X)\n", error.source().c_str(), error.what(),
                 static_cast<unsigned>(error.number()));
    status = 1;
  }
  CoUninitialize();
  return status;
}
