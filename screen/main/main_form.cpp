#include "screen/main/main_form.h"
#include "screen/edits.h"
#include "screen/main/main_parts.h"
#include "screen/main/main_places.h"

#include <fstream>
#include <string>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/main/browser_targets.h"
#include "screen/main/database_location.h"
#include "screen/main/small_forms.h"

namespace lw {
namespace {

Text Str(const char* s) {
  return FromUtf8(s);
}

bool EndsWith(const Text& t, TextView tail) {
  return t.size() >= tail.size() && t.compare(t.size() - tail.size(), tail.size(), tail) == 0;
}

bool StartsWithIgnoreCase(const Text& t, TextView head) {
  return t.size() >= head.size() && LCase(Left(t, head.size())) == LCase(head);
}

// Statement texts quote with a single quote; a value holding one makes a bad statement by design.
Text UseridCondition(const Text& userid) {
  return u"Userid = '" + userid + u"'";
}

}  // namespace

MainForm::MainForm(Screen& screen, Program& program)
    : Form(screen, u"main"),
      Auction_type_lst(Add<ComboBox>(u"Auction_type_lst")),
      Auction_status_lst(Add<ComboBox>(u"Auction_status_lst")),
      Userid_lst(Add<ComboBox>(u"Userid_lst")),
      site_lst(Add<ComboBox>(u"site_lst")),
      SSTab1(Add<TabStrip>(u"SSTab1")),
      StatusBar1(Add<StatusBar>(u"StatusBar1")),
      ctListBar1(Add<ListBar>(u"ctListBar1")),
      WebBrowser1(Add<BrowserControl>(u"WebBrowser1")),
      seller_grid(Add<Grid>(u"seller_grid")),
      buyer_grid(Add<Grid>(u"buyer_grid")),
      feedback_grid(Add<Grid>(u"feedback_grid")),
      seller(Add<DataControl>(u"seller")),
      Bidder(Add<DataControl>(u"Bidder")),
      setup_datacontrl(Add<DataControl>(u"setup_datacontrl")),
      Misc(Add<DataControl>(u"Misc")),
      Bulk(Add<DataControl>(u"Bulk")),
      Categories(Add<DataControl>(u"Categories")),
      CategoryUpdate(Add<DataControl>(u"CategoryUpdate")),
      bulkstatuslog(Add<DataControl>(u"bulkstatuslog")),
      program_(&program) {
  caption = u"SELLER AUCTIONS";
  key_preview = true;
  BuildControls();
  BuildToolbars();
  BuildMenus();
  RegisterOwnRoutines();
  OnLoad = [this] { Form_Load(); };
  OnActivate = [this] { Form_Activate(); };
  OnKeyDown = [this](int& key_code, int shift) { OnKey(key_code, shift); };
  auto on_unload = [this](int&) { exit_program(); };
  OnUnload = on_unload;
}

void MainForm::BuildControls() {
  for (ComboBox* c : {&Auction_type_lst, &Auction_status_lst, &Userid_lst, &site_lst}) c->style = 2;
  // The type, status and site selectors are hooked by the views (RegisterViews).
  Userid_lst.OnClick = [this] { CallRoutine("change_user_id"); };

  auto pages = Pages();
  SSTab1.SetTabs(kPageCount);
  for (int i = 0; i < kPageCount; ++i) SSTab1.page(i).caption = pages[i].caption;
  SSTab1.page(kAdvEditPage).visible = false;
  SSTab1.OnTabClick = [this](int) { tab_refresh(); };
  // Each page's controls stand in a frame of that page.
  for (int i = 0; i < kPageCount; ++i) {
    Control& page = Add(ControlKind::Frame, u"tab_page_fra", i);
    page.SetContainer(&SSTab1);
    page.layout.page = i;
  }

  StatusBar1.SetPanels(2);
  StatusBar1.OnPanelClick = [this](int) {
    Ui& u = ui();
    u.ClearClipboard();
    u.SetClipboardText(StatusBar1.panel(1));
  };

  ctListBar1.OnItemClick = [this](int g, int i, int b) { OnListBarClick(g, i, b); };

  WebBrowser1.navigator = nullptr;  // the web view is given by the front end

  Add(ControlKind::Meter, u"ctMeter1").SetVisible(false);
  Add(ControlKind::Picture, u"db_seller_action_control");
  Add(ControlKind::Picture, u"db_bidder_action_control");
  Add(ControlKind::CheckBox, u"Apply_flt_chk");
  Add<ComboBox>(u"field_lst").style = 2;
  Add<ComboBox>(u"compare_lst").style = 2;
  Add(ControlKind::TextBox, u"Filter_value_txt");
  Add<ComboBox>(u"duration_lst", 1).style = 2;
  Add<ComboBox>(u"backup_lst").style = 2;
  Add(ControlKind::DateEdit, u"report_start_date");
  Add(ControlKind::DateEdit, u"report_end_date");
  Add(ControlKind::TextBox, u"schedule_time_txt");
  Add(ControlKind::TextBox, u"schedule_day_txt");
  Add(ControlKind::TextBox, u"schedule_month_txt");
  Add(ControlKind::Label, u"total_price_lbl");
  for (int i = 0; i < 3; ++i) {
    static const char16_t* kSetupButtons[] = {u"Save Settings and Exit Setup", u"Set Mail Password",
                                              u"Cancel"};
    static const char* kSetupRoutines[] = {"save_setup_settings", "set_mail_password", "cancel_setup"};
    Control& b = Add(ControlKind::Button, u"setup_btn", i);
    b.SetCaption(kSetupButtons[i]);
    // The routines decide whether the page may be left: a refused save or cancel stays on it.
    std::string routine = kSetupRoutines[i];
    b.OnClick = [this, routine] { RunCommand(routine); };
  }

  // Each field that differs between the sides exists twice: index 0 on seller, index 1 on Bidder.
  for (const char* name : SidePairControls()) {
    Text n = Str(name);
    ControlKind kind = EndsWith(n, u"_chk")   ? ControlKind::CheckBox
                       : EndsWith(n, u"_lbl") ? ControlKind::Label
                                              : ControlKind::TextBox;
    // Money fields show the locale's currency symbol, so they are money boxes rather than text boxes.
    bool money = n == u"ctRealInput1" || n == u"Cost_txt" || n == u"Minbid_txt" || n == u"Reserve_txt" ||
                 n == u"shipping_price_txt";
    for (int side = 0; side < 2; ++side) {
      Control& c = money ? Add<MoneyEdit>(n, side) : Add(kind, n, side);
      c.SetVisible(side == 0);
    }
  }
  // The date editors of the details page: end time, end date, start date, two for the lister's
  // schedule, and the schedule time.
  for (int i = 0; i < 6; ++i) Add<DateEditBox>(u"ctDEdit1", i).SetVisible(false);
  // The fields of the current row the pairs show, per side.
  struct PairField {
    const char16_t* control;
    const char16_t* seller_field;
    const char16_t* bidder_field;
  };
  for (const PairField& f : {PairField{u"itemno_txt", u"Item", u"Item"},
                             PairField{u"Title_txt", u"Title", u"Title"},
                             PairField{u"ctRealInput1", u"Price", u"Price"},
                             PairField{u"start_pnl", u"Start", u"Start"},
                             PairField{u"end_pnl", u"End", u"End"},
                             PairField{u"id_pnl", u"Id", u"Id"},
                             PairField{u"email_pnl", u"Email", u"Email"},
                             PairField{u"hi_bidder_name_txt", u"Name", u"Name"},
                             PairField{u"hi_bidder_address_txt", u"Address", u"Address"},
                             PairField{u"Comments_txt", u"Comments", u"Comments"},
                             PairField{u"status_log_txt", u"status_log", u"status_log"},
                             PairField{u"Quantity_txt", u"Quantity", u"Quantity"},
                             PairField{u"Cost_txt", u"total_purchase", u"Cost"},
                             PairField{u"Minbid_txt", u"Minbid", u"Minbid"},
                             PairField{u"Reserve_txt", u"Reserve", u"Reserve"},
                             PairField{u"category_lbl", u"category", u"category"},
                             PairField{u"Description1_txt", u"Description1", u"Description1"},
                             PairField{u"bids_lbl", u"No_bids", u"No_bids"},
                             PairField{u"reserve_met_chk", u"Reserve_met", u"Reserve_met"},
                             PairField{u"Contact_chk", u"Contact", u"Contact"},
                             PairField{u"Response_chk", u"Response", u"Response"},
                             PairField{u"Payment_chk", u"Payment", u"Payment"},
                             PairField{u"Trans_comp_chk", u"Trans_comp", u"Trans_comp"},
                             PairField{u"auction_ended_chk", u"Completed", u"Completed"},
                             PairField{u"status_date_txt", u"Status_date", u"Status_date"},
                             PairField{u"feedback_chk", u"Feedback", u"Feedback"}}) {
    Get(f.control, 0).Bind(seller, f.seller_field);
    Get(f.control, 1).Bind(Bidder, f.bidder_field);
  }
  Add(ControlKind::TextBox, u"seller_id_txt").Bind(Bidder, u"Seller_id");
  Add(ControlKind::TextBox, u"seller_email_txt").Bind(Bidder, u"Seller_email");
  for (const char16_t* n : {u"seller_id_txt", u"seller_email_txt"}) Find(n)->SetVisible(false);
  Add(ControlKind::Label, u"seller_id_lbl").SetCaption(u"Seller ID");
  Add(ControlKind::Label, u"seller_email_lbl").SetCaption(u"Seller Email");
  Find(u"seller_id_lbl")->SetVisible(false);
  Find(u"seller_email_lbl")->SetVisible(false);
  Control& bid = Add(ControlKind::Button, u"bid_btn");
  bid.SetCaption(u"Bid When?");
  bid.SetVisible(false);
  bid.OnClick = [this] { RunCommand("bid_btn"); };

  // Page 9: the parsed text of the last import, editable by hand.
  Add(ControlKind::TextBox, u"FileDisplay");
  Control& save = Add(ControlKind::Button, u"ctbutton1");
  save.SetCaption(u"Save Data and Exit");
  save.OnClick = [this] {
    if (!program_->routines.Call("save_parsed_data")) {
      std::error_code ec;
      std::filesystem::path file = program_->DbFile(u"\\parsed_data.htm");
      std::ofstream(file, std::ios::binary) << ToUtf8(Find(u"FileDisplay")->text());
    }
    SSTab1.page(kAdvEditPage).visible = false;
    SSTab1.SetTab(0);
  };

  Timer& t1 = Add<Timer>(u"Timer1");
  t1.OnTimer = [this] { CallRoutine("auction_end_time_2"); };
  ClockControl& clock = Add<ClockControl>(u"MhClock_current_time");
  clock.OnTick = [this](int) { CallRoutine("MhClock_current_time_tick"); };

  seller_grid.SetDataSource(&seller);
  buyer_grid.SetDataSource(&Bidder);
  // A column the user widens or narrows keeps its width for the next start.
  for (auto [grid, section] :
       {std::pair{&seller_grid, u"Sellergrid"}, std::pair{&buyer_grid, u"Buyergrid"}}) {
    // Copied into the handler by name: clang before 16 cannot capture a structured binding.
    grid->OnColResize = [this, grid = grid, section = section](int col) {
      program_->settings.SaveSetting(kAppKey, section, FromUtf8(std::to_string(col)),
                                     FromUtf8(std::to_string(grid->column(col).width)));
    };
  }
  buyer_grid.SetVisible(false);
  seller.OnReposition = [this] { OnRowChange(true); };
  Bidder.OnReposition = [this] { OnRowChange(false); };
}

void MainForm::BuildToolbars() {
  for (const ToolbarInfo& info : Toolbars()) {
    Toolbar& bar = Add<Toolbar>(Str(info.name));
    for (const char16_t* caption : info.buttons) bar.AddButton(caption);
    std::string name = info.name;
    bar.OnButtonClick = [this, name](int n) {
      // The browser's own buttons work the web view.
      if (name == "ctToolBar1" && n <= 3) {
        if (n == 1 && browser_pos_ > 0) WebBrowser1.Navigate(browser_history_[--browser_pos_]);
        if (n == 2 && browser_pos_ + 1 < static_cast<int>(browser_history_.size()))
          WebBrowser1.Navigate(browser_history_[++browser_pos_]);
        if (n == 3 && !WebBrowser1.location_url.empty()) WebBrowser1.Navigate(WebBrowser1.location_url);
        return;
      }
      if (name == "ctToolBar1" && n == 5) {
        program_->main_screen.browser_request.fill(false);
        SSTab1.SetTab(0);
        SSTab1.SetTab(kBrowserPage);
        return;
      }
      RunCommand(name + "(" + std::to_string(n) + ")");
    };
  }
}

void MainForm::BuildMenus() {
  for (const MenuInfo& info : Menus()) {
    Menu* parent = info.parent ? &Get<Menu>(Str(info.parent)) : nullptr;
    Menu& m = AddMenu(Str(info.name), info.caption, parent, info.index);
    m.SetVisible(info.visible);
    std::string routine = info.name;
    m.OnClick = [this, routine] { RunCommand(routine); };
  }
  // The import's text can be mended by hand only once an import has failed on it; the import enables
  // the entry then, and owns its routine.
  Get<Menu>(u"Advanced_import_edit_mnu").SetEnabled(false);
  // "Tab Views": one shortcut a page for pages 0 to 8.
  Menu& views = Get<Menu>(u"tab_views_mnu");
  auto pages = Pages();
  for (int i = 0; i < kPageCount; ++i) {
    if (!pages[i].menu_caption) continue;
    Menu& m = AddMenu(u"tab_view_mnu", pages[i].menu_caption, &views, i);
    m.OnClick = [this, i] { SSTab1.SetTab(i); };
  }
  // The duplicate menus: one entry per user id for the first nine, filled by load_userids.
  Menu& dup = Get<Menu>(u"duplicate_mnu");
  struct DupMenu {
    const char16_t* parent;
    const char16_t* caption;
    const char* routine;
  };
  for (const DupMenu& d : {DupMenu{u"duplicate_ebay_mnu", u"eBay", "duplicate_auction_to_ebay_userid"},
                           DupMenu{u"duplicate_yahoo_mnu", u"Yahoo", "duplicate_auction_to_yahoo_userid"},
                           DupMenu{u"duplicate_sold_mnu", u"Sold", "duplicate_auction_to_sold_userid"}}) {
    Menu& sub = AddMenu(d.parent, d.caption, &dup);
    std::string routine = d.routine;
    for (int i = 0; i < 9; ++i) {
      Menu& m = AddMenu(Str(d.routine), Text(), &sub, i);
      m.SetVisible(false);
      m.OnClick = [this, routine, i, &m] {
        menu_index = i;
        menu_caption = m.caption();
        RunCommand(routine);
      };
    }
  }
  // The right-button menu of "Import Auction Fees".
  Menu& fees = AddMenu(u"fees_mnu", u"Fees", nullptr);
  fees.SetVisible(false);
  for (auto [name, caption] : {std::pair{"fees_since_invoice_mnu", u"Since Last Invoice"},
                               std::pair{"fees_last_month_mnu", u"For Last Month"},
                               std::pair{"fees_last_2_months_mnu", u"For Last 2 Months"}}) {
    std::string routine = name;
    AddMenu(Str(name), caption, &fees).OnClick = [this, routine] { RunCommand(routine); };
  }
}

void MainForm::RegisterOwnRoutines() {
  Routines& r = program_->routines;
  r.Register(kExitRoutine, [this] { exit_program(); });
  r.Register("exit_mnu", [this] { exit_program(); });
  r.Register("view_search_page", [this] { show_browser_target(BrowserTarget::kSearch); });
  r.Register("view_myebay_page", [this] { show_browser_target(BrowserTarget::kMyEbay); });
  r.Register("view_account_page", [this] { show_browser_target(BrowserTarget::kAccount); });
  r.Register("view_system_status_page", [this] { show_browser_target(BrowserTarget::kSystemStatus); });
  r.Register("view_lotwright_support_page", [this] { show_browser_target(BrowserTarget::kForum); });
  r.Register("view_lotwright_update_page", [this] { show_browser_target(BrowserTarget::kAnnouncements); });
  r.Register("view_paypal_home_page", [this] { show_browser_target(BrowserTarget::kPayPal); });
  r.Register("about_menu", [this] {
    if (program_->splash) program_->splash->ShowAbout();
  });
  r.Register("contents_mnu", [this] { ui().OpenHelp(program_->startup.help_file, 0); });
  // Entries that exist on the menus and do nothing.
  for (const char* none : {"locate_database_mnu", "download_site_mnu", "mail_debug_mnu", "socket_debug_mnu"})
    r.Register(none, [] {});
  RegisterUserids(*this);
  RegisterViews(*this);
  RegisterRecords(*this);
  RegisterUpdateCheck(*this);
}

Control& MainForm::Page(int page) {
  return Get(u"tab_page_fra", page);
}

void MainForm::RunCommand(const std::string& routine) {
  if (!program_->routines.Call(routine)) SetStatus(kNotAvailable);
}

void MainForm::OnKey(int& key_code, int) {
  // F2..F9 are pages 0..7 and F11 the Setup page; F10 has no page.
  int page = -1;
  if (key_code >= key::kF1 + 1 && key_code <= key::kF1 + 8) page = key_code - key::kF1 - 1;
  if (key_code == key::kF1 + 10) page = kSetupPage;
  if (page < 0) return;
  key_code = 0;
  if (!SSTab1.page(page).enabled) return;
  SSTab1.SetTab(page);
}

void MainForm::OnRowChange(bool seller_side) {
  CallRoutine("auction_end_time");
  int page = SSTab1.tab();
  if (page == kBrowserPage && seller_side == IsSeller()) tab_refresh();
  if (page == 1) {
    CallRoutine("which_letter_icon_status_to_display");
    if (seller_side) CallRoutine("calculate_fee_display");
  }
  if (page == 3 && seller_side) CallRoutine("refresh_picture");
}

void MainForm::OnListBarClick(int group, int item, int button) {
  auto set = ListBarSet(IsSeller());
  if (group < 0 || group >= static_cast<int>(set.size())) return;
  const ListBarGroupInfo& g = set[group];
  if (item < 0 || item >= static_cast<int>(g.items.size())) return;
  const ListBarItemInfo& it = g.items[item];
  ctListBar1.help_context_id = g.help_topic;
  std::string routine = it.routine;
  if (button == kRightButton) {
    if (routine == "get_allfees_button") PopupMenu(Get<Menu>(u"fees_mnu"));
    if (routine == "duplicate_auction_noid") PopupMenu(Get<Menu>(u"duplicate_mnu"));
    return;
  }
  if (IsSeller()) {
    Text gc = g.caption;
    if (gc == u"Import" || gc == u"Database") SSTab1.page(kListerPage).enabled = true;
    if (gc == u"BulkList" && routine != kExitRoutine)
      SSTab1.page(kListerPage).enabled = routine == "hide_bulk_list_auctions";
  }
  RunCommand(routine);
}

void MainForm::add_remove_listbar_icons() {
  ctListBar1.Clear();
  for (const ListBarGroupInfo& g : ListBarSet(IsSeller())) {
    int gi = ctListBar1.AddGroup(g.caption);
    for (const ListBarItemInfo& it : g.items) ctListBar1.AddItem(gi, it.caption, it.tip, Str(it.routine));
  }
  ctListBar1.current_group = 0;
}

void MainForm::change_active_buttons() {
  bool s = IsSeller();
  for (const char* name : SidePairControls()) {
    // Members from index 2 on belong to pages of one side only (the Sell page) and are left alone.
    for (Control* c : Array(Str(name)))
      if (c->index() <= 1) c->SetVisible(c->index() == (s ? 0 : 1));
  }
  for (const char16_t* n : {u"seller_id_txt", u"seller_email_txt", u"seller_id_lbl", u"seller_email_lbl"})
    Find(n)->SetVisible(!s);
  Toolbar& bar1 = Get<Toolbar>(u"ctToolBar1");
  bar1.button(6).enabled = !s;
  if (!s) bar1.button(7).enabled = true;
  Control& bid = *Find(u"bid_btn");
  if (s) {
    bid.SetVisible(false);
  } else {
    bid.SetVisible(true);
    bid.SetEnabled(true);
  }
  Toolbar& bar8 = Get<Toolbar>(u"ctToolBar8");
  for (int i = 1; i <= 4; ++i) bar8.button(i).enabled = s;
  bar8.button(5).enabled = true;
  Find(u"ctToolBar3")->SetVisible(s);
  seller_grid.SetVisible(s);
  buyer_grid.SetVisible(!s);
}

void MainForm::disable_tabs() {
  for (int i = 0; i < SSTab1.Tabs(); ++i) SSTab1.page(i).enabled = i == SSTab1.tab();
  for (Control* c :
       std::initializer_list<Control*>{&Auction_type_lst, &Auction_status_lst, &Userid_lst, &site_lst,
                                       &ctListBar1, Find(u"Apply_flt_chk"), Find(u"tab_views_mnu"),
                                       Find(u"file_mnu"), Find(u"database_mnu"), Find(u"help_mnu")})
    c->SetEnabled(false);
  feedback_grid.allow_updates = true;
}

void MainForm::enable_tabs() {
  for (int i = 0; i < SSTab1.Tabs(); ++i) SSTab1.page(i).enabled = true;
  for (Control* c :
       std::initializer_list<Control*>{&Auction_type_lst, &Auction_status_lst, &Userid_lst, &site_lst,
                                       &ctListBar1, Find(u"Apply_flt_chk"), Find(u"tab_views_mnu"),
                                       Find(u"file_mnu"), Find(u"database_mnu"), Find(u"help_mnu")})
    c->SetEnabled(true);
  feedback_grid.allow_updates = false;
  SSTab1.SetTab(0);
}

void MainForm::show_browser_target(BrowserTarget target) {
  program_->main_screen.browser_request[static_cast<int>(target)] = true;
  // Through page 0, so that the browser page is entered afresh even when it is showing.
  SSTab1.SetTab(0);
  SSTab1.SetTab(kBrowserPage);
}

void MainForm::tab_refresh() {
  Program& p = *program_;
  if (p.main_screen.renaming) return;
  int page = SSTab1.tab();
  if (page < 0 || page > 9) return;

  Find(u"ctMeter1")->SetVisible(false);
  for (const char16_t* n : {u"db_seller_action_control", u"db_bidder_action_control", u"Apply_flt_chk"})
    Find(n)->SetEnabled(true);

  const PageInfo& info = Pages()[page];
  if (info.status && !(page == 0 && Like(status(), u"*Mail sent successfully*"))) SetStatus(info.status);

  bool s = IsSeller();
  switch (page) {
    case 1:
      CallRoutine("which_letter_icon_status_to_display");
      break;
    case 2: {
      Toolbar& bar2 = Get<Toolbar>(u"ctToolBar2");
      for (int i = 3; i <= 5; ++i) bar2.button(i).enabled = s;
      CallRoutine("fill_total_labels");
      break;
    }
    case 3:
      CallRoutine("fill_total_labels");
      break;
    case 4: {
      if (p.main_screen.browser_page_held) {
        p.main_screen.browser_page_held = false;
        break;
      }
      BrowserContext c;
      c.database_path = p.startup.database_path;
      c.userid = Userid_lst.text();
      c.password = p.main_screen.password;
      c.feedback_url = p.main_screen.feedback_url;
      DataControl& side = s ? seller : Bidder;
      try {
        if (Misc.HasRecordset() && !Misc.recordset().Eof()) {
          Variant fees = Misc.recordset().Fields(u"servername_fees");
          if (fees.text()) c.servername_fees = *fees.text();
        }
        if (side.HasRecordset() && !side.recordset().Eof() && !side.recordset().Bof()) {
          Variant item = side.recordset().Fields(u"Item");
          Variant site = side.recordset().Fields(u"site");
          if (item.text()) c.item = *item.text();
          if (site.text()) c.site = *site.text();
        }
      } catch (const RuntimeError&) {
        // A store without those columns still shows what it can.
      }
      BrowserPlace place = ResolveBrowserTarget(p.main_screen.browser_request, c, p.settings);
      if (place.target) p.main_screen.browser_request[static_cast<int>(*place.target)] = false;
      if (place.status) SetStatus(*place.status);
      if (!place.address.empty()) {
        if (browser_pos_ + 1 < static_cast<int>(browser_history_.size()))
          browser_history_.resize(browser_pos_ + 1);
        browser_history_.push_back(place.address);
        browser_pos_ = static_cast<int>(browser_history_.size()) - 1;
        WebBrowser1.Navigate(place.address);
      }
      break;
    }
    case 5:
      CallRoutine("show_lister_image");
      break;
    case 6:
      CallRoutine("label_status_boxes");
      if (!p.main_screen.bulk_view) {
        CallRoutine("which_letter_to_display");
      } else {
        CallRoutine("show_bulk_mail_page");
      }
      break;
    case 7: {
      Text fmt = StartsWithIgnoreCase(p.regional.short_date_format, u"M") ? u"mm/dd/yy" : u"dd/mm/yy";
      Text today = Format(Variant(p.clock.Today()), fmt, p.regional);
      Find(u"report_start_date")->SetText(today);
      Find(u"report_end_date")->SetText(today);
      break;
    }
    case 8: {
      setup_datacontrl.RecordSource = u"Select * From Setup where " + UseridCondition(Userid_lst.text());
      try {
        setup_datacontrl.Refresh();
        if (!setup_datacontrl.recordset().Eof()) {
          Variant v = setup_datacontrl.recordset().Fields(u"mailconnecttype");
          // Showing the stored choice is not the user switching the box on: its warning stays quiet.
          Control& esmtp = Get(u"setup_chk", 1);
          auto handler = std::move(esmtp.OnClick);
          esmtp.OnClick = nullptr;
          esmtp.SetValue(v.number() && *v.number() == 2 ? 1 : 0);
          esmtp.OnClick = std::move(handler);
        }
      } catch (const RuntimeError& e) {
        SetStatus(FromUtf8(e.description()));
      }
      CallRoutine("populate_feedback_grid");
      disable_tabs();
      break;
    }
    default:
      break;
  }
}

}  // namespace lw
