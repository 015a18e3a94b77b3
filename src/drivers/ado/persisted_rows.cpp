#include "drivers/ado/persisted_rows.h"

#include "drivers/ado/ado_class.h"
#include "drivers/ado/ado_error.h"

namespace tessarlorn::ado {
namespace {

com::Pointer<IAdoStream> StreamOf(std::string_view text) {
  auto stream = Create<IAdoStream>("ADODB.Stream", kStreamClass, kStreamInterface, kStreamInterfaceBefore);
  const com::OwnedBstr written(text);
  SetErrorInfo(0, nullptr);
  Check(stream->Open(LeftOut(), kModeUnknown, kStreamOptionUnspecified, nullptr, nullptr), nullptr, "Stream.Open");
  Check(stream->WriteText(written.get(), kWriteCharacters), nullptr, "Stream.WriteText");
  Check(stream->put_Position(0), nullptr, "Stream.Position");
  return stream;
}

}  // namespace

com::Pointer<IAdoRecordset> OpenPersisted(std::string_view xml) {
  auto rows = Create<IAdoRecordset>("ADODB.Recordset", kRecordsetClass, kRecordsetInterface, kRecordsetInterfaceBefore);
  const auto stream = StreamOf(xml);
  VARIANT source{};
  source.vt = VT_DISPATCH;
  source.pdispVal = stream.get();
  Check(rows->Open(source, LeftOut(), kOpenStatic, kLockBatchOptimistic, kOptionUnspecified), nullptr,
        "Recordset.Open");
  return rows;
}

}  // namespace tessarlorn::ado
