// The main form's layout as data: the pages of SSTab1, the "Tab Views" menu, the browser targets, the two
// list bar sets, the toolbars, the menus and the seller/bidder control pairs. The main form is built from
// these tables, so a caption or an order is changed here and nowhere else.
#pragma once

#include <span>

namespace lw {

inline constexpr int kPageCount = 10;  // 0..8 and the hidden "Adv. Edit" page 9
inline constexpr int kSetupPage = 8;
inline constexpr int kBrowserPage = 4;
inline constexpr int kListerPage = 5;
inline constexpr int kAdvEditPage = 9;

struct PageInfo {
  const char16_t* caption;
  const char16_t* key;           // "F2".."F11", empty for the page without a key
  const char16_t* status;        // status text on entering, nullptr for none
  const char16_t* menu_caption;  // its entry in "Tab Views", nullptr for none
};
std::span<const PageInfo> Pages();

// The request flags of the browser page, in the order tab_refresh takes them.
enum class BrowserTarget {
  kSellPage,
  kValidation,
  kVerification,
  kCategoryNumbers,
  kSearch,
  kMyEbay,
  kAccount,
  kSystemStatus,
  kForum,
  kAnnouncements,
  kPayPal,
  kRelist,
  kFeedback,
  kCount
};
inline constexpr int kBrowserTargetCount = static_cast<int>(BrowserTarget::kCount);

struct ListBarItemInfo {
  const char16_t* caption;
  const char* routine;
  const char16_t* tip;
};
struct ListBarGroupInfo {
  const char16_t* caption;
  int help_topic;
  std::span<const ListBarItemInfo> items;  // "Quit" first
};
// Four groups for a seller, three for a bidder.
std::span<const ListBarGroupInfo> ListBarSet(bool seller);
inline constexpr const char* kExitRoutine = "exit_program";

struct ToolbarInfo {
  const char* name;
  int page;
  std::span<const char16_t* const> buttons;  // button 1 first
};
std::span<const ToolbarInfo> Toolbars();

struct MenuInfo {
  const char* name;  // control name; a click runs the routine of this name
  const char16_t* caption;
  const char* parent;  // nullptr for a top-level menu
  int index = -1;      // for entries of a control array
  bool visible = true;
};
std::span<const MenuInfo> Menus();

// Controls of the detail pages that exist once per side: index 0 bound to seller, index 1 to Bidder.
std::span<const char* const> SidePairControls();

}  // namespace lw
