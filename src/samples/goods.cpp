#include "samples/goods.h"

namespace tessarlorn::cli {
namespace {

constexpr int kPiece = 21;
constexpr int kBox = 22;
constexpr int kBottle = 23;
constexpr int kSet = 24;
constexpr int kPair = 31;

}  // namespace

std::span<const Unit> Units() {
  static constexpr Unit kUnits[] = {
      {kNoUnit, 1, "*", "*", 10000},    {kKilogram, 2, "KG", "千克", 10000}, {kGram, 2, "G", "克", 10000000},
      {13, 2, "JIN", "斤", 20000},      {kPiece, 3, "PCS", "件", 10000},     {kBox, 3, "BOX", "盒", 10000},
      {kBottle, 3, "BTL", "瓶", 10000}, {kSet, 3, "SET", "套", 10000},       {kPair, 4, "PAIR", "双", 10000},
  };
  return kUnits;
}

std::span<const Goods> SampleGoods() {
  static constexpr Goods kGoods[] = {
      {1001, "01.001", "纯棉四件套", "1.8米 浅灰", kSet, 35900, 26500, kKilogram},
      {1002, "01.002", "纯棉四件套", "1.5米 米白", kSet, 32900, 23500, kKilogram},
      {1003, "01.003", "羽绒枕", "48×74厘米", kPiece, 16900, 9800, kKilogram},
      {1004, "01.004", "亚麻窗帘", "2.5×2.7米", kPiece, 28800, 18000, kKilogram},
      {1005, "01.005", "珊瑚绒毛毯", "150×200厘米", kPiece, 9900, 12000, kKilogram},
      {1006, "01.006", "记忆棉坐垫", "45×45厘米", kPiece, 6900, 6500000, kGram},
      {1007, "02.001", "不锈钢保温杯", "500毫升", kPiece, 12900, 3800000, kGram},
      {1008, "02.002", "陶瓷餐具", "18头", kSet, 26900, 62000, kKilogram},
      {1009, "02.003", "铸铁锅", "26厘米", kPiece, 39900, 55000, kKilogram},
      {1010, "02.004", "竹砧板", "38×26厘米", kPiece, 5900, 11000, kKilogram},
      {1011, "02.005", "玻璃储物罐", "1.2升", kPiece, 2990, 7200000, kGram},
      {1012, "03.001", "婴儿连体衣", "73码", kPiece, 8900, 1800000, kGram},
      {1013, "03.002", "婴儿连体衣", "80码", kPiece, 8900, 1900000, kGram},
      {1014, "03.003", "儿童积木", "120粒", kBox, 15900, 14500, kKilogram},
      {1015, "03.004", "纱布浴巾", "105×105厘米", kPiece, 7900, 4200000, kGram},
      {1016, "03.005", "儿童水彩笔", "36色", kBox, 3900, 4500000, kGram},
      {1017, "04.001", "双人帐篷", "210×150厘米", kPiece, 45900, 32000, kKilogram},
      {1018, "04.002", "登山杖", "碳素 可折叠", kPiece, 12800, 2400000, kGram},
      {1019, "04.003", "徒步鞋", "42码 深蓝", kPair, 36800, 12500, kKilogram},
      {1020, "04.004", "徒步鞋", "38码 浅灰", kPair, 36800, 11000, kKilogram},
      {1021, "04.005", "羊毛袜", "均码", kPair, 4900, 900000, kGram},
      {1022, "04.006", "头灯", "300流明", kPiece, 9800, 1500000, kGram, Tracking::kSerial},
      {1023, "05.001", "初榨橄榄油", "750毫升", kBottle, 8800, 13500, kKilogram, Tracking::kBatch},
      {1024, "05.002", "洋槐蜂蜜", "500克", kBottle, 5800, 7600000, kGram, Tracking::kBatch},
      {1025, "05.003", "高山绿茶", "250克", kBox, 16800, 3900000, kGram, Tracking::kBatch},
      {1026, "05.004", "东北大米", "散装", kKilogram, 1180, 10000, kNoUnit, Tracking::kBatch},
      {1027, "05.005", "混合坚果", "30袋", kBox, 11900, 9500000, kGram, Tracking::kBatch},
      {1028, "05.006", "散装红枣", "特级", kKilogram, 5900, 10000, kNoUnit, Tracking::kBatch},
      {1029, "06.001", "蓝牙音箱", "黑色", kPiece, 19900, 6800000, kGram, Tracking::kSerial},
      {1030, "06.002", "电动牙刷", "白色", kPiece, 25900, 4100000, kGram, Tracking::kSerial},
      {1031, "06.003", "台灯", "可调光", kPiece, 13900, 11500, kKilogram, Tracking::kSerial},
      {1032, "06.004", "数据线", "1.5米", kPiece, 2900, 600000, kGram},
  };
  return kGoods;
}

std::span<const Goods> SamplePackages() {
  static constexpr Goods kPackages[] = {
      {1901, "09.001", "新居礼包", "四件套 枕头 毛毯", kSet, 59900, 48300, kKilogram},
      {1902, "09.002", "露营礼包", "帐篷 登山杖 头灯", kSet, 64900, 37000, kKilogram},
      {1903, "09.003", "茶点礼盒", "绿茶 蜂蜜 坚果", kSet, 29900, 21000, kKilogram},
  };
  return kPackages;
}

std::span<const Goods> SamplePriceDifferences() {
  static constexpr Goods kPriceDifferences[] = {
      {1801, "08.001", "补差价", "1元", kPiece, 100, 0, kNoUnit},
      {1802, "08.002", "补运费", "1元", kPiece, 100, 0, kNoUnit},
  };
  return kPriceDifferences;
}

std::span<const Attribute> SampleAttributes() {
  static constexpr Attribute kAttributes[] = {
      {501, "浅灰"}, {502, "米白"}, {503, "深蓝"}, {504, "黑色"}, {505, "S"}, {506, "M"}, {507, "L"}, {508, "XL"},
  };
  return kAttributes;
}

}  // namespace tessarlorn::cli
