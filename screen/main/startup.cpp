#include "screen/main/startup.h"

#include <sys/stat.h>

#include <cmath>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/main/database_location.h"
#include "screen/main/exit_rules.h"
#include "screen/main/main_form.h"
#include "screen/main/main_places.h"
#include "screen/main/saved_view.h"
#include "screen/main/small_forms.h"

namespace lw {
namespace {

constexpr char16_t kDb[] = u"Database";
constexpr char16_t kScreen[] = u"Screen";

// Form_Load goes on at the next statement after an error, except a missing file, which ends the process.
template <class F>
void ResumeNext(Ui& ui, F&& step) {
  try {
    step();
  } catch (const RuntimeError& e) {
    if (e.number() == err::kFileNotFound) ui.EndProcess(1);
  }
}

Text FieldText(Recordset& rs, TextView name) {
  Variant v = rs.Fields(name);
  return v.text() ? *v.text() : Text();
}

long SettingNumber(const Settings& s, TextView section, TextView key, TextView def) {
  return std::lround(Val(s.GetSetting(kAppKey, section, key, def)));
}

constexpr const char16_t* kFilterFields[] = {u"Title",
                                             u"Item",
                                             u"High Bidder ID",
                                             u"High Bidder Email",
                                             u"High Bidder Name",
                                             u"Full Description",
                                             u"Seller Id (Bidder Auction)",
                                             u"Seller Email (Bidder Auction)",
                                             u"Auction Comments",
                                             u"Status Log",
                                             u"Shipping Tracking Number",
                                             u"Payment Method",
                                             u"Feedback Sent",
                                             u"Item Taxable",
                                             u"Reserve Met",
                                             u"Auction End Contact Made",
                                             u"Response Received",
                                             u"Payment Received/Sent",
                                             u"Item Shipped/Received",
                                             u"High Bidder Address",
                                             u"Cost Price",
                                             u"Sale Price",
                                             u"Picture Name"};
constexpr const char16_t* kSellerStatuses[] = {u"Auctions in Progress",
                                               u"Auctions Ended - Transaction in Progress",
                                               u"Auctions Ended - Transaction Completed",
                                               u"All Auctions",
                                               u"Unsubmitted Auctions",
                                               u"Template Auctions"};

}  // namespace

std::filesystem::path Program::DbFile(TextView name) const {
  return JoinDatabasePath(startup.database_path, name);
}

void CreateForms(Program& p) {
  p.main = &p.screen.Create<MainForm>(p);
  p.screen.main_form = p.main;
  p.splash = &p.screen.Create<SplashForm>(p);
  p.wizard = &p.screen.Create<WizardForm>(p);
}

namespace {

// Makes the folders of `folder` that are missing, each for its owner alone.
void CreatePrivateFolders(const std::filesystem::path& folder) {
  std::error_code ec;
  if (folder.empty() || std::filesystem::exists(folder, ec)) return;
  CreatePrivateFolders(folder.parent_path());
  ::mkdir(folder.c_str(), 0700);
}

}  // namespace

void InstallShippedStore(const std::filesystem::path& shipped, const std::filesystem::path& target) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(shipped, ec))
    throw RuntimeError(err::kStoreFileNotFound, "Could not find file '" + target.string() + "'.");
  // The store will hold the site and mail passwords, the folder its working files (the filled-in
  // sign-in page among them): folders made here are the user's alone, and so is the file.
  CreatePrivateFolders(target.parent_path());
  std::filesystem::path tmp = target;
  tmp += ".installing";
  std::filesystem::copy_file(shipped, tmp, std::filesystem::copy_options::overwrite_existing, ec);
  if (!ec)
    std::filesystem::permissions(
        tmp, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ec);
  if (!ec) std::filesystem::rename(tmp, target, ec);
  if (ec) {
    std::error_code ignore;
    std::filesystem::remove(tmp, ignore);
    throw RuntimeError(err::kEngineFailure,
                       "Could not install the empty store at '" + target.string() + "': " + ec.message());
  }
}

void Main(Program& p) {
  auto& st = p.startup;
  DatabaseLocation loc = ReadDatabaseLocation(p.settings);
  if (!st.command_line_store.empty()) {
    loc.path = FromUtf8(st.command_line_store.parent_path().string());
    loc.name = u"\\" + FromUtf8(st.command_line_store.filename().string());
  }
  st.database_path = loc.path;
  st.database_name = loc.name;

  // A store missing where the settings point sends us to the default folder; missing there too, the
  // empty store that ships with the program is put there, as an installer would have done.
  bool installed = false;
  for (;;) {
    try {
      st.db = Database::OpenDatabase(p.DbFile(st.database_name), p.regional);
      st.misc = st.db->OpenRecordset(u"Select * From Misc");
      st.setup = st.db->OpenRecordset(u"Select * From Setup");
      break;
    } catch (const RuntimeError& e) {
      st.misc.reset();
      st.setup.reset();
      st.db.reset();
      if (e.number() == err::kStoreFileNotFound) {
        Text fallback = FromUtf8(DefaultDatabaseFolder().string());
        if (st.database_path != fallback) {
          st.database_path = fallback;
          continue;
        }
        if (!installed) {
          installed = true;
          try {
            InstallShippedStore(p.files.shipped_store, p.DbFile(st.database_name));
            continue;
          } catch (const RuntimeError& install) {
            p.screen.ui().MsgBox(u"Startup Error", u"Error message is: " + FromUtf8(install.description()),
                                 MsgButtons::OK, MsgIcon::Critical);
            break;
          }
        }
      }
      p.screen.ui().MsgBox(u"Startup Error", u"Error message is: " + FromUtf8(e.description()),
                           MsgButtons::OK, MsgIcon::Critical);
      break;
    }
  }

  p.splash->Show();
  p.main->Show();
}

void MainForm::SetTitle(bool seller) {
  // The store's real place, the folder joined with the file name, as the user finds it on disk.
  const auto& st = program_->startup;
  caption = Text(seller ? u"SELLER AUCTIONS" : u"BIDDER AUCTIONS") + u" current Database Name - " +
            FromUtf8(program_->DbFile(st.database_name).string());
}

void MainForm::FillFixedLists() {
  Program& p = *program_;
  auto& field = Get<ComboBox>(u"field_lst");
  for (const char16_t* f : kFilterFields) field.AddItem(f);
  auto& compare = Get<ComboBox>(u"compare_lst");
  for (const char16_t* c : {u"=", u"like", u">", u"<"}) compare.AddItem(c);
  Auction_type_lst.AddItem(u"Seller");
  Auction_type_lst.AddItem(u"Bidder");
  auto& duration = Get<ComboBox>(u"duration_lst", 1);
  for (const char16_t* d : {u"3", u"5", u"7", u"10"}) duration.AddItem(d);
  for (const char16_t* s : kSellerStatuses) Auction_status_lst.AddItem(s);
  site_lst.AddItem(u"eBay");
  auto& backup = Get<ComboBox>(u"backup_lst");
  for (const char16_t* b : kBackupIntervals) backup.AddItem(b);
  long every = SettingNumber(p.settings, kDb, u"Backupevery", u"0");
  ResumeNext(ui(), [&] {
    if (every < 0 || every >= backup.ListCount())
      throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
    backup.SetListIndex(static_cast<int>(every));
  });
  // The side starts as Seller; the type's handler is not run for it, since nothing is loaded yet.
  auto handler = std::move(Auction_type_lst.OnClick);
  Auction_type_lst.OnClick = nullptr;
  Auction_type_lst.SetListIndex(0);
  Auction_type_lst.OnClick = std::move(handler);
  // Nor the site's: the view is built once the user id and the saved view are known.
  {
    FlagRaised settle(program_->main_screen.settling);
    site_lst.SetListIndex(0);
  }
}

void MainForm::RestoreGridWidths(Grid& grid, const char16_t* section) {
  for (int i = 0; i < grid.ColumnCount(); ++i) {
    Text w = program_->settings.GetSetting(kAppKey, section, FromUtf8(std::to_string(i)), Text());
    if (!w.empty()) grid.column(i).width = static_cast<int>(Val(w));
  }
}

void MainForm::ApplyColours() {
  const Settings& s = program_->settings;
  Text odd = s.GetSetting(kAppKey, kScreen, u"Oddgrid", Text());
  Text even = s.GetSetting(kAppKey, kScreen, u"Evengrid", Text());
  Text bar = s.GetSetting(kAppKey, kScreen, u"Listbar", Text());
  for (Grid* g : {&seller_grid, &buyer_grid, &feedback_grid}) {
    if (!odd.empty()) g->odd_colour = static_cast<int32_t>(Val(odd));
    if (!even.empty()) g->even_colour = static_cast<int32_t>(Val(even));
  }
  if (!bar.empty()) ctListBar1.SetBackcolor(static_cast<int32_t>(Val(bar)));
}

void MainForm::Form_Load() {
  Program& p = *program_;
  Ui& u = ui();
  auto& st = p.startup;

  // Every control is in place before anyone draws the form, the subsystems' ones too.
  PlaceMainControls(*this);

  // 8. Help, and every data source on the one store.
  st.help_file = p.files.help;
  for (DataControl* d :
       {&seller, &Bidder, &setup_datacontrl, &Misc, &Bulk, &Categories, &CategoryUpdate, &bulkstatuslog})
    d->SetDatabase(st.db.get());

  // 9. Window and fixed lists.
  width = static_cast<int>(SettingNumber(p.settings, kScreen, u"Width", u"11445"));
  height = static_cast<int>(SettingNumber(p.settings, kScreen, u"Height", u"9000"));
  left = static_cast<int>(SettingNumber(p.settings, kScreen, u"Left", u"0"));
  top = static_cast<int>(SettingNumber(p.settings, kScreen, u"Top", u"0"));
  ResumeNext(u, [&] { FillFixedLists(); });

  // 10, 11. Grid widths and colours.
  ResumeNext(u, [&] { RestoreGridWidths(seller_grid, u"Sellergrid"); });
  ResumeNext(u, [&] { RestoreGridWidths(buyer_grid, u"Buyergrid"); });
  ResumeNext(u, [&] { ApplyColours(); });

  // 12, 13. List bar and user ids.
  ResumeNext(u, [&] { add_remove_listbar_icons(); });
  ResumeNext(u, [&] { load_userids(); });

  // 14. Locale.
  p.locale.currency_symbol = p.regional.currency_symbol;
  p.locale.language_name = p.regional.language_name;
  p.locale.short_date_format = p.regional.short_date_format;
  p.locale.money_decimal_mark = p.regional.money_decimal_mark;

  // 15. The first user id.
  ResumeNext(u, [&] {
    if (!st.setup) throw RuntimeError(err::kObjectVariableNotSet, "Object variable not set");
    st.setup->MoveFirst();
    Userid_lst.SetText(FieldText(*st.setup, u"Userid"));
  });
  Misc.RecordSource = u"Select * From Misc";
  ResumeNext(u, [&] { Misc.Refresh(); });
  Bulk.RecordSource = u"Select * From bulk";
  bulkstatuslog.RecordSource = u"Select * From bulkstatuslog";
  Categories.RecordSource = u"Select * From Categories";
  CategoryUpdate.RecordSource = u"Select * From Categoryupdate";

  // 16. Reports, regional formatting, the saved view.
  ResumeNext(u, [&] { CallRoutine("load_report_list"); });
  ResumeNext(u, [&] { CallRoutine("locale_formatting"); });
  ResumeNext(u, [&] { import_ini_file(); });

  // 17.
  ResumeNext(u, [&] { CallRoutine("sum_grid"); });
  ResumeNext(u, [&] { change_active_buttons(); });

  // 18. Lister lists, title, schedule defaults.
  ResumeNext(u, [&] { CallRoutine("load_lister_lists"); });
  SetTitle(true);
  ResumeNext(u, [&] {
    Variant now(p.clock.Now());
    Find(u"schedule_time_txt")->SetText(Format(now, u"HH:MM", p.regional));
    Find(u"schedule_day_txt")->SetText(Format(now, u"DD", p.regional));
    Find(u"schedule_month_txt")->SetText(Format(now, u"MM", p.regional));
  });

  // 19.
  ResumeNext(u, [&] { CallRoutine("calculate_time"); });
  ResumeNext(u, [&] { change_active_buttons(); });
  ResumeNext(u, [&] { check_database_conversion(); });
}

void MainForm::Form_Activate() {
  Program& p = *program_;
  // While the store has no real user id, every activation of the screen offers the wizard again.
  bool no_userid = false;
  try {
    if (p.startup.setup && !p.startup.setup->Eof() && !p.startup.setup->Bof())
      no_userid = FieldText(*p.startup.setup, u"Userid") == kNoUserid;
  } catch (const RuntimeError&) {
  }
  if (no_userid && p.wizard && !p.wizard->modal()) p.wizard->Show(true);
  CallRoutine("change_user_id");
  CallRoutine("refresh_picture");
  // The desktop front end resizes the screen's fonts with the window while this is on.
  ResumeNext(ui(), [&] {
    if (!Misc.HasRecordset() || Misc.recordset().Eof() || Misc.recordset().Bof()) return;
    Variant v = Misc.recordset().Fields(u"fontsizing");
    p.main_screen.fontsizing = v.boolean() ? *v.boolean() : !v.IsNull() && CDbl(v, p.regional) != 0;
  });
}

void MainForm::load_userids() {
  auto& st = program_->startup;
  if (!st.setup) throw RuntimeError(err::kObjectVariableNotSet, "Object variable not set");
  Recordset& rs = *st.setup;
  Userid_lst.Clear();
  for (const char16_t* menu : {u"duplicate_auction_to_ebay_userid", u"duplicate_auction_to_yahoo_userid",
                               u"duplicate_auction_to_sold_userid"})
    for (Control* c : Array(menu)) c->SetVisible(false);
  if (rs.Eof() && rs.Bof()) return;
  rs.MoveLast();
  rs.MoveFirst();
  for (int i = 0; !rs.Eof(); ++i, rs.MoveNext()) {
    Text id = FieldText(rs, u"Userid");
    Userid_lst.AddItem(id);
    if (i >= 9) continue;
    for (const char16_t* menu : {u"duplicate_auction_to_ebay_userid", u"duplicate_auction_to_yahoo_userid",
                                 u"duplicate_auction_to_sold_userid"}) {
      Control& m = Get(menu, i);
      m.SetVisible(true);
      m.SetCaption(id);
    }
  }
  rs.MoveFirst();
}

void MainForm::import_ini_file() {
  Program& p = *program_;
  std::optional<SavedView> saved = ImportIniFile(p.DbFile(u"\\lw.ini"));
  p.startup.ini_import_failed = !saved;
  Ui& u = ui();
  Text userid = Userid_lst.text();
  Text site = site_lst.text();
  if (!saved) {
    p.view.base = u"Select * From seller ";
    p.view.tail = u" order by end desc ";
    p.view.condition = u"where Completed = no and username = '" + userid + u"' and site = '" + site + u"'";
    // The default view keeps its own condition: the status shown is not chosen by the user here.
    {
      FlagRaised settle(p.main_screen.settling);
      ResumeNext(u, [&] { Auction_status_lst.SetText(u"All Auctions"); });
    }
    seller.RecordSource = p.view.base + p.view.condition + p.view.tail;
    ResumeNext(u, [&] { seller.Refresh(); });
  } else {
    ResumeNext(u, [&] { Auction_type_lst.SetText(saved->auction_type); });
    ResumeNext(u, [&] { Userid_lst.SetText(saved->userid); });
    ResumeNext(u, [&] { Auction_status_lst.SetText(saved->status); });
    ResumeNext(u, [&] { site_lst.SetText(saved->site); });
    userid = Userid_lst.text();
    site = site_lst.text();
    p.view.base = IsSeller() ? u"Select * From seller " : u"Select * From bidder ";
    DataControl& side = IsSeller() ? seller : Bidder;
    side.RecordSource = saved->query;
    ResumeNext(u, [&] { side.Refresh(); });
    ResumeNext(u, [&] { CallRoutine("auction_filter"); });
  }
  if (!Bidder.HasRecordset()) {
    Bidder.RecordSource = u"Select * From bidder where watching = no and username = '" + userid +
                          u"' and site = '" + site + u"'" + p.view.tail;
    ResumeNext(u, [&] { Bidder.Refresh(); });
  }
  SetStatus(saved ? u"Values from last saved query loaded."
                  : u"Couldn't import ini file. Default values loaded.");
}

void MainForm::save_user_settings() {
  Program& p = *program_;
  Settings& s = p.settings;
  if (window_state == 1) window_state = 0;
  // A store named on the command line was for this run only.
  if (p.startup.command_line_store.empty()) {
    s.SaveSetting(kAppKey, kDb, u"Path", p.startup.database_path);
    s.SaveSetting(kAppKey, kDb, u"Dbname", p.startup.database_name);
  }
  WindowGeometry g = GeometryToSave({width, height, left, top});
  s.SaveSetting(kAppKey, kScreen, u"Width", FromUtf8(std::to_string(g.width)));
  s.SaveSetting(kAppKey, kScreen, u"Height", FromUtf8(std::to_string(g.height)));
  s.SaveSetting(kAppKey, kScreen, u"Left", FromUtf8(std::to_string(g.left)));
  s.SaveSetting(kAppKey, kScreen, u"Top", FromUtf8(std::to_string(g.top)));
  // Only a seller view with rows is kept; a bidder view leaves the file as it was.
  if (!IsSeller() || !seller.HasRecordset()) return;
  Recordset& rs = seller.recordset();
  if (rs.Eof() || rs.RecordCount() <= 0) return;
  WriteIniFile(p.DbFile(u"\\lw.ini"), {Auction_type_lst.text(), Userid_lst.text(), Auction_status_lst.text(),
                                       seller.RecordSource, site_lst.text()});
}

void MainForm::StartConvert() {
  try {
    // The store is named outright: the settings may still point at a folder start-up fell back from.
    Program& p = *program_;
    ui().StartProgram(p.files.convert, {u"--store", FromUtf8(p.DbFile(p.startup.database_name).string())});
  } catch (const RuntimeError& e) {
    ui().MsgBox(u"Startup Error", u"Error message is: " + FromUtf8(e.description()), MsgButtons::OK,
                MsgIcon::Critical);
  }
}

void MainForm::exit_program() {
  if (exiting_) return;
  exiting_ = true;
  Program& p = *program_;
  Ui& u = ui();
  ResumeNext(u, [&] { save_user_settings(); });
  int index = Get<ComboBox>(u"backup_lst").list_index();
  int days = BackupIntervalDays(index < 0 ? 0 : index);
  Date today = p.clock.Today();
  Text stored =
      p.settings.GetSetting(kAppKey, kDb, u"Backupdate", Format(Variant(today), u"short date", p.regional));
  Date last = today;
  try {
    last = CDate(Variant(stored), p.regional);
  } catch (const RuntimeError&) {
    // An unreadable date counts as today: no prompt rather than a prompt at every exit.
  }
  if (BackupDue(last, days, today) && u.MsgBox(u"Backup Database", u"Do you want to backup the database now?",
                                               MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::Yes)
    StartConvert();
  u.EndProcess(0);
}

void MainForm::check_database_conversion() {
  if (!seller.HasRecordset()) return;
  bool current = true;
  try {
    current = seller.recordset().HasField(u"pending");
  } catch (const RuntimeError& e) {
    if (e.number() != err::kItemNotFound) throw;
    current = false;
  }
  if (current) return;
  ui().MsgBox(u"Database Needs Conversion",
              u"You must convert the database to the latest version before continuing.\n"
              u"Lotwright will end and the database conversion program will now be started.\n"
              u"Choose Update V4 Database to complete the conversion",
              MsgButtons::OK, MsgIcon::Critical);
  StartConvert();
  ui().EndProcess(0);
}

}  // namespace lw
