// The first-start wizard's "Save and Exit": the first user id, its credentials and contact details, and
// the shipped sample auction moved under it.
#include "screen/main/small_forms.h"
#include "screen/main/userids.h"
#include "screen/main/userids_rules.h"

namespace lw {
namespace {

constexpr int kWizardFields = 7;

bool OnRow(Recordset& rs) {
  return !rs.Eof() && !rs.Bof();
}

// Writes one row through its cursor; a failure leaves the row as it was.
template <class Write>
void EditRow(Recordset& rs, Write&& write) {
  rs.Edit();
  try {
    write();
    rs.Update();
  } catch (...) {
    if (rs.EditInProgress()) rs.CancelUpdate();
    throw;
  }
}

}  // namespace

void UseridScreen::wizard_savebtn() {
  Program& p = program_;
  if (!p.wizard) return;
  WizardForm& wizard = *p.wizard;
  Ui& ui = form_.ui();
  for (int i = 0; i < kWizardFields; ++i) {
    Control& t = wizard.Get(u"wizard_txt", i);
    if (!WizardFieldMissing(t.text())) continue;
    ui.MsgBox(u"Information Required", u"You need to enter data into this box to proceed.", MsgButtons::OK,
              MsgIcon::Exclamation);
    wizard.SetFocus(&t);
    return;
  }
  auto text = [&wizard](int i) { return wizard.Get(u"wizard_txt", i).text(); };
  const Text userid = CleanCredential(text(0));
  // The id must make a good statement before it is written: the screen finds its row by one.
  SetupSource(userid);
  DataControl& screen_setup = form_.setup_datacontrl;
  Recordset* setup = nullptr;
  if (screen_setup.HasRecordset() && OnRow(screen_setup.recordset()))
    setup = &screen_setup.recordset();
  else if (p.startup.setup && OnRow(*p.startup.setup))
    setup = p.startup.setup.get();
  if (!setup) throw RuntimeError(err::kNoCurrentRecord, "No current record.");
  EditRow(*setup, [&] {
    setup->SetField(u"Userid", Variant(userid));
    setup->SetField(u"Password", Variant(CleanCredential(text(1))));
    setup->SetField(u"UserEmail", Variant(text(2)));
    setup->SetField(u"Name", Variant(text(3)));
    setup->SetField(u"address", Variant(text(4)));
    setup->SetField(u"Location", Variant(text(6)));
    setup->SetField(u"Signiture", Variant(text(5)));
  });
  // The sample auction the store ships with comes under the new id.
  DataControl& seller = form_.seller;
  if (seller.HasRecordset() && OnRow(seller.recordset())) {
    Recordset& rs = seller.recordset();
    EditRow(rs, [&] { rs.SetField(u"Username", Variant(userid)); });
  }
  ui.MsgBox(u"Simple Setup Wizard Complete",
            u"More advanced setup options can be changed on the Setup Screen", MsgButtons::OK,
            MsgIcon::Information);
  wizard.Unload();
  ReloadUserList();
  // Chosen as a user would choose it, so that the view follows the new id.
  form_.Userid_lst.SetText(userid);
}

}  // namespace lw
