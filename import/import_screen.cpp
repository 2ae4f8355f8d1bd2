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

double NumberField(Recordset* rs, TextView column, const Regional& regional) {
  if (!rs || rs->Eof() || rs->Bof()) return 0;
  Variant v = rs->Fields(column);
  if (v.IsNull()) return 0;
  try {
    return CDbl(v, regional);
  } catch (const RuntimeError&) {
    return 0;  // a setting typed as text that is no number counts as no offset
  }
}

Text TextField(Recordset* rs, TextView column, const Regional& regional) {
  if (!rs || rs->Eof() || rs->Bof()) return {};
  Variant v = rs->Fields(column);
  return v.IsNull() ? Text() : CStr(v, regional);
}

}  // namespace

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
    ctx.enable_advanced_edit = [&form](bool on) {
      if (Control* menu = form.Find(u"Advanced_import_edit_mnu")) menu->SetEnabled(on);
    };
  }
  ImportContext& ctx = *context_;
  ctx.userid = form.Userid_lst.text();
  ctx.site = form.site_lst.text();
  ctx.folder = p.DbFile(u"\\parsed_data.htm").parent_path();
  // The screen's own cursor on the misc row first: the Setup page writes the offsets through it.
  Recordset* misc = form.Misc.HasRecordset() ? &form.Misc.recordset() : p.startup.misc.get();
  ctx.offsets.hour_difference = NumberField(misc, u"Ebay_hour_difference", p.regional);
  ctx.offsets.minute_difference = NumberField(misc, u"Ebay_minute_difference", p.regional);
  Recordset* setup = form.setup_datacontrl.HasRecordset() ? &form.setup_datacontrl.recordset() : nullptr;
  ctx.setup_userid = TextField(setup, u"Userid", p.regional);
  return ctx;
}

void RegisterImport(Program& program) {
  auto screen = std::make_shared<ImportScreen>(program);
  program.subsystems.push_back(screen);
  RegisterDownload(*screen);
  RegisterAuctionImports(*screen);
}

}  // namespace lw
