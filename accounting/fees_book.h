// Booking a charge of the account page on its auction: the reference goes into the row's `fee_ref_no`
// and the amount is added to its fee column, both or neither. A reference already in `fee_ref_no` (as
// any part of it) is booked, so the same page can be imported again.
#pragma once

#include <unordered_map>

#include "accounting/fees_line.h"
#include "core/store/store.h"

namespace lw {

class FeeBook {
 public:
  // `cursor` is the `seller` view the import books into; it stands on each row booked.
  FeeBook(Database& db, Recordset& cursor) : db_(db), cursor_(cursor) {}

  // Books the charge on the first row of the view with its item number; false, with nothing written,
  // for an auction that is not in the view, a reference already booked on it, and a Store Sale's stock
  // row that has not sold. A failure of the store raises and leaves the row as it was.
  bool Book(const FeeCharge& charge);

 private:
  // The first position of each item number in the view, compared as the store compares text.
  const std::unordered_map<Text, int64_t>& Positions();
  // The steps of Book inside its transaction.
  bool BookOnRow(const FeeCharge& charge, const Text& item_literal);

  Database& db_;
  Recordset& cursor_;
  std::unordered_map<Text, int64_t> positions_;
  bool indexed_ = false;
};

}  // namespace lw
