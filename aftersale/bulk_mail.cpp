// The bulk mail queue: a letter put on the list moves its auctions' status at once, and its log lines
// wait in bulkstatuslog until the queue is sent. Sending goes row by row; a failure stops the run and
// leaves the rows not yet sent (the one in hand too) on the list.
#include "aftersale/aftersale_screen.h"
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/main/main_form.h"

namespace lw {
namespace {

Text BulkListSource(const Text& userid, const Text& site) {
  return u"Select * From bulk Where bulkmail = true and username = " + Quoted(userid) + u" and site = " +
         Quoted(site);
}

}  // namespace

void AfterSale::set_bulk_mail() {
  MainForm& f = main();
  try {
    // The subject is quoted in the statements below; the address and the body are taken as they are.
    Control& subject_box = Box(u"emailletter_txt", 3);
    subject_box.SetText(Replace(subject_box.text(), u"'", u""));
    const Text subject = subject_box.text();
    const Text to = Box(u"emailletter_txt", 1).text();
    Database& db = *program_->startup.db;
    const Text pair = u" where emailtext_subject = " + Quoted(subject) + u" and emailtext_to = " + Quoted(to);
    Variant found =
        db.OpenRecordset(u"Select Count(*) AS unique_email From bulk" + pair)->Fields(u"unique_email");
    if (NumberOf(found).value_or(0) != 0) {
      // The same letter queued twice takes the first one off the list as well.
      f.SetStatus(u"Duplicate email found not adding to the Bulk Mailing List");
      db.Execute(u"Delete From bulk" + pair);
      refresh_bulk_list();
      return;
    }
    auto bulk = db.OpenRecordset(u"Select * From bulk");
    bulk->AddNew();
    bulk->SetField(u"emailtext", Variant(Box(u"emailletter_txt", 0).text()));
    bulk->SetField(u"emailtext_to", Variant(to));
    bulk->SetField(u"emailtext_subject", Variant(subject));
    bulk->SetField(u"username", Variant(f.Userid_lst.text()));
    bulk->SetField(u"site", Variant(f.site_lst.text()));
    bulk->SetField(u"bulkmail", Variant(true));
    if (Ticked(u"check1", 0)) bulk->SetField(u"sendcc", Variant(true));
    if (Ticked(u"check1", 1)) bulk->SetField(u"copyt_comments", Variant(true));
    bulk->Update();
    auto log = db.OpenRecordset(u"Select * From bulkstatuslog");
    for (int i = 0; i < letter.letter_item_count; ++i) {
      log->AddNew();
      log->SetField(u"auction_number", Variant(letter.Item(i)));
      log->SetField(u"status_log_note", Variant(letter.letter_status_note));
      log->SetField(u"auction_type", Variant(f.Auction_type_lst.text()));
      log->SetField(u"emailtext_subject", Variant(subject));
      log->SetField(u"emailto", Variant(to));
      log->Update();
    }
    update_status_log_bulk_status_change_only();
    f.SSTab1.SetTab(0);
    f.SetStatus(u"Auction Added to the Bulk Mailing List");
  } catch (const RuntimeError&) {
  }
}

void AfterSale::email_tab_click() {
  if (main().Get<TabStrip>(u"email_tab").tab() != 1) return;
  refresh_bulk_list();
}

void AfterSale::refresh_bulk_list() {
  MainForm& f = main();
  try {
    f.Bulk.RecordSource = BulkListSource(f.Userid_lst.text(), f.site_lst.text());
    f.Bulk.Refresh();
    bulk_row_changed();
  } catch (const RuntimeError&) {
  }
}

void AfterSale::view_bulkmail() {
  program_->main_screen.bulk_view = true;
  main().SSTab1.SetTab(kEmailPage);
}

void AfterSale::show_bulk_mail_page() {
  // The Email page was entered for the list: open its bulk page, once.
  program_->main_screen.bulk_view = false;
  TabStrip& tabs = main().Get<TabStrip>(u"email_tab");
  if (tabs.tab() == 1)
    email_tab_click();
  else
    tabs.SetTab(1);
}

void AfterSale::delete_all_bulk_mail() {
  MainForm& f = main();
  if (f.ui().MsgBox(u"Delete Mail", u"Delete all bulk mail?", MsgButtons::YesNo, MsgIcon::None) !=
      MsgAnswer::Yes)
    return;
  try {
    // Every user id's queue goes; the stored feedback comments have no user name and stay.
    Database& db = *program_->startup.db;
    db.Execute(u"DELETE FROM bulk where username <> ''");
    db.Execute(u"DELETE * FROM Bulkstatuslog");
    f.Bulk.Refresh();
  } catch (const RuntimeError&) {
  }
}

void AfterSale::bulk_row_changed() {
  DataControl& bulk = main().Bulk;
  bulk_row_subject_.clear();
  bulk_row_to_.clear();
  if (!bulk.HasRecordset()) return;
  Recordset& r = bulk.recordset();
  if (r.Eof() || r.Bof()) return;
  bulk_row_subject_ = TextOf(r.Fields(u"emailtext_subject"));
  bulk_row_to_ = TextOf(r.Fields(u"emailtext_to"));
}

void AfterSale::bulk_row_deleted() {
  try {
    program_->startup.db->Execute(u"DELETE FROM bulkstatuslog where emailtext_subject = " +
                                  Quoted(bulk_row_subject_) + u" and emailto = " + Quoted(bulk_row_to_));
  } catch (const RuntimeError&) {
  }
}

void AfterSale::send_bulk_now() {
  try {
    MapiCompliant() ? send_bulk_mapi_mail() : send_bulk_pop_mail();
  } catch (const RuntimeError&) {
  }
}

void AfterSale::send_bulk_pop_mail() {
  SendBulk(false);
}

void AfterSale::send_bulk_mapi_mail() {
  SendBulk(true);
}

void AfterSale::SendBulk(bool through_mail_program) {
  MainForm& f = main();
  try {
    WaitCursor wait(f.ui());
    DataControl& data = Side();
    const Text saved = data.RecordSource;
    data.RecordSource = Seller() ? u"Select * from seller" : u"Select * from bidder";
    data.Refresh();
    letter.letter_status_note.clear();
    if (through_mail_program) mapi_session_open = true;
    DataControl& bulk = f.Bulk;
    bulk.MoveLast();
    bulk.MoveFirst();
    const int64_t count = bulk.recordset().RecordCount();
    for (int64_t n = 0; n < count; ++n) {
      Recordset& row = bulk.recordset();
      const Text to = TextOf(row.Fields(u"emailtext_to"));
      const Text subject = TextOf(row.Fields(u"emailtext_subject"));
      const Text body = TextOf(row.Fields(u"emailtext"));
      const bool cc = IsYes(row.Fields(u"sendcc"));
      if (through_mail_program)
        MailByProgram(to, subject, cc, body);
      else
        MailBySmtp(to, subject, cc, body);
      bulk_copy_to_comments_ = IsYes(row.Fields(u"copyt_comments"));
      bulk_text_ = body;
      DataControl& log = f.bulkstatuslog;
      log.RecordSource = u"Select * From bulkstatuslog Where emailtext_subject = " + Quoted(subject) +
                         u" and emailto = " + Quoted(to);
      log.Refresh();
      // A letter queued without auctions has no log rows; it is sent all the same and leaves the list.
      if (!log.recordset().Eof()) {
        log.MoveLast();
        log.MoveFirst();
        const int64_t lines = log.recordset().RecordCount();
        letter.letter_status_note = TextOf(log.recordset().Fields(u"status_log_note")) + u" " + NowText();
        for (int64_t i = 0; i < lines; ++i) {
          update_status_log_bulk();
          log.recordset().MoveNext();
        }
      }
      Recordset& sent = bulk.recordset();
      sent.Delete();
      sent.MoveNext();
      bulk.Reposition();
      letter.letter_status_note.clear();
    }
    data.RecordSource = saved;
    data.Refresh();
    bulk.Refresh();
  } catch (const RuntimeError&) {
    // Rows not yet sent stay queued, the row in hand with them.
  }
}

void AfterSale::update_status_log_bulk() {
  MainForm& f = main();
  Recordset& row = f.bulkstatuslog.recordset();
  const Text number = TextOf(row.Fields(u"auction_number"));
  const Text to = TextOf(row.Fields(u"emailto"));
  const bool seller = TextOf(row.Fields(u"auction_type")) == u"Seller";
  DataControl& data = seller ? f.seller : f.Bidder;
  data.FindFirst(u"Item = " + Quoted(number) + (seller ? u" and email = " : u" and Seller_email = ") +
                 Quoted(to));
  Recordset& r = data.recordset();
  if (r.Eof() || r.Bof() || TextOf(r.Fields(u"item")) != number) {
    f.SetStatus(u"Status Log not updated");
    return;
  }
  r.Edit();
  r.SetField(u"Status_log", Variant(letter.letter_status_note + kCrlf + TextOf(r.Fields(u"status_log"))));
  if (bulk_copy_to_comments_) {
    r.SetField(u"Comments", Variant(u"------Copied to Comments " + NowText() + u"------" + kCrlf + kCrlf +
                                    bulk_text_ + kCrlf + u"------End copy to Comments------" + kCrlf + kCrlf +
                                    TextOf(r.Fields(u"Comments"))));
  }
  r.Update();
}

}  // namespace lw
