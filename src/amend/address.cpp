// A new consignee or address, which makes the waybill void.
#include "amend/contracts.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {

bool clsSaveData::ChangeAddess(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::ChangeAddess>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    for (const std::string_view field :
         {"FConsignee", "FTelephone", "FDeliveryProvince", "FDeliveryCity", "FDeliveryDistrict", "FDeliveryAddress"}) {
      WriteSaveOrderLog(call.orders, "0", field, call.parameters.Text(field));
    }
    TextBuilder text;
    text.Line("Update IC_Web2ERPOrders ");
    text.Append(R"(
SET    FConsignee ='{FConsignee}',
       FZipCode ='{FZipCode}',
       FTelephone ='{FTelephone}',
       FMobile = '{FMobile}',
       FDeliveryProvince ='{FDeliveryProvince}',
       FDeliveryCity ='{FDeliveryCity}',
       FDeliveryDistrict = '{FDeliveryDistrict}',
       FDeliveryAddress = '{FDeliveryAddress}'
       , fisLocalChangeAddr = 1
       , FLogisticsOrder=''
Where FID = {FID}
DELETE FROM IC_SfexpressLogisticsOrder
       WHERE FID IN ( {FID})
)"_sql,
                {{"FConsignee", call.parameters.Text("FConsignee")},
                 {"FZipCode", call.parameters.Text("FZipCode")},
                 {"FTelephone", call.parameters.Text("FTelephone")},
                 {"FMobile", call.parameters.Text("FMobile")},
                 {"FDeliveryProvince", call.parameters.Text("FDeliveryProvince")},
                 {"FDeliveryCity", call.parameters.Text("FDeliveryCity")},
                 {"FDeliveryDistrict", call.parameters.Text("FDeliveryDistrict")},
                 {"FDeliveryAddress", call.parameters.Text("FDeliveryAddress")},
                 {"FID", call.orders}});
    call.connection.Execute(text.GetText());
    return true;
  });
}

}  // namespace tessarlorn
