#include "import/auction_imports.h"

#include <cmath>

#include "core/primitives/convert.h"
#include "core/primitives/text.h"
#include "import/description.h"
#include "import/download.h"
#include "import/dutch.h"
#include "import/member_email.h"
#include "screen/main/main_form.h"

namespace lw {
namespace {

Text FormText(MainForm& f, TextView name, int index = -1) {
  Control* c = f.Find(name, index);
  return c ? c->text() : Text();
}

// Only a field whose text really changes is touched, so an unchanged bound field is not taken for an
// edit of the row.
void PutText(MainForm& f, TextView name, int index, const Text& text) {
  Control* c = f.Find(name, index);
  if (c && c->text() != text) c->SetText(text);
}

Text NumberText(double n, const Regional& r) {
  return CStr(Variant(n), r);
}

// A number field as the parsers see it: what it shows, or NaN while it shows nothing, so that a parser
// that puts 0 there is told apart from one that never reached it.
double ShownNumber(const Text& text) {
  return text.empty() ? std::nan("") : Val(text);
}
bool Changed(double now, double before) {
  return !std::isnan(now) && (std::isnan(before) || now != before);
}

// The minimum bid box is a money edit bound to a money column: like the desktop box, it keeps the amount
// it can read from what is put in it ("US $9.99" shows 9.99), so the row can still be saved and left.
Text MoneyBoxText(const Text& text, const Regional& r) {
  size_t first = text.find_first_of(u"0123456789");
  if (first == Text::npos) return text.empty() ? text : Text();
  size_t last = text.find_last_of(u"0123456789");
  Text amount = text.substr(first, last - first + 1);
  if (IsNumeric(Variant(amount), r)) return NumberText(CDbl(Variant(amount), r), r);
  return NumberText(Val(amount), r);
}

// The Dutch page's address ends in the placeholder's id ("3 Dutch bids"): blanks go as a desktop browser
// sends them, since the transport takes no blank in an address.
void Navigate(MainForm& f, const Text& address) {
  f.WebBrowser1.Navigate(Replace(address, u" ", u"%20"));
}

// The description commands and parsers see the form through one of these: built from the form and the
// job flags, written back by Store.
class DescriptionBridge {
 public:
  explicit DescriptionBridge(ImportScreen& s) : s_(s), f_(s.main()) {
    d.auction_type = f_.Auction_type_lst.text();
    d.txtIP = txtIP(s_).text();
    d.txtURL = txtURL(s_).text();
    DescriptionFields& fl = d.fields;
    for (int i = 0; i < 2; ++i) {
      fl.category_lbl[i] = FormText(f_, u"category_lbl", i);
      fl.Description1_txt[i] = FormText(f_, u"Description1_txt", i);
      fl.Minbid_txt[i] = FormText(f_, u"Minbid_txt", i);
      fl.Quantity_txt[i] = FormText(f_, u"Quantity_txt", i);
      fl.bids_lbl[i] = ShownNumber(FormText(f_, u"bids_lbl", i));
      fl.location_txt[i] = FormText(f_, u"location_txt", i);
    }
    fl.ctRealInput1_1 = static_cast<float>(ShownNumber(FormText(f_, u"ctRealInput1", 1)));
    loaded_ = fl;
    const ImportJobs& j = s_.jobs;
    d.flags = {j.import_cancelled, j.description_pending, j.description_html_pending,
               j.motors_description_pending, j.motors_description_html_pending};
    d.clear_job_flags = [this] {
      s_.jobs.ClearFlags();
      d.flags = {d.flags.import_cancelled, false, false, false, false};
    };
    d.select_tab = [this](int tab) { f_.SSTab1.SetTab(tab); };
  }
  DescriptionBridge(const DescriptionBridge&) = delete;
  DescriptionBridge& operator=(const DescriptionBridge&) = delete;

  void Store() {
    ImportJobs& j = s_.jobs;
    j.import_cancelled = d.flags.import_cancelled;
    j.description_pending = d.flags.description_pending;
    j.description_html_pending = d.flags.description_html_pending;
    j.motors_description_pending = d.flags.motors_description_pending;
    j.motors_description_html_pending = d.flags.motors_description_html_pending;
    txtIP(s_).SetText(d.txtIP);
    txtURL(s_).SetText(d.txtURL);
    const Regional& r = s_.program().regional;
    const DescriptionFields& fl = d.fields;
    for (int i = 0; i < 2; ++i) {
      PutText(f_, u"category_lbl", i, fl.category_lbl[i]);
      PutText(f_, u"Description1_txt", i, fl.Description1_txt[i]);
      if (fl.Minbid_txt[i] != loaded_.Minbid_txt[i])
        PutText(f_, u"Minbid_txt", i, MoneyBoxText(fl.Minbid_txt[i], r));
      PutText(f_, u"Quantity_txt", i, fl.Quantity_txt[i]);
      if (Changed(fl.bids_lbl[i], loaded_.bids_lbl[i]))
        PutText(f_, u"bids_lbl", i, NumberText(fl.bids_lbl[i], r));
      PutText(f_, u"location_txt", i, fl.location_txt[i]);
    }
    if (Changed(fl.ctRealInput1_1, loaded_.ctRealInput1_1))
      PutText(f_, u"ctRealInput1", 1, NumberText(fl.ctRealInput1_1, r));
  }

  DescriptionScreen d;

 private:
  ImportScreen& s_;
  MainForm& f_;
  DescriptionFields loaded_;
};

class DutchBridge {
 public:
  explicit DutchBridge(ImportScreen& s) : s_(s), f_(s.main()) {
    d.servername_dutch = s_.MiscHost(u"servername_dutch");
    d.pass1 = RowValue(s_.SetupRow(), u"pass1", f_.program().regional);
    for (int i = 0; i < 2; ++i) {
      d.Quantity_txt[i] = FormText(f_, u"Quantity_txt", i);
      d.id_pnl[i] = FormText(f_, u"id_pnl", i);
    }
    d.dutch_item = s_.dutch_item;
    d.txtIP = txtIP(s_).text();
    d.txtURL = txtURL(s_).text();
    d.import_cancelled = s_.jobs.import_cancelled;
    d.seller_dutch_pending = s_.jobs.seller_dutch_pending;
    d.bidder_dutch_pending = s_.jobs.bidder_dutch_pending;
    d.auction_type = f_.Auction_type_lst.text();
    d.clear_job_flags = [this] {
      s_.jobs.ClearFlags();
      d.seller_dutch_pending = d.bidder_dutch_pending = false;
    };
    d.clear_auctimp = [this] { clear_auctimp(s_); };
    d.save_data_changed = [this] { f_.CallRoutine("save_data_changed"); };
    d.select_tab = [this](int tab) { f_.SSTab1.SetTab(tab); };
    // The page is asked for once the command is through, with the flags already written back.
    d.navigate = [this](const Text& address) { address_ = address; };
  }
  DutchBridge(const DutchBridge&) = delete;
  DutchBridge& operator=(const DutchBridge&) = delete;

  void Store() {
    s_.dutch_item = d.dutch_item;
    s_.jobs.import_cancelled = d.import_cancelled;
    s_.jobs.seller_dutch_pending = d.seller_dutch_pending;
    s_.jobs.bidder_dutch_pending = d.bidder_dutch_pending;
    txtIP(s_).SetText(d.txtIP);
    txtURL(s_).SetText(d.txtURL);
    if (address_) Navigate(f_, *address_);
  }

  DutchScreen d;

 private:
  ImportScreen& s_;
  MainForm& f_;
  std::optional<Text> address_;
};

class EmailBridge {
 public:
  explicit EmailBridge(ImportScreen& s) : s_(s), f_(s.main()) {
    d.servername_email = s_.MiscHost(u"servername_email");
    d.seller_id_txt = FormText(f_, u"seller_id_txt");
    d.seller_email_txt = FormText(f_, u"seller_email_txt");
    d.id_pnl_1 = FormText(f_, u"id_pnl", 1);
    d.email_page_url = s_.email_page_url;
    d.txtIP = txtIP(s_).text();
    d.import_cancelled = s_.jobs.import_cancelled;
    d.email_pending = s_.jobs.email_pending;
    d.clear_job_flags = [this] {
      s_.jobs.ClearFlags();
      d.email_pending = false;
    };
    d.clear_auctimp = [this] { clear_auctimp(s_); };
    d.select_tab = [this](int tab) { f_.SSTab1.SetTab(tab); };
    d.navigate = [this](const Text& address) { address_ = address; };
  }
  EmailBridge(const EmailBridge&) = delete;
  EmailBridge& operator=(const EmailBridge&) = delete;

  void Store() {
    s_.jobs.import_cancelled = d.import_cancelled;
    s_.jobs.email_pending = d.email_pending;
    txtIP(s_).SetText(d.txtIP);
    PutText(f_, u"seller_email_txt", -1, d.seller_email_txt);
    if (address_) Navigate(f_, *address_);
  }

  MemberEmailScreen d;

 private:
  ImportScreen& s_;
  MainForm& f_;
  std::optional<Text> address_;
};

void DescriptionCommandRoutine(ImportScreen& s, DescriptionCommand command) {
  DescriptionFetch fetch;
  {
    DescriptionBridge b(s);
    fetch = run_description_command(s.Context(), b.d, command, s.MiscHost(u"servername_desc"),
                                    s.MiscHost(u"servername_ebaymotors"));
    b.Store();
  }
  if (fetch == DescriptionFetch::download_auctions_3) {
    download_auctions_3(s);
  } else {
    download_auctions_2(s);
  }
}

void DutchSellerCommand(ImportScreen& s) {
  DutchBridge b(s);
  import_dutch_btn_2(s.Context(), b.d);
  b.Store();
}

void DutchBidderCommand(ImportScreen& s) {
  bool fetch;
  {
    DutchBridge b(s);
    fetch = import_dutch_bidder_btn(s.Context(), b.d).has_value();
    b.Store();
  }
  if (fetch) download_auctions_with_CIHTTP1(s);
}

void EmailCommand(ImportScreen& s) {
  EmailBridge b(s);
  get_email_btn_2(s.Context(), b.d);
  b.Store();
}

constexpr DescriptionParser kDescriptionParsers[] = {
    DescriptionParser::seller,           DescriptionParser::bidder,
    DescriptionParser::seller_with_HTML, DescriptionParser::seller_motors,
    DescriptionParser::bidder_motors,    DescriptionParser::seller_motors_with_HTML,
};

}  // namespace

const char* DescriptionParserName(DescriptionParser parser) {
  switch (parser) {
    case DescriptionParser::seller:
      return "get_ebay_seller_auction_description";
    case DescriptionParser::bidder:
      return "get_ebay_bidder_auction_description";
    case DescriptionParser::seller_with_HTML:
      return "get_ebay_seller_auction_description_with_HTML";
    case DescriptionParser::seller_motors:
      return "get_ebay_seller_auction_description_ebaymotors";
    case DescriptionParser::bidder_motors:
      return "get_ebay_bidder_auction_description_ebaymotors";
    case DescriptionParser::seller_motors_with_HTML:
      return "get_ebay_seller_auction_description_ebaymotors_with_HTML";
  }
  return "";
}

void parse_description_page(ImportScreen& s, DescriptionParser parser) {
  ImportContext& ctx = s.Context();
  DescriptionBridge b(s);
  FileDisplay& buffer = s.buffer;
  switch (parser) {
    case DescriptionParser::seller:
      get_ebay_seller_auction_description(ctx, b.d, buffer);
      break;
    case DescriptionParser::bidder:
      get_ebay_bidder_auction_description(ctx, b.d, buffer);
      break;
    case DescriptionParser::seller_with_HTML:
      get_ebay_seller_auction_description_with_HTML(ctx, b.d, buffer);
      break;
    case DescriptionParser::seller_motors:
      get_ebay_seller_auction_description_ebaymotors(ctx, b.d, buffer);
      break;
    case DescriptionParser::bidder_motors:
      get_ebay_bidder_auction_description_ebaymotors(ctx, b.d, buffer);
      break;
    case DescriptionParser::seller_motors_with_HTML:
      get_ebay_seller_auction_description_ebaymotors_with_HTML(ctx, b.d, buffer);
      break;
  }
  b.Store();
}

void parse_seller_dutch_page(ImportScreen& s) {
  get_seller_dutch_auctions(s.Context(), s.buffer);
  // The walk leaves the cursor on the sale's item without telling the bound fields.
  MainForm& f = s.main();
  if (f.seller.HasRecordset() && !f.seller.recordset().Eof() && !f.seller.recordset().Bof())
    f.seller.Reposition();
}

void parse_bidder_dutch_page(ImportScreen& s) {
  ImportContext& ctx = s.Context();
  get_bidder_dutch_auctions(ctx, s.buffer);
  // The row's quantity and price were written to the cursor under the bound fields: show them.
  MainForm& f = s.main();
  if (f.Bidder.HasRecordset() && !f.Bidder.recordset().Eof() && !f.Bidder.recordset().Bof())
    f.Bidder.Reposition();
}

void parse_member_email_page(ImportScreen& s) {
  Text address = FormText(s.main(), u"seller_email_txt");
  get_seller_email(s.Context(), s.buffer, address);
  PutText(s.main(), u"seller_email_txt", -1, address);
}

void RegisterAuctionImports(ImportScreen& screen) {
  ImportScreen* s = &screen;
  Routines& r = screen.program().routines;
  r.Register("get_descrip_button", [s] { DescriptionCommandRoutine(*s, DescriptionCommand::plain); });
  r.Register("get_descrip_with_HTML_button",
             [s] { DescriptionCommandRoutine(*s, DescriptionCommand::with_html); });
  r.Register("get_descrip_ebaymotors_button",
             [s] { DescriptionCommandRoutine(*s, DescriptionCommand::motors); });
  r.Register("get_descrip_ebaymotors_with_HTML_button",
             [s] { DescriptionCommandRoutine(*s, DescriptionCommand::motors_with_html); });
  r.Register("import_dutch_btn_2", [s] { DutchSellerCommand(*s); });
  r.Register("import_dutch_bidder_btn", [s] { DutchBidderCommand(*s); });
  r.Register("get_email_btn_2", [s] { EmailCommand(*s); });
  for (DescriptionParser p : kDescriptionParsers)
    r.Register(DescriptionParserName(p), [s, p] { parse_description_page(*s, p); });
  r.Register("get_seller_dutch_auctions", [s] { parse_seller_dutch_page(*s); });
  r.Register("get_bidder_dutch_auctions", [s] { parse_bidder_dutch_page(*s); });
  r.Register("get_seller_email", [s] { parse_member_email_page(*s); });
  RegisterSiteClock(screen);
}

}  // namespace lw
