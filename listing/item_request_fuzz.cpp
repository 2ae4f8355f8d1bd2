// Fuzzes the item request with the Sell page's text fields and the wrapping of replies. Whatever the
// seller types, the request keeps its frame: the envelope first, every element on a line of its own,
// the UUID and "</request>" last; the schedule either reads or raises a run-time error; and a reply
// is only ever added to, never cut.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "listing/api_calls.h"
#include "listing/item_request.h"
#include "listing/sell_page.h"

namespace {

// The input split at NUL bytes into the fields the seller types.
std::vector<lw::Text> Fields(std::string_view bytes, size_t count) {
  std::vector<lw::Text> out;
  size_t start = 0;
  while (out.size() < count) {
    size_t end = bytes.find('\0', start);
    if (end == std::string_view::npos) end = bytes.size();
    out.push_back(lw::FromCp1252(bytes.substr(std::min(start, bytes.size()), end - std::min(start, end))));
    start = end + 1;
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  auto f = Fields(bytes, 16);
  unsigned char choice = size ? data[0] : 0;

  lw::SellForm form;
  form.userid = f[0];
  form.clean_title = lw::CleanField(f[1]);
  form.description = f[2];
  form.clean_location = lw::CleanField(f[3]);
  form.quantity = f[4];
  form.minimum_bid = f[5];
  form.reserve = f[6];
  form.buy_it_now = f[7];
  form.category = f[8];
  form.category2 = f[9];
  form.country = f[10];
  form.region_code = lw::RegionCode(f[11]);
  form.counter_code = lw::CounterCode(f[12]);
  form.tax_state_code = lw::TaxStateCode(f[13]);
  form.checkout_instructions = f[14];
  form.gallery = choice % 4 - 1;
  form.sell_format = (choice >> 2) % 4 - 1;
  form.ship_destination = (choice >> 4) % 4 - 1;
  form.shipping_cost = (choice >> 6) % 3 - 1;
  form.insurance_row = choice % 5 - 1;
  form.schedule = choice % 3 - 1;
  for (size_t i = 0; i < form.payby.size(); ++i) form.payby[i] = (choice >> (i % 8)) & 1;
  form.other_location.fill(choice & 1);
  static const lw::Regional us = lw::Regional::FromLocale("en_US");
  try {
    form.schedule_time = lw::ScheduleTime(f[15], choice & 1, f[4], us);
    if (form.schedule_time.size() != 19) std::abort();
  } catch (const lw::RuntimeError&) {
  }
  form.uuid = lw::NewUuid();

  lw::Text request = lw::BuildItemRequest(form);
  static const lw::Text head = u"<?xml version='1.0' encoding='iso-8859-1'?>\r\n<request>\r\n";
  static const lw::Text tail = u"\r\n<Version>2</Version>\r\n</request>\r\n";
  if (request.compare(0, head.size(), head) != 0) std::abort();
  if (request.size() < tail.size() || request.compare(request.size() - tail.size(), tail.size(), tail) != 0)
    std::abort();
  if (lw::InStr(request, u"<UUID>" + form.uuid + u"</UUID>") == 0) std::abort();
  lw::Text added = lw::WithAddVerb(request);
  if (added.size() + 6 != request.size()) std::abort();

  std::string reply(bytes);
  for (auto page : {lw::ReplyPage::kValidation, lw::ReplyPage::kConfirmation}) {
    std::string wrapped = lw::WrapReply(reply, page, f[3]);
    if (reply.find("?><eBay>") == std::string::npos ? wrapped != reply : wrapped.size() <= reply.size())
      std::abort();
  }
  lw::SellPageHtml(f[2], f[14]);
  return 0;
}
