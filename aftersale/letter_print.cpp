// "Print Email": the letter in the boxes becomes the print row of the bulk table and is laid out by the
// report layer's "emailreport" in the report viewer, where the user prints or saves it.
#include "accounting/reports.h"
#include "aftersale/aftersale_screen.h"
#include "screen/main/main_form.h"

namespace lw {

void AfterSale::print_email() {
  MainForm& f = main();
  try {
    Database& db = *program_->startup.db;
    const Text mine = u" where printletter = true and username = " + Quoted(f.Userid_lst.text()) +
                      u" and site = " + Quoted(f.site_lst.text());
    db.Execute(u"DELETE FROM bulk" + mine);
    auto bulk = db.OpenRecordset(u"Select * From bulk");
    bulk->AddNew();
    bulk->SetField(u"emailtext", Variant(Box(u"emailletter_txt", 0).text()));
    bulk->SetField(u"emailtext_to", Variant(Box(u"emailletter_txt", 1).text()));
    bulk->SetField(u"emailtext_subject", Variant(Box(u"emailletter_txt", 3).text()));
    bulk->SetField(u"username", Variant(f.Userid_lst.text()));
    bulk->SetField(u"site", Variant(f.site_lst.text()));
    bulk->SetField(u"printletter", Variant(true));
    bulk->Update();
    f.SSTab1.SetTab(kReportsPage);

    auto report = MakeReportLayout(u"emailreport", LayoutContext{program_->clock.Today()});
    report->data_source = u"Select * From bulk" + mine;
    runreport(*program_, *report);
  } catch (const RuntimeError&) {
  }
}

}  // namespace lw
