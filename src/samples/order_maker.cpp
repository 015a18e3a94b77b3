#include "samples/order_maker.h"

#include <algorithm>
#include <array>

namespace tessarlorn::cli {
namespace {

constexpr std::int64_t kMinute = 60'000;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

constexpr std::array<std::string_view, 24> kSurnames = {"王", "李", "张", "刘", "陈", "杨", "黄", "赵",
                                                        "周", "吴", "徐", "孙", "马", "朱", "胡", "郭",
                                                        "何", "高", "林", "罗", "郑", "梁", "谢", "欧阳"};
constexpr std::array<std::string_view, 24> kGivenNames = {
    "伟", "芳", "娜", "敏", "静",   "磊",   "洋",   "艳",   "勇",   "杰",   "涛",   "明",
    "超", "霞", "平", "刚", "桂英", "子涵", "雨桐", "浩然", "欣怡", "梓轩", "志强", "秀兰"};
constexpr std::array<std::string_view, 16> kNickParts = {"yun", "shan", "xiao", "mei", "feng", "lan", "qing", "tian",
                                                         "lin", "hai",  "bao",  "zi",  "hua",  "an",  "le",   "ming"};
constexpr std::array<std::string_view, 12> kRoads = {"中山路", "人民路", "解放大道", "建设街", "文化路", "长江路",
                                                     "新华街", "学府路", "滨河路",   "朝霞街", "和平里", "工业大道"};
constexpr std::array<std::string_view, 6> kBuyerMessages = {
    "请尽快发货", "送货前请电话联系", "麻烦包装结实一点", "不要放快递柜", "送人的，请不要放价格单", "颜色发错请先联系"};
constexpr std::array<std::string_view, 4> kSellerMessages = {"老客户，多送小样", "已电话确认地址", "补发赠品", "加急"};
constexpr std::array<std::string_view, 3> kDeliveryTimes = {"仅工作日", "仅周末", "时间不限"};
constexpr std::array<std::string_view, 3> kGiftCards = {"生日快乐，天天开心！", "新居志喜", "Mom & Dad's 30th!"};
/// How many lines an order has: one mostly, eight at most.
constexpr std::array<int, 20> kLineCounts = {1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 3, 3, 4, 5, 6, 8};

DateTime After(DateTime time, std::int64_t milliseconds) { return DateTime(time.milliseconds() + milliseconds); }

/// The digits of `number`, zeros in front up to `width`.
std::string Digits(std::int64_t number, std::size_t width) {
  std::string digits = std::to_string(number);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

/// "20260630"
std::string DayDigits(DateTime time) {
  const CivilTime civil = time.ToCivil();
  return Digits(civil.year, 4) + Digits(civil.month, 2) + Digits(civil.day, 2);
}

std::string Joined(std::string_view first, std::string_view second) { return std::string(first).append(second); }

/// Rare things come by the order's key, so that a few hundred orders have each of them.
bool KeyIs(const Order& order, int divisor, int remainder) { return order.key % divisor == remainder; }

}  // namespace

std::int64_t Order::amount() const {
  std::int64_t sum = 0;
  for (const OrderLine& line : lines) sum += line.amount;
  return sum;
}

std::int64_t Order::discount() const {
  std::int64_t sum = 0;
  for (const OrderLine& line : lines) sum += line.discount;
  return sum;
}

OrderMaker::OrderMaker(const MasterData& master, const SeedOptions& options)
    : master_(master),
      random_(options.random_seed),
      days_(options.days),
      count_(options.orders),
      delivered_(static_cast<int>(options.orders * std::int64_t{4} / 5)) {}

DateTime OrderMaker::OrderTime() {
  const std::int64_t index = last_key_ - 1;
  if (index < delivered_) {
    return After(days_.end, -days_.open * kDay - days_.delivered * kDay / delivered_ * (delivered_ - index));
  }
  const std::int64_t open = count_ - delivered_;
  return After(days_.end, -days_.open * kDay / open * (count_ - index));
}

Purchase OrderMaker::MakePurchase(int key) {
  Purchase purchase;
  purchase.shop = random_.Pick(master_.shops);
  purchase.site_order =
      Digits(random_.Between(1000000, 9999999), 7) + Digits(key, 9) + Digits(purchase.shop.id % 100, 2);
  purchase.nick = Joined(random_.Pick(kNickParts), random_.Pick(kNickParts)) + std::to_string(random_.Below(10000));
  purchase.buyer = Joined(random_.Pick(kSurnames), random_.Pick(kGivenNames));
  // One in ten has it sent to somebody else.
  purchase.consignee =
      random_.Percent(10) ? Joined(random_.Pick(kSurnames), random_.Pick(kGivenNames)) : purchase.buyer;
  purchase.mobile = "1" + Digits(random_.Between(3000000000, 9999999999), 10);
  purchase.place = random_.Pick(master_.places);
  purchase.address = std::string(random_.Pick(kRoads)) + std::to_string(random_.Between(1, 999)) + "号" +
                     std::to_string(random_.Between(1, 30)) + "栋" + std::to_string(random_.Between(101, 2804)) + "室";
  return purchase;
}

void OrderMaker::SetTimes(Order& order) {
  order.ordered = After(OrderTime(), random_.Below(30 * kMinute));
  order.paid = After(order.ordered, random_.Between(20'000, 40 * kMinute));
  order.checked = After(order.paid, random_.Between(10 * kMinute, 2 * kHour));
  order.picked = After(order.checked, random_.Between(kHour, 12 * kHour));
  order.picking_checked = After(order.picked, random_.Between(10 * kMinute, 2 * kHour));
  order.sent = After(order.picking_checked, random_.Between(10 * kMinute, 5 * kHour));
  if (!days_.until_end) return;
  for (DateTime* const time :
       {&order.ordered, &order.paid, &order.checked, &order.picked, &order.picking_checked, &order.sent}) {
    if (time->milliseconds() > days_.end.milliseconds()) *time = days_.end;
  }
}

OrderLine OrderMaker::NewLine(const Order& order) {
  OrderLine line;
  line.key = ++last_line_;
  line.site_order = order.purchase.site_order;
  constexpr int kNumberingShops = 1;
  if (order.purchase.shop.type == kNumberingShops)
    line.child_order = std::to_string(260'000'000'000'000'000 + line.key);
  return line;
}

OrderLine OrderMaker::MakeLine(const Order& order) {
  OrderLine line = NewLine(order);
  line.item = &random_.Pick(master_.items);
  line.quantity = random_.Percent(75) ? 1 : random_.Between(2, 4);
  line.price = line.item->price_cents;
  line.amount = line.price * line.quantity;
  if (random_.Percent(20)) line.discount = line.amount * random_.Between(5, 20) / 100;
  if (random_.Percent(12)) line.promotion = random_.Pick(master_.promotions);
  if (random_.Percent(25)) line.attribute = random_.Pick(master_.attributes);
  line.stock = order.purchase.shop.stock;
  if (line.stock == 0 || random_.Percent(15)) line.stock = random_.Pick(master_.stocks).id;
  const auto stock = std::find_if(master_.stocks.begin(), master_.stocks.end(),
                                  [&](const Stock& candidate) { return candidate.id == line.stock; });
  const bool confirmed = order.scenario->stage > Stage::kWaiting;
  if (confirmed && stock != master_.stocks.end() && !stock->places.empty()) {
    line.stock_place = random_.Pick(stock->places);
  }
  if (confirmed && line.item->batch) {
    line.batch = "B" + DayDigits(order.ordered).substr(2, 4) + Digits(random_.Below(40), 2);
  } else if (KeyIs(order, 13, 3)) {
    line.batch.reset();
  }
  if (random_.Percent(2)) line.engraving = "平安喜乐";
  if (random_.Percent(4)) line.wrapping = "礼盒包装";
  return line;
}

void OrderMaker::AddLines(Order& order) {
  const int count = random_.Pick(kLineCounts);
  for (int i = 0; i < count; ++i) order.lines.push_back(MakeLine(order));
  if (count >= 2 && random_.Percent(15)) {
    OrderLine& gift = order.lines.back();
    gift.gift = true;
    gift.price = gift.amount = gift.discount = 0;
    gift.quantity = 1;
  }
  if (count >= 3 && random_.Percent(25)) {
    for (OrderLine& line : order.lines) {
      line.meal = "TC0001";
      line.meal_name = "超值组合套餐";
    }
  } else if (count >= 2 && random_.Percent(10)) {
    const int package = random_.Pick(master_.packages);
    for (OrderLine& line : order.lines) line.package = package;
  }
  if (order.merged) {
    const std::string second = MakePurchase(order.key).site_order;
    order.lines.back().site_order = second;
    order.purchase.site_order += "," + second;
  }
  AddPriceDifference(order);
  MoveLines(order);
  // Some buyers want their money back from a transaction that is closed.
  const bool closed = order.scenario->transaction_status == code::kClosed && KeyIs(order, 5, 4);
  if (order.scenario->refund != Refund::kNone || closed) order.lines.front().refund = ++last_refund_;
}

void OrderMaker::AddPriceDifference(Order& order) {
  constexpr std::size_t kMostLines = 8;
  const Item& item = master_.price_differences[static_cast<std::size_t>(order.key) % master_.price_differences.size()];
  if (!KeyIs(order, 16, 5) || order.merged || item.id == 0 || order.lines.size() >= kMostLines) return;
  OrderLine line = NewLine(order);
  line.item = &item;
  line.site_order = order.lines.front().site_order;
  line.quantity = 5 + order.key % 26;
  line.price = item.price_cents;
  line.amount = line.price * line.quantity;
  line.stock = order.lines.front().stock;
  order.lines.push_back(line);
}

/// Lines of orders at an outside warehouse go to it, now and then but for the last one; some orders that nobody has
/// looked at yet have a line that goes nowhere.
void OrderMaker::MoveLines(Order& order) {
  const Scenario& scenario = *order.scenario;
  if (!scenario.outside_state.empty()) {
    const int stock = master_.outside_stocks[static_cast<std::size_t>(order.key) % master_.outside_stocks.size()];
    if (stock == 0) return;
    const bool in_part = KeyIs(order, 7, 3) && order.lines.size() > 1;
    for (std::size_t i = 0; i + (in_part ? 1 : 0) < order.lines.size(); ++i) {
      order.lines[i].stock = stock;
      order.lines[i].stock_place = 0;
    }
  } else if (scenario.stage == Stage::kWaiting && KeyIs(order, 5, 4)) {
    order.lines.front().stock = 0;
  }
}

void OrderMaker::ShareDiscount(Order& order) {
  if (!random_.Percent(20)) return;
  order.bill_discount = std::min<std::int64_t>(random_.Between(1, 20) * 100, order.amount() / 2);
  std::int64_t left = order.bill_discount;
  for (OrderLine& line : order.lines) {
    line.bill_discount = std::min(left, line.amount - line.discount);
    left -= line.bill_discount;
  }
  order.bill_discount -= left;
}

void OrderMaker::SetParcel(Order& order) {
  constexpr std::int64_t kBoxGrams = 120;
  order.grams = kBoxGrams;
  for (const OrderLine& line : order.lines) order.grams += line.item->grams * line.quantity;
  order.carrier = random_.Pick(master_.carriers);
  order.cost = 600 + order.grams / 10;
  const bool letters = order.carrier % 2 == 0;
  order.waybill =
      (letters ? "EY" : "7") + Digits(random_.Below(1000), 3) + Digits(order.key, 9) + (letters ? "CN" : "");
  const Stage stage = order.scenario->stage;
  if (KeyIs(order, 23, 11)) {
    order.carrier = master_.carrier_without_code;
  } else if (stage < Stage::kWeighed && KeyIs(order, 13, 8)) {
    order.carrier = 0;
  }
  if (KeyIs(order, 19, 7)) order.purchase.place.district = 0;
  if (stage >= Stage::kConfirmed && order.carrier != 0 && order.carrier == master_.courier) {
    order.courier_number = "SF" + order.waybill;
  }
}

/// Runs of twenty orders, numbered within the month.
void OrderMaker::SetPrints(Order& order) {
  if (order.scenario->stage == Stage::kWaiting) return;
  if (!KeyIs(order, 10, 0)) {
    order.prints = KeyIs(order, 60, 1) ? 4 : KeyIs(order, 20, 1) ? 3 : KeyIs(order, 8, 1) ? 2 : 1;
  }
  if (!order.has_extension) return;
  constexpr int kRun = 20;
  const std::string month = DayDigits(order.picked).substr(0, 6);
  const int index = printed_[month]++;
  order.lot = month + std::to_string(index / kRun + 1);
  order.serial = std::to_string(index % kRun + 1);
}

/// Printed, or given where there is a number; some were asked for only, or cancelled.
void OrderMaker::SetWaybillState(Order& order) const {
  const std::vector<int>& electronic = master_.electronic_carriers;
  if (std::find(electronic.begin(), electronic.end(), order.carrier) == electronic.end()) return;
  if (order.scenario->stage >= Stage::kWeighed) {
    order.waybill_state = order.prints > 0 ? 3 : 2;
  } else if (order.scenario->stage > Stage::kWaiting) {
    order.waybill_state = KeyIs(order, 7, 0) ? 4 : KeyIs(order, 3, 0) ? 1 : 0;
  }
}

Order OrderMaker::Next() {
  Order order;
  order.key = ++last_key_;
  order.scenario = &(order.key <= delivered_ ? delivered_deck_ : open_deck_).Next(random_);
  SetTimes(order);
  order.purchase = continues_ ? last_purchase_ : MakePurchase(order.key);
  order.merged = !continues_ && random_.Percent(3);
  continues_ = !continues_ && !order.merged && (random_.Percent(3) || KeyIs(order, 25, 0));
  last_purchase_ = order.purchase;
  order.number = "XS" + DayDigits(order.ordered).substr(2) + Digits(order.key, 7);
  order.unique_code = DayDigits(order.ordered) + Digits(order.purchase.shop.id % 1000, 3) + Digits(order.key, 9) +
                      std::string(static_cast<std::size_t>(order.key % 4), '7');
  order.currency = random_.Percent(95) ? master_.currencies.front() : random_.Pick(master_.currencies);
  constexpr std::array<int, 8> kTypes = {code::kFixedPrice, code::kFixedPrice, code::kFixedPrice,    code::kFixedPrice,
                                         code::kFixedPrice, code::kFixedPrice, code::kPayOnDelivery, code::kPresale};
  order.transaction_type = random_.Pick(kTypes);
  AddLines(order);
  ShareDiscount(order);
  order.freight = random_.Percent(30) ? random_.Between(5, 15) * 100 : 0;
  order.lines.back().freight = order.freight;
  SetParcel(order);
  order.flag = random_.Percent(20) ? static_cast<int>(random_.Between(1, 5)) : 0;
  order.invoice = random_.Percent(12);
  if (order.invoice && KeyIs(order, 2, 0) && order.scenario->stage == Stage::kDelivered) {
    // Invoices of one order and of two, in turn.
    const int index = on_cost_invoices_++;
    order.cost_invoice = index / 3 * 2 + (index % 3 == 0 ? 1 : 2);
  }
  // Locks and outside warehouses are kept in the extension.
  order.has_extension = order.scenario->lock > 0 || !order.scenario->outside_state.empty() || !random_.Percent(15);
  SetPrints(order);
  SetWaybillState(order);
  order.user = random_.Pick(master_.users);
  order.seller = &random_.Pick(master_.employees);
  order.picker = &random_.Pick(master_.employees);
  if (random_.Percent(12)) order.buyer_message = random_.Pick(kBuyerMessages);
  if (random_.Percent(8)) order.seller_message = random_.Pick(kSellerMessages);
  if (random_.Percent(20)) order.delivery_time = random_.Pick(kDeliveryTimes);
  if (random_.Percent(3)) order.gift_card = random_.Pick(kGiftCards);
  return order;
}

}  // namespace tessarlorn::cli
