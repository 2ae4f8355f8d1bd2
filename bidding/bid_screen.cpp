#include "bidding/bid_screen.h"

#include "bidding/bid_form.h"
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "platform/form_reader.h"
#include "platform/hosts.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

constexpr char16_t kCrLf[] = u"\r\n";

struct ToolButton {
  int number;
  const char16_t* caption;  // nullptr: the caption stays
  const char16_t* tooltip;
};
constexpr ToolButton kToolbar1[] = {
    {1, nullptr, u"Browser Back Button"},
    {2, nullptr, u"Browser Forward Button"},
    {3, nullptr, u"Browser Refresh Button"},
    {4, u"Last Import", u"Show Last Imported Data"},
    {5, u"Current Auction", u"Show Current Auction in Browser"},
    {6, u"Make Bid", u"Make Bid on Currently Viewed Auction"},
    {7, u"Watch", u"Add this auction to the Watch list."},
};

Control& EnsurePlain(MainForm& f, ControlKind kind, const char16_t* name) {
  if (Control* c = f.Find(name)) return *c;
  return f.Add(kind, name);
}

Text BidBase(BidScreen& s) {
  return FromUtf8(BaseUrlFor(s.program().settings, "bid"));
}

Text SetupText(MainForm& f, TextView column) {
  DataControl& setup = f.setup_datacontrl;
  if (!setup.HasRecordset()) return {};
  Recordset& row = setup.recordset();
  if (row.Eof() || row.Bof() || !row.HasField(column)) return {};
  Variant v = row.Fields(column);
  return v.IsNull() ? Text() : CStr(v, f.program().regional);
}

void BuildBidFields(BidScreen& s) {
  MainForm& f = s.main();
  Toolbar& bar = f.Get<Toolbar>(u"ctToolBar1");
  for (const ToolButton& b : kToolbar1) {
    if (b.number > bar.ButtonCount()) continue;
    if (b.caption) bar.button(b.number).caption = b.caption;
    bar.button(b.number).tooltip = b.tooltip;
  }
  // Every click of the browser's toolbar lets go of the lister's first button.
  auto clicked = std::move(bar.OnButtonClick);
  bar.OnButtonClick = [&f, clicked](int number) {
    if (clicked) clicked(number);
    if (auto* lister = dynamic_cast<Toolbar*>(f.Find(u"ctToolBar3")); lister && lister->ButtonCount() >= 1)
      lister->button(1).checked = false;
  };

  // The bid fields stand on the browser page and are in use only while it shows.
  Control& frame = EnsurePlain(f, ControlKind::Frame, u"bid_fra");
  frame.SetVisible(f.SSTab1.tab() == kBrowserPage);
  auto entered = std::move(f.SSTab1.OnTabClick);
  f.SSTab1.OnTabClick = [&f, &frame, entered](int left) {
    frame.SetVisible(f.SSTab1.tab() == kBrowserPage);
    if (entered) entered(left);
  };
  Control& amount = EnsurePlain(f, ControlKind::TextBox, u"amount_to_bid");
  Control& quantity = EnsurePlain(f, ControlKind::TextBox, u"quantity_bid_for");
  Control& qty = EnsurePlain(f, ControlKind::Label, u"qty_lb");
  qty.SetCaption(u"Quantity");
  quantity.SetText(u"1");
  Control& when = EnsurePlain(f, ControlKind::TextBox, u"bid_before_end_time_txt");
  when.SetTooltip(u"0 Means NOW - Numbers are in Minutes");
  when.SetVisible(false);
  for (Control* c : {&EnsurePlain(f, ControlKind::Label, u"bid_auction_no_lbl"), &amount, &quantity, &qty,
                     &f.Get(u"bid_btn"), &when}) {
    c->SetContainer(&frame);
    if (c != &f.Get(u"bid_btn") && c != &when) c->SetVisible(false);
  }
}

}  // namespace

BidScreen::BidScreen(Program& program, BidRoute route) : program_(&program), route_(std::move(route)) {}

MainForm& BidScreen::main() const {
  if (!program_->main)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  return *program_->main;
}

void make_bid(BidScreen& s) {
  MainForm& f = s.main();
  s.route().raise_bid_pending();
  for (const char16_t* name :
       {u"bid_auction_no_lbl", u"amount_to_bid", u"quantity_bid_for", u"bid_btn", u"qty_lb"})
    f.Get(name).SetVisible(true);
}

void bid_btn(BidScreen& s) {
  MainForm& f = s.main();
  f.SetStatus(u"Preparing Bid Process Now");
  s.route().raise_bid_pending();
  MsgAnswer answer = f.ui().MsgBox(u"Buy It Now Request",
                                   Text(u"                Do you want to BUY IT NOW") + kCrLf +
                                       u"(Available for auctions that have the Buy It Now Symbol)",
                                   MsgButtons::YesNo, MsgIcon::Question);
  Text item = s.route().current_item();
  Text address = BidBase(s) + u"/aw-cgi/eBayISAPI.dll?";
  if (answer == MsgAnswer::Yes)
    address += u"BinConfirm&item=" + item;
  else
    address += u"MakeBid&item=" + item + u"&maxbid=" + f.Get(u"amount_to_bid").text();
  s.route().fetch(address);
}

void bid_page_done(BidScreen& s) {
  MainForm& f = s.main();
  FormReader reader;
  if (!reader.FindForm(s.route().page())) {
    f.ui().Beep();
    f.SetStatus(u"Bid Error - check for correct auction number and that the bid amount is high enough");
    return;
  }
  if (!reader.FindForm()) {
    f.ui().Beep();
    f.SetStatus(u"Bid Error - check for correct auction number");
    // The site's own words about the refused bid are on the page that was fetched.
    f.WebBrowser1.Navigate(s.route().address());
    return;
  }
  f.SetStatus(u"Posting Bid Now");
  Text userid = f.Userid_lst.text();
  f.setup_datacontrl.RecordSource = u"Select * From setup where Userid = '" + userid + u"'";
  f.setup_datacontrl.Refresh();
  s.bid_url = BuildBidUrl(FromUtf8(reader.FormQuery()), BidBase(s), userid, SetupText(f, u"pass1"),
                          f.Get(u"quantity_bid_for").text());
  f.WebBrowser1.Navigate(s.bid_url);
}

void watch_auction(BidScreen& s) {
  MainForm& f = s.main();
  Program& p = s.program();
  WatchEntry e = ParseWatchTitle(f.WebBrowser1.document_title, p.regional);
  if (!p.startup.db)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  p.startup.db->Execute(u"INSERT INTO Bidder (item, watching, site, username, title, end) VALUES('" + e.item +
                        u"', true ,'" + f.site_lst.text() + u"', '" + f.Userid_lst.text() + u"', '" +
                        e.title + u"', '" + e.end + u"')");
  f.SetStatus(u"Item " + e.item + u" added to the watch list.");
  if (f.Auction_type_lst.text() == u"Bidder") {
    f.CallRoutine("auction_filter");
    f.Bidder.FindFirst(u"Item = '" + e.item + u"'");
  }
}

void RegisterBidding(Program& program, BidRoute route) {
  auto screen = std::make_shared<BidScreen>(program, std::move(route));
  program.subsystems.push_back(screen);
  BidScreen* s = screen.get();
  BuildBidFields(*s);
  Routines& r = program.routines;
  // The toolbar's handler ends a failed command without a word.
  auto quietly = [](auto command) {
    return [command] {
      try {
        command();
      } catch (const RuntimeError&) {
      }
    };
  };
  r.Register("ctToolBar1(4)", quietly([s] {
               s->main().CallRoutine("show_last_import");
               s->main().SetStatus(u"Displaying Last Imported Data");
             }));
  r.Register("ctToolBar1(6)", quietly([s] { make_bid(*s); }));
  r.Register("ctToolBar1(7)", quietly([s] { watch_auction(*s); }));
  // The bid's own handlers put what went wrong in the status bar.
  auto reported = [s](void (*command)(BidScreen&)) {
    return [s, command] {
      try {
        command(*s);
      } catch (const RuntimeError& e) {
        s->program().screen.ui().SetWaitCursor(false);
        s->main().SetStatus(FromUtf8(e.description()));
      }
    };
  };
  r.Register("bid_btn", reported(bid_btn));
  r.Register("bid_page_done", reported(bid_page_done));
}

}  // namespace lw
