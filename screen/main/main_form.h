// The main form: four selectors, the list bar, the tabbed pages over the current auction, the status
// bar, the menus and toolbars, and the data controls the pages are bound to. Built from the tables of
// main_layout.h. The routines of the screen itself (tab_refresh, change_active_buttons, ...) and of
// start-up and exit live here; every other command goes through the routine registry.
#pragma once

#include <vector>

#include "screen/data_control.h"
#include "screen/form.h"
#include "screen/grid.h"
#include "screen/main/program.h"

namespace lw {

inline constexpr char16_t kNotAvailable[] = u"This command is not available yet.";
inline constexpr char16_t kNoUserid[] = u"No Userid Set";

class MainForm : public Form {
 public:
  MainForm(Screen& screen, Program& program);

  Program& program() const { return *program_; }

  // Selectors.
  ComboBox& Auction_type_lst;
  ComboBox& Auction_status_lst;
  ComboBox& Userid_lst;
  ComboBox& site_lst;
  TabStrip& SSTab1;
  StatusBar& StatusBar1;
  ListBar& ctListBar1;
  BrowserControl& WebBrowser1;
  Grid& seller_grid;
  Grid& buyer_grid;
  Grid& feedback_grid;
  // Data sources.
  DataControl& seller;
  DataControl& Bidder;
  DataControl& setup_datacontrl;
  DataControl& Misc;
  DataControl& Bulk;
  DataControl& Categories;
  DataControl& CategoryUpdate;
  DataControl& bulkstatuslog;

  // Status bar panel 1 (messages) and 2 (the view's total).
  void SetStatus(const Text& text) { StatusBar1.SetPanel(1, text); }
  const Text& status() const { return StatusBar1.panel(1); }
  bool IsSeller() const { return Auction_type_lst.text() == u"Seller"; }

  // The frame that holds the controls of a page of SSTab1.
  Control& Page(int page);

  // A command of the list bar, a toolbar or a menu: runs the registered routine, or says that the
  // command is not there yet.
  void RunCommand(const std::string& routine);
  // A call from inside the screen into a routine of a later part: nothing while unregistered.
  void CallRoutine(const std::string& routine) { program_->routines.Call(routine); }

  // The screen's routines.
  void tab_refresh();
  void change_active_buttons();
  void disable_tabs();
  void enable_tabs();
  void add_remove_listbar_icons();
  // Raises the request flag of a browser target and enters the browser page afresh.
  void show_browser_target(BrowserTarget target);

  // Start-up and exit.
  void Form_Load();
  void Form_Activate();
  void load_userids();
  void import_ini_file();
  void save_user_settings();
  void exit_program();
  void check_database_conversion();
  // "SELLER AUCTIONS current Database Name - " (or BIDDER) and the store's path.
  void SetTitle(bool seller);

  // The entry of the array menu that ran last (duplicate menus): its index and caption.
  int menu_index = -1;
  Text menu_caption;

 private:
  void BuildControls();
  void BuildMenus();
  void BuildToolbars();
  void RegisterOwnRoutines();
  void OnListBarClick(int group, int item, int button);
  void OnKey(int& key_code, int shift);
  void OnRowChange(bool seller_side);
  void RestoreGridWidths(Grid& grid, const char16_t* section);
  void ApplyColours();
  void FillFixedLists();
  void StartConvert();

  Program* program_;
  bool exiting_ = false;
  std::vector<Text> browser_history_;
  int browser_pos_ = -1;
};

}  // namespace lw
