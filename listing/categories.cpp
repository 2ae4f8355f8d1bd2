// The category tree of the Sell page: the site's tree of the current site, kept in Categories, fetched
// again only when the site's version of it has changed and the seller agrees, and shown in
// ctcategorytree, where a click on a leaf fills the category number.
#include <optional>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "listing/api_calls.h"
#include "listing/category_tree.h"
#include "listing/lister_settings.h"
#include "listing/listing_screen.h"
#include "platform/xml_document.h"
#include "screen/main/main_form.h"
#include "screen/tree_view.h"

namespace lw {

namespace {

TreeView& Tree(ListingScreen& s) {
  return s.main().Get<TreeView>(u"ctcategorytree");
}

Database& Store(ListingScreen& s) {
  Database* db = s.program().startup.db.get();
  if (!db) throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  return *db;
}

// The site goes into the statements as it stands in the setup row.
Text Site(ListingScreen& s) {
  return s.SetupText(u"countrylocation");
}

Text Number(int64_t n) {
  return FromUtf8(std::to_string(n));
}

int64_t CountCategories(ListingScreen& s, const Text& site) {
  auto rs = Store(s).OpenRecordset(
      u"Select Count(*) AS categories_counted From Categories Where AppSiteId = " + site);
  return static_cast<int64_t>(CDbl(rs->Fields(u"categories_counted"), s.program().regional));
}

Text Column(ListingScreen& s, Recordset& rs, TextView column) {
  Variant v = rs.Fields(column);
  return v.IsNull() ? Text() : CStr(v, s.program().regional);
}

void load_categories(ListingScreen& s) {
  FillCategoryTree(Store(s), Tree(s), Site(s), s.program().regional);
}

void get_categories(ListingScreen& s) {
  MainForm& f = s.main();
  Text site = Site(s);
  s.api_request = CategoriesRequest(f.Userid_lst.text(), s.SetupText(u"password"), 1, site);
  s.Status(u"Getting Categories ..... please wait");
  std::string reply = s.Exchange("GetCategories", site, 1, s.api_request);

  DataControl& categories = f.Categories;
  if (!categories.HasRecordset()) categories.Refresh();
  ReplaceCategories(Store(s), categories.recordset(), site, s.File(u"\\getallcategories.xml"),
                    [&] { s.WriteFile(u"\\getallcategories.xml", reply); });
}

void categories_changed(ListingScreen& s) {
  MainForm& f = s.main();
  s.Status(u"Checking Categories ..... Completed");
  MsgAnswer answer =
      f.ui().MsgBox(u"Update Categories",
                    u"Categories have changed.\nYour listing site is currently shown as " +
                        f.Get(u"country_loc_combo").text() +
                        u".\nDo you want to update categories now?\nNote this may take some time "
                        u"to complete.",
                    MsgButtons::YesNo, MsgIcon::Question);
  if (answer != MsgAnswer::Yes) {
    s.Status(u"Loading categories from local database this may take a few moments ..... please wait");
    load_categories(s);
    return;
  }
  get_categories(s);
  Text site = Site(s);
  Database& db = Store(s);
  db.Execute(u"Update CategoryUpdate SET categories_last_updated = " +
             Quoted(CStr(Variant(s.category_version_date), s.program().regional)) + u" where siteId = " +
             site);
  db.Execute(u"Update CategoryUpdate SET category_total= " + Quoted(Number(CountCategories(s, site))) +
             u" where siteId = " + site);
  s.Status(u"Loading categories now this may take a few moments ..... please wait");
  load_categories(s);
}

void check_categories(ListingScreen& s) {
  MainForm& f = s.main();
  try {
    Text site = Site(s);
    s.api_request = CategoriesRequest(f.Userid_lst.text(), s.SetupText(u"password"), 0, site);
    s.Status(u"Checking Categories ..... please wait");
    std::string reply = s.Exchange("GetCategories", site, 0, s.api_request);
    s.WriteFile(u"\\getcategoryupdate.xml", reply);
    XmlDocument doc;
    doc.Load(s.File(u"\\getcategoryupdate.xml"));
    // The version of the site's tree is the second child of its Categories element.
    for (const XmlNode& categories : doc.GetElementsByTagName("Categories"))
      s.category_version_date = CDate(Variant(categories.Item(1).text()), s.program().regional);
    int64_t counted = CountCategories(s, site);
    auto update = Store(s).OpenRecordset(u"Select * From Categoryupdate Where siteId = " + site);
    if (counted == 0) {
      categories_changed(s);
      return;
    }
    Variant total = update->Fields(u"category_total");
    Text last_updated = Column(s, *update, u"categories_last_updated");
    bool same_count = !total.IsNull() && CDbl(total, s.program().regional) == static_cast<double>(counted);
    bool same_date = last_updated == CStr(Variant(s.category_version_date), s.program().regional);
    if (same_count && same_date) {
      s.Status(
          u"Categories are up to date. Loading categories from local database this may take a few moments "
          u"..... please wait");
      load_categories(s);
    } else {
      categories_changed(s);
    }
  } catch (const RuntimeError&) {
    // Without the site, or with a reply that can't be read, the tree in the store serves.
    load_categories(s);
  }
}

void load_category_numbers(ListingScreen& s) {
  WaitCursor wait(s.main().ui());
  save_bulk_listing_values(s.main(), s.SetupRow());
  check_categories(s);
  s.Status(u"Loading Auction Categories ..... Completed.");
}

// Only a leaf has a number the site lists under; a branch gives "0", which the site refuses at
// validation.
void category_clicked(ListingScreen& s) {
  TreeView& tree = Tree(s);
  int item = tree.current();
  if (item < 0) return;
  Control& box = s.main().Get(u"category_no_txt", 0);
  box.SetText(tree.HasChildren(item) ? Text(u"0") : Number(tree.Data(item)));
}

}  // namespace

void RegisterCategories(ListingScreen& screen) {
  ListingScreen* s = &screen;
  MainForm& f = screen.main();
  Routines& r = screen.program().routines;
  screen.Register("check_categories", check_categories);
  screen.Register("get_categories", get_categories);
  screen.Register("load_categories", load_categories);
  screen.Register("categories_changed", categories_changed);
  screen.Register("ctbutton(0)", load_category_numbers);
  f.Get(u"ctbutton", 0).OnClick = [&r] { r.Call("ctbutton(0)"); };
  Tree(screen).OnNodeClick = [s](int) { Guarded(*s, [s] { category_clicked(*s); }); };
}

}  // namespace lw
