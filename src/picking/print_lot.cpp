// Print lots: a number for each run of prints, and the place of each order in its run.
#include "picking/print_lot.h"

#include "frame/call_frame.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"
#include "picking/contracts.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {
namespace {

/// IC_MaxNum keeps the month that the counter belongs to, ICMaxNum the last number handed out. Blanks at line ends are
/// part of the text.
constexpr std::string_view kReserve = R"(
SET NOCOUNT ON
declare @Num as int
declare @MaxNum as int 
declare @YearMoth as nvarchar(20) 
declare @maxLotNumber as nvarchar(50) 
set @YearMoth=CONVERT(VARCHAR(6),GETDATE(),112) 
set @Num={count}
--判断打印批次的年月前缀
if not exists(select 1 from IC_MaxNum where FTableName='PrintOrderLotNumber')
begin 
        --不存在时记录下来
        insert into IC_MaxNum(FTableName,FUserID,FNumber,FFlag)
        values('PrintOrderLotNumber',16394,CONVERT(VARCHAR(6),GETDATE(),112),1)
        --初始化流水号
        --判断订单中是否存在当前月的批次号，如果存在，则在基础上+1 
        if not exists(select 1  from IC_Web2ERPOrdersEx  where FLotNumber like ''+ @YearMoth +'%')
           set @Num=1
        else 
        begin
           Select  @maxLotNumber=max(convert(decimal,CASE FLotNumber WHEN '' THEN '0' ELSE FLotNumber END   )) from IC_Web2ERPOrdersEx where FLotNumber like '' +@YearMoth+'%'
           set @maxLotNumber=SUBSTRING(@maxLotNumber,7,LEN(@maxLotNumber)-6)
           set @Num=@maxLotNumber+1
        end
        if not exists(select 1 from ICMaxNum where FTableName='PrintOrderLotNumber')
        begin
                insert into ICMaxNum(FTableName,FMaxNum)
                values('PrintOrderLotNumber',@Num)
        end
        else
        begin
                update ICMaxNum set FMaxNum=@Num where FTableName='PrintOrderLotNumber'
        end
        set @MaxNum=@Num
end
else
begin
        set @MaxNum=0
        --当天不存在年月前缀时,初始化打印批次
        if not exists(SELECT 1 from IC_MaxNum where FTableName='PrintOrderLotNumber' AND FNumber=CONVERT(VARCHAR(6),GETDATE(),112))
        begin
                update IC_MaxNum set FNumber=CONVERT(VARCHAR(6),GETDATE(),112) where FTableName='PrintOrderLotNumber'
                 --判断订单中是否存在当前月的批次号，如果存在，则在基础上+1 
                if not exists(select 1  from IC_Web2ERPOrdersEx with(nolock) where FLotNumber like ''+ @YearMoth +'%')
                   update ICMaxNum set FMaxNum=0 where FTableName='PrintOrderLotNumber'
                else 
                   begin
                       Select  @maxLotNumber=max(convert(decimal,CASE FLotNumber WHEN '' THEN '0' ELSE FLotNumber END   )) from IC_Web2ERPOrdersEx where FLotNumber like '' +@YearMoth+'%'
                       set @maxLotNumber=SUBSTRING(@maxLotNumber,7,LEN(@maxLotNumber)-6)
                       update ICMaxNum set FMaxNum=@maxLotNumber where FTableName='PrintOrderLotNumber'
                   end
        end
        if not exists(select 1 from ICMaxNum where FTableName='PrintOrderLotNumber')
        begin
                insert into ICMaxNum(FTableName,FMaxNum)
                values('PrintOrderLotNumber',@Num)
                set @MaxNum=1
        end
        else
        begin
                update ICMaxNum set @MaxNum=FMaxNum,FMaxNum=FMaxNum+@Num where FTableName='PrintOrderLotNumber'
        end
        set @MaxNum=@MaxNum+1
end
select @MaxNum as MaxNum
)"_sql;

}  // namespace

double GetPrintOrderLotNumber(Connection& connection, std::int32_t count) {
  return UnderSource("GetPrintOrderLotNumber", [&] {
    TextBuilder text;
    text.Append(kReserve, {{"count", count}});
    const RecordsetPtr number = connection.Query(text.GetText());
    return number->eof() ? 0 : number->Get("MaxNum").ToDouble();
  });
}

bool clsSaveData::SavePrintSerialNumber(std::string_view sDsn, const Vector* vctOrderInfo) {
  constexpr const Contract& contract = kContract<&clsSaveData::SavePrintSerialNumber>;
  if (vctOrderInfo == nullptr) return false;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) {
    const std::string number = Variant(GetPrintOrderLotNumber(connection, 1)).ToText();
    if (vctOrderInfo->empty()) return true;
    TextBuilder text;
    text.Line(" declare @varUniqueCode as nvarchar(50)");
    text.Line(" set @varUniqueCode=CONVERT(VARCHAR(6),GETDATE(),112) +'", number, "'");
    std::int32_t place = 0;
    for (const Variant& item : *vctOrderInfo) {
      text.Append(R"(
IF  exists  ( select  1  from  IC_Web2ERPOrdersEx WHERE  FID = {FID})
Begin 
update  IC_Web2ERPOrdersEx  set  FLotNumber = @varUniqueCode,FSerialNumber = '{place}' WHERE  FID = {FID}
End 
ELSE 
Begin 
INSERT INTO IC_Web2ERPOrdersEx(FID,FLotNumber,FSerialNumber,FOrderID) VALUES({FID},@varUniqueCode,'{place}','')
End 
)"_sql,
                  {{"FID", ItemDictionary(item)->At(1).second.ToText()}, {"place", ++place}});
    }
    connection.Execute(text.GetText());
    return true;
  });
}

}  // namespace tessarlorn
