// The item request: what stands on the Sell page, turned into the request the site checks
// (VerifyAddItem) and later lists (AddItem, the same text with the other verb). The elements, their
// order, their blanks and their CDATA sections are what the site reads; nothing here checks a value.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

// The Sell page as the request reads it. Option groups hold the index of the selected option, -1 for
// none; boxes are ticked when their value is 1.
struct SellForm {
  // Credentials and the rows.
  Text userid;                // Userid_lst
  Text password;              // password of the setup row
  Text site_id;               // countrylocation of the setup row
  Text description_footer;    // description_footer of the setup row
  bool has_pic_name = false;  // pic_name of the seller row isn't empty

  // The auction's own fields. Title and location come cleaned by the last preview.
  Text clean_title;
  Text category;     // category_no_txt 0
  Text category2;    // category_no_txt 1
  Text description;  // Description1_txt 2
  Text clean_location;
  Text quantity;
  Text minimum_bid;
  Text reserve;
  Text buy_it_now;
  Text duration;
  Text picture_url;  // image_loc_txt 2
  Text paypal_address;

  // The settings as the screen shows them.
  Text country;  // the text of country_loc_combo
  Text region_code;
  Text gift_code;
  Text counter_code;
  Text tax_state_code;
  int gallery = -1;
  int sell_format = -1;
  int escrow = -1;
  int ship_destination = -1;
  int schedule = -1;
  int shipping_cost = -1;
  int insurance_row = -1;  // the selected row of insurance_option_combo
  std::array<bool, 11> payby{};
  std::array<bool, 8> display{};
  std::array<bool, 4> payshipping{};
  std::array<bool, 9> other_location{};
  Text shipping_handling;
  Text additional_shipping;
  Text insurance_fee;
  Text sales_tax_percent;
  Text checkout_instructions;

  Text schedule_time;  // "YYYY-MM-DD HH:MM:SS", already moved to the site's zone
  Text uuid;
};

// The whole request, each element followed by a carriage return and a line feed.
Text BuildItemRequest(const SellForm& form);

// The request's codes of the lists whose texts the builder works out itself: the region number, the
// gift icon, the counter and the sales-tax state. A text outside its table gives what the site takes
// for no choice: region "0", gift "0", counter "-1", no state.
Text RegionCode(TextView text);
Text GiftCode(TextView text);
Text CounterCode(TextView text);
Text TaxStateCode(TextView text);

// The schedule time the site expects: the date's month, day and year with the time, read as a date and
// time in the United States order, plus 8 hours, as "YYYY-MM-DD HH:MM:SS". `date` is the date box's
// text, day first when `day_first`. Raises 13 when they make no date.
Text ScheduleTime(TextView date, bool day_first, TextView time, const Regional& us);

// A GUID as the platform makes one: a random one of version 4, nothing when no randomness is to be had.
struct Guid {
  uint32_t data1 = 0;
  uint16_t data2 = 0;
  uint16_t data3 = 0;
  std::array<uint8_t, 8> data4{};
};
std::optional<Guid> CreateGuid();
// The fields of a GUID in their order without separators: the first as 8 hexadecimal digits, the next
// two as 4, the last eight bytes as 2 each, upper case and padded with "0".
Text UuidText(const Guid& guid);
// A new UUID, or the empty text when no GUID can be made.
Text NewUuid();

}  // namespace lw
