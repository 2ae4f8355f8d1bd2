// "Print Email": the letter in the boxes becomes the print row of the bulk table and goes to paper
// through the desktop's viewer.
#include <cctype>
#include <string_view>

#include "aftersale/aftersale_screen.h"
#include "aftersale/letter_pdf.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"

namespace lw {
namespace {

// A file address for the desktop: blanks and the like escaped, the path's own characters kept.
Text FileAddress(const std::filesystem::path& file) {
  std::string out = "file://";
  for (unsigned char c : file.string()) {
    if (std::isalnum(c) || std::string_view("/-_.~").find(static_cast<char>(c)) != std::string_view::npos) {
      out += static_cast<char>(c);
    } else {
      static const char kHex[] = "0123456789ABCDEF";
      out += '%';
      out += kHex[c >> 4];
      out += kHex[c & 15];
    }
  }
  return FromUtf8(out);
}

}  // namespace

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

    std::vector<PrintedLetter> letters;
    auto rows = db.OpenRecordset(u"Select * From bulk" + mine);
    for (; !rows->Eof(); rows->MoveNext())
      letters.push_back({TextOf(rows->Fields(u"emailtext_to")), TextOf(rows->Fields(u"emailtext_subject")),
                         TextOf(rows->Fields(u"emailtext"))});
    std::filesystem::path file = program_->DbFile(u"\\emailreport.pdf");
    const std::string& locale = program_->regional.locale_id;
    bool letter_paper = locale.rfind("en_US", 0) == 0 || locale.rfind("en_CA", 0) == 0;
    WriteLetterPdf(file, letters, letter_paper);
    f.ui().OpenAddress(FileAddress(file));
  } catch (const RuntimeError&) {
  }
}

}  // namespace lw
