#include "import/import_screen.h"

#include <memory>

#include "core/primitives/convert.h"
#include "screen/main/main_form.h"

namespace lw {

void ImportJobs::ClearFlags() {
  import_pending = email_pending = description_pending = description_html_pending = false;
  motors_description_pending = motors_description_html_pending = false;
  seller_dutch_pending = bidder_dutch_pending = fees_pending = bid_pending = false;
}

ImportScreen::ImportScreen(Program& program) : program_(&program) {}

MainForm& ImportScreen::main() const {
  if (!program_->main)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  return *program_->main;
}

namespace {

bool OnRow(Recordset* row, TextView column) {
  return row && !row->Eof() && !row->Bof() && row->HasField(column);
}

}  // namespace

std::optional<Text> RowValue(Recordset* row, TextView column, const Regional& regional) {
  if (!OnRow(row, column)) return std::nullopt;
  Variant v = row->Fields(column);
  if (v.IsNull()) return std::nullopt;
  return CStr(v, regional);
}

Text RowText(Recordset* row, TextView column, const Regional& regional) {
  return RowValue(row, column, regional).value_or(Text());
}

double RowNumber(Recordset* row, TextView column, const Regional& regional) {
  if (!OnRow(row, column)) return 0;
  Variant v = row->Fields(column);
  if (v.IsNull()) return 0;
  try {
    return CDbl(v, regional);
  } catch (const RuntimeError&) {
    return 0;  // a setting typed as text that is no number counts as none
  }
}

Recordset* ImportScreen::MiscRow() const {
  MainForm& form = main();
  return form.Misc.HasRecordset() ? &form.Misc.recordset() : program_->startup.misc.get();
}

Recordset* ImportScreen::SetupRow() const {
  DataControl& setup = main().setup_datacontrl;
  return setup.HasRecordset() ? &setup.recordset() : nullptr;
}

SiteClockOffsets ImportScreen::Offsets() const {
  const Regional& r = program_->regional;
  return {RowNumber(MiscRow(), u"Ebay_hour_difference", r),
          RowNumber(MiscRow(), u"Ebay_minute_difference", r)};
}

Text ImportScreen::MiscHost(TextView column) const {
  Text host = RowText(MiscRow(), column, program_->regional);
  if (!host.empty()) return host;
  // As the shipped store has them.
  struct Default {
    const char16_t* column;
    const char16_t* host;
  };
  static constexpr Default kDefaults[] = {
      {u"servername_import", u"cgi6.ebay.com"}, {u"servername_import1", u"cgi6.ebay.com"},
      {u"servername_desc", u"cgi.ebay.com"},    {u"servername_email", u"cgi.ebay.com"},
      {u"servername_dutch", u"cgi.ebay.com"},   {u"servername_ebaymotors", u"cgi.ebaymotors.com"},
      {u"servername_fees", u"cgi3.ebay.com"}};
  for (const Default& d : kDefaults)
    if (column == d.column) return d.host;
  return host;
}

ImportContext& ImportScreen::Context() {
  Program& p = *program_;
  MainForm& form = main();
  if (!p.startup.db)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  if (!context_) {
    context_.emplace(ImportContext{
        *p.startup.db, form.seller, form.Bidder, p.regional, p.clock, p.screen.ui(), {}, {}, {}, {}, {}});
    ImportContext& ctx = *context_;
    ctx.status = [&form](const Text& text) { form.SetStatus(text); };
    ctx.auction_filter = [&form] { form.CallRoutine("auction_filter"); };
    ctx.show_last_import = [&form] {
      form.SSTab1.SetTab(4);
      form.CallRoutine("show_last_import");
    };
    ctx.show_browser_page = [&form, &p] {
      if (form.SSTab1.tab() == kBrowserPage) return;
      p.main_screen.browser_page_held = true;
      form.SSTab1.SetTab(kBrowserPage);
    };
    ctx.enable_advanced_edit = [&form](bool on) {
      if (Control* menu = form.Find(u"Advanced_import_edit_mnu")) menu->SetEnabled(on);
    };
  }
  ImportContext& ctx = *context_;
  ctx.userid = form.Userid_lst.text();
  ctx.site = form.site_lst.text();
  ctx.folder = p.DbFile(u"\\parsed_data.htm").parent_path();
  ctx.offsets = Offsets();
  ctx.setup_userid = RowText(SetupRow(), u"Userid", p.regional);
  return ctx;
}

ImportScreen& RegisterImport(Program& program) {
  auto screen = std::make_shared<ImportScreen>(program);
  program.subsystems.push_back(screen);
  RegisterDownload(*screen);
  RegisterAuctionImports(*screen);
  return *screen;
}

}  // namespace lw
