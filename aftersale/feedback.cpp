// Feedback for the trading partner of the current auction: the comment is chosen from the stored list
// or typed (and then stored), the site's feedback address is opened in the web view, and the auction is
// marked and logged. The site's answer is not read: the mark and the log line stand for the request.
#include "aftersale/aftersale_screen.h"
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "platform/hosts.h"
#include "screen/main/main_form.h"

namespace lw {
namespace {

constexpr size_t kLongestComment = 80;

}  // namespace

void AfterSale::feedback_comment_change() {
  Control& combo = Box(u"Combo1");
  if (combo.text().size() < kLongestComment) return;
  if (combo.text().size() > kLongestComment) combo.SetText(combo.text().substr(0, kLongestComment));
  main().SetStatus(u"Comment can't be greater than 80 characters.");
}

void AfterSale::populate_feedback_combo() {
  if (feedback_combo_loaded) return;
  auto& combo = main().Get<ComboBox>(u"Combo1");
  auto rows = program_->startup.db->OpenRecordset(
      u"Select DISTINCT feedback_comment from Bulk WHERE feedback_comment is not Null");
  for (; !rows->Eof(); rows->MoveNext()) combo.AddItem(TextOf(rows->Fields(u"feedback_comment")));
  feedback_combo_loaded = true;
}

void AfterSale::populate_feedback_grid() {
  DataControl& bulk = main().Bulk;
  try {
    bulk.RecordSource =
        u"Select * from Bulk WHERE feedback_comment is not Null Order by feedback_comment Asc";
    bulk.Refresh();
  } catch (const RuntimeError&) {
  }
}

void AfterSale::save_feedback_comment() {
  auto& combo = main().Get<ComboBox>(u"Combo1");
  const Text comment = combo.text();
  Database& db = *program_->startup.db;
  Variant found =
      db.OpenRecordset(u"Select Count(*) AS feedback_comments_found From bulk where feedback_comment = " +
                       Quoted(comment))
          ->Fields(u"feedback_comments_found");
  if (comment.empty() || NumberOf(found).value_or(0) != 0) return;
  db.Execute(u"INSERT INTO Bulk (feedback_comment) VALUES(" + Quoted(comment) + u")");
  combo.AddItem(comment);
}

void AfterSale::send_feedback() {
  MainForm& f = main();
  Program& p = *program_;
  try {
    save_feedback_comment();
  } catch (const RuntimeError&) {
    // An apostrophe breaks the comment's statements; the feedback itself does not need them.
  }
  try {
    const Text comment = Box(u"Combo1").text();
    if (comment.empty()) {
      f.ui().MsgBox(u"No Feedback Comment", u"Feedback Comment Required.", MsgButtons::OK, MsgIcon::Critical);
      return;
    }
    struct Kind {
      const char16_t* which;
      const char16_t* words;
    };
    static constexpr Kind kKinds[] = {{u"&which=positive", u"Posted Positive Feedback "},
                                      {u"&which=negative", u"Posted Negative Feedback "},
                                      {u"&which=neutral", u"Posted Neutral Feedback "}};
    Kind kind{u"", u""};
    for (int i = 0; i < 3; ++i) {
      if (Box(u"SSOption1", i).value() != 0) {
        kind = kKinds[i];
        break;
      }
    }
    const Text line = kind.words + NowText();
    const bool seller = Seller();
    LoadSetupRow();
    const Text partner = seller ? Box(u"id_pnl", 0).text() : Box(u"seller_id_txt").text();
    // Only "+" is encoded: the rest of the comment goes into the address as it stands.
    p.main_screen.feedback_url =
        FromUtf8(BaseUrlFor(p.settings, "feedback")) + u"/aw-cgi/eBayISAPI.dll?LeaveFeedback&userid=" +
        f.Userid_lst.text() + u"&pass=" + SetupText(u"password") + u"&otheruserid=" + partner + u"&itemno=" +
        Box(u"itemno_txt", SideIndex()).text() + kind.which + u"&comment=" + Replace(comment, u"+", u"%2B");
    p.main_screen.browser_request[static_cast<int>(BrowserTarget::kFeedback)] = true;
    Box(u"feedback_chk", SideIndex()).SetValue(1);
    DataControl& data = Side();
    Recordset& r = data.recordset();
    r.Edit();
    r.SetField(u"Status_log", Variant(line + kCrlf + TextOf(r.Fields(u"status_log"))));
    data.UpdateRecord();
    if (r.EditInProgress()) r.Update();
    f.SSTab1.SetTab(0);
    f.SSTab1.SetTab(kBrowserPage);
  } catch (const RuntimeError&) {
  }
}

}  // namespace lw
