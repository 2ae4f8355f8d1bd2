#include "screen/main/main_layout.h"

namespace lw {
namespace {

constexpr PageInfo kPages[] = {
    {u"Multi List View (F2)", u"F2", u"Displaying current auction .... Mulitlist TAB View.", u"Mutiple List"},
    {u"Auction Details (F3)", u"F3", u"Displaying current auction .... Detail TAB View.", u"Auction Details"},
    {u"Contact Details (F4)", u"F4", u"Displaying current auction .... Client TAB View.", u"Contact Details"},
    {u"Image (F5)", u"F5", u"Displaying current auction .... Image TAB View.", u"Image"},
    {u"Browser (F6)", u"F6", nullptr, u"Browser"},
    {u"Lister (F7)", u"F7", u"Post auction either now or via a bulk listing", u"Lister"},
    {u"Email (F8)", u"F8", u"Email Page", u"Email"},
    {u"Reports (F9)", u"F9", u"Reports Page", u"Reports"},
    {u"Setup (F11)", u"F11", u"Press Save to exit and re-enable TABS", u"Setup"},
    {u"Adv. Edit", u"", nullptr, nullptr},
};

constexpr ListBarItemInfo kQuit = {u"Quit", kExitRoutine, u"Exit Program"};

constexpr ListBarItemInfo kSellerImport[] = {
    kQuit,
    {u"Update Auctions", "import_sell_btn", u"Automatically Import Auctions"},
    {u"Get Description", "get_descrip_button",
     u"Automatically Import Auction Descriptions and Other Information"},
    {u"Get Description w/HTML", "get_descrip_with_HTML_button",
     u"Automatically Import Auction Descriptions with HTML Included"},
    {u"Import Dutch Bidders", "import_dutch_btn_2", u"Import Dutch Auction and Store Sale Bidders"},
    {u"Import Auction Fees", "get_allfees_button",
     u"Automatically Import Auction Fees use Right Mouse Button for more options"},
    {u"Get Ebaymotors Desc.", "get_descrip_ebaymotors_button",
     u"Automatically Import EbayMotors Auction Descriptions"},
    {u"Get Ebaymotors w/HTML", "get_descrip_ebaymotors_with_HTML_button",
     u"Automatically Import EbayMotors Auction Descriptions with HTML Included"},
};
constexpr ListBarItemInfo kSellerDatabase[] = {
    kQuit,
    {u"Add Auction", "add_new_auction", u"Add a New Auction to the Database"},
    {u"Advanced Edit Auction", "edit_advanced",
     u"Edit Auction #, price, start and end dates of an Existing Auction"},
    {u"Delete Auction", "delete_auction", u"Delete Currently Displayed Auction"},
    {u"Duplicate Auction No ID", "duplicate_auction_noid",
     u"Copy Current Auction but don't assign an Auction Number Right mouse button for more options"},
    {u"Duplicate Auction with ID", "duplicate_auction_withid",
     u"Copy Current Auction including Auction Number"},
};
constexpr ListBarItemInfo kSellerView[] = {
    kQuit,
    {u"Search", "view_search_page", u"Display Auction Search Page"},
    {u"Relist Auction", "relist_auction", u"Relist current Auction"},
    {u"View Bulkmail", "view_bulkmail", u"Goto the Bulkmail Screen"},
    {u"View My Ebay", "view_myebay_page", u"Display My eBay Page"},
    {u"View Account", "view_account_page", u"Display My Account Information"},
    {u"System Status", "view_system_status_page", u"Display Auction Site System Status"},
    {u"Lotwright Support Forum", "view_lotwright_support_page", u"Display Lotwright Forum Page"},
    {u"PayPal Home Page", "view_paypal_home_page", u"Logon to PayPal"},
};
constexpr ListBarItemInfo kSellerBulk[] = {
    kQuit,
    {u"Show Bulk Auctions", "show_bulk_listing_auctions", u"List Bulk Auctions Ready for Submission"},
    {u"Submit Bulk Auctions", "submit_bulk_auctions_to_ebay", u"Upload Bulk Auctions"},
    {u"Clear All Bulk Tags", "clear_bulklist_tags", u"Remove Bulklisting Tags on Auctions"},
    {u"Hide Bulk Listings", "hide_bulk_list_auctions", u"Hide Bulk Listing Tags"},
};

constexpr ListBarItemInfo kBidderImport[] = {
    kQuit,
    {u"Update Auctions", "import_sell_btn", u"Automatically Import Auctions"},
    {u"Get Description", "get_descrip_button",
     u"Automatically Import Auction Descriptions and Other Information"},
    {u"Get Email Address", "get_email_btn_2", u"Automatically Import Email Address"},
    {u"Import Dutch Auction", "import_dutch_bidder_btn", u"Import Dutch Auctions Details"},
    {u"Get Ebaymotors Desc.", "get_descrip_ebaymotors_button",
     u"Automatically Import EbayMotors Auction Descriptions"},
};
constexpr ListBarItemInfo kBidderDatabase[] = {
    kQuit,
    {u"Delete Auction", "delete_auction", u"Delete Currently Displayed Auction"},
};
constexpr ListBarItemInfo kBidderView[] = {
    kQuit,
    {u"Search", "view_search_page", u"Display Auction Search Page"},
    {u"View Bulkmail", "view_bulkmail", u"Goto Bulkmail Screen"},
    {u"View My Ebay", "view_myebay_page", u"Display My eBay Page"},
    {u"View Account", "view_account_page", u"Display My Account Information"},
    {u"System Status", "view_system_status_page", u"Display Auction Site System Status"},
    {u"Lotwright Support Forum", "view_lotwright_support_page", u"Display Lotwright Forum Page"},
    {u"PayPal Home Page", "view_paypal_home_page", u"Logon to PayPal"},
};

constexpr ListBarGroupInfo kSellerSet[] = {
    {u"Import", 1007, kSellerImport},
    {u"Database", 1016, kSellerDatabase},
    {u"View", 1018, kSellerView},
    {u"BulkList", 1017, kSellerBulk},
};
constexpr ListBarGroupInfo kBidderSet[] = {
    {u"Import", 1007, kBidderImport},
    {u"Database", 1016, kBidderDatabase},
    {u"View", 1018, kBidderView},
};

constexpr const char16_t* kBar1[] = {u"Back",     u"Forward", u"Refresh", u"Last Import", u"Current Auction",
                                     u"Make Bid", u"Watch"};
constexpr const char16_t* kBar2[] = {u"Send Feedback", u"Copy Address", u"Print Mailing Label",
                                     u"Print Envelope", u"Print Invoice"};
constexpr const char16_t* kBar3[] = {u"Validate/Post Listing", u"Bulk Listing Item"};
constexpr const char16_t* kBar4[] = {u"Send Now", u"Bulk Mail Send", u"Print Email"};
constexpr const char16_t* kBar5[] = {u"Add Userid", u"Rename Userid", u"Delete Userid"};
constexpr const char16_t* kBar6[] = {u"Show/Hide Reports", u"Save Report", u"Make Filter"};
constexpr const char16_t* kBar7[] = {u"Send Bulk Mail Now", u"Refresh List", u"Delete All"};
constexpr const char16_t* kBar8[] = {u"Select Source", u"Acquire Image", u"Save Image As", u"Upload Image",
                                     u"Browse"};

constexpr ToolbarInfo kToolbars[] = {
    {"ctToolBar1", 4, kBar1}, {"ctToolBar2", 2, kBar2}, {"ctToolBar3", 5, kBar3}, {"ctToolBar4", 6, kBar4},
    {"ctToolBar5", 8, kBar5}, {"ctToolBar6", 7, kBar6}, {"ctToolBar7", 6, kBar7}, {"ctToolBar8", 3, kBar8},
};

constexpr MenuInfo kMenus[] = {
    {"file_mnu", u"File", nullptr},
    {"locate_database_mnu", u"Locate Database", "file_mnu"},
    {"manual_seller_import_mnu", u"Manual Seller Import", "file_mnu"},
    {"manual_bidder_import_mnu", u"Manual Bidder Import", "file_mnu"},
    {"manual_seller_dutch_import_mnu_click", u"Manual Seller Dutch Import", "file_mnu"},
    {"manual_fee_import_mnu", u"Manual Fee Import", "file_mnu"},
    {"exit_mnu", u"Exit", "file_mnu"},
    {"database_mnu", u"Database", nullptr},
    {"del_mnu", u"Delete Auction", "database_mnu"},
    {"remove_unsubmit_mnu", u"Remove Unsubmitted Auction Status (this auction only)", "database_mnu"},
    {"advanced_update_mnu", u"Advanced Update", "database_mnu"},
    {"update_ship_cost_mnu_1", u"Copy Charged Shipping Cost to Actual Shipping Cost (this userid only)",
     "advanced_update_mnu"},
    {"update_ship_cost_mnu", u"Remove Cost and Shipping Cost from auctions with No Bids (this userid only)",
     "advanced_update_mnu"},
    {"remove_fees_mnu", u"Remove All Fees (this auction only)", "advanced_update_mnu"},
    {"purge_mnu", u"Purge Database", "database_mnu"},
    {"purge_nobid_mnu", u"Delete All Auctions with No Bids (This User Only)", "purge_mnu"},
    {"purge_nobid_1_mnu", u"Delete All Auctions with No Bids (Entire Database)", "purge_mnu"},
    {"purge_complete_3_mnu", u"Delete All Completed Auctions (This User Only)", "purge_mnu"},
    {"purge_complete_1_mnu", u"Delete All Completed Auctions (Entire Database)", "purge_mnu"},
    {"purge_unsuccess_bid_mnu", u"Delete All Unsuccessful Bidder Auctions (This User Only)", "purge_mnu"},
    {"purge_unsuccess_bid_1_mnu", u"Delete All Unsuccessful Bidder Auctions (Entire Database)", "purge_mnu"},
    {"purge_complete_4_mnu", u"Delete All Completed Auctions (This User Only)", "purge_mnu"},
    {"purge_complete_2_mnu", u"Delete All Completed Auctions (Entire Database)", "purge_mnu"},
    {"duplicate_mnu", u"Duplicate", nullptr, -1, false},
    {"tab_views_mnu", u"Tab Views", nullptr},
    {"help_mnu", u"Help", nullptr},
    {"contents_mnu", u"Contents", "help_mnu"},
    {"check_updates_mnu", u"Check for Updates", "help_mnu"},
    {"view_lotwright_update_page", u"Lotwright Forum", "help_mnu"},
    {"download_site_mnu", u"Download Site", "help_mnu"},
    {"Advanced_import_edit_mnu", u"Advanced Import Edit", "help_mnu"},
    {"about_menu", u"About", "help_mnu"},
    {"debug_mnu", u"Debug", nullptr},
    {"mail_debug_mnu", u"Mail Debug", "debug_mnu"},
    {"socket_debug_mnu", u"Socket Debug", "debug_mnu"},
};

constexpr const char* kSidePairs[] = {
    "itemno_txt",
    "Title_txt",
    "ctRealInput1",
    "start_pnl",
    "end_pnl",
    "id_pnl",
    "email_pnl",
    "hi_bidder_name_txt",
    "hi_bidder_address_txt",
    "Comments_txt",
    "status_log_txt",
    "Quantity_txt",
    "Cost_txt",
    "Minbid_txt",
    "Reserve_txt",
    "shipping_price_txt",
    "category_lbl",
    "reserve_met_chk",
    "Contact_chk",
    "Response_chk",
    "Payment_chk",
    "Trans_comp_chk",
    "Description1_txt",
    "bids_lbl",
    "auction_ended_chk",
    "status_date_txt",
    "feedback_chk",
};

}  // namespace

std::span<const PageInfo> Pages() {
  return kPages;
}
std::span<const ListBarGroupInfo> ListBarSet(bool seller) {
  if (seller) return kSellerSet;
  return kBidderSet;
}
std::span<const ToolbarInfo> Toolbars() {
  return kToolbars;
}
std::span<const MenuInfo> Menus() {
  return kMenus;
}
std::span<const char* const> SidePairControls() {
  return kSidePairs;
}

}  // namespace lw
