// The mail side of the screen: the bulk list of the Email page, the feedback of the Contact Details
// page and the Setup page's comment list, and the commands that send, queue, print and leave feedback.
#include "aftersale/aftersale_screen.h"
#include "screen/grid.h"
#include "screen/main/main_form.h"

namespace lw {
namespace {

constexpr const char16_t* kBulkColumns[][2] = {{u"Send Carbon Copy to Myself", u"sendcc"},
                                               {u"Copy Contents to Comments", u"copyt_comments"},
                                               {u"Email To Address", u"emailtext_to"},
                                               {u"Email Subject", u"emailtext_subject"},
                                               {u"Email Contents", u"emailtext"}};
constexpr const char16_t* kFeedbackKinds[] = {u"Positive", u"Negative", u"Neutral"};

}  // namespace

void AfterSale::BuildMailControls() {
  MainForm& f = main();
  Control& bulk_page = Box(u"email_fra", 1);
  Grid& queue = f.Add<Grid>(u"TDBGrid1");
  queue.SetContainer(&bulk_page);
  for (const auto& column : kBulkColumns) queue.AddColumn(column[0], column[1]);
  queue.SetDataSource(&f.Bulk);
  queue.allow_delete = true;
  f.Get(u"ctToolBar7").SetContainer(&bulk_page);

  Control& feedback = f.Add(ControlKind::Frame, u"feedback_fra");
  feedback.SetCaption(u"Feedback");
  f.Add<ComboBox>(u"Combo1").SetContainer(&feedback);
  for (int i = 0; i < 3; ++i) {
    Control& option = f.Add(ControlKind::OptionButton, u"SSOption1", i);
    option.SetCaption(kFeedbackKinds[i]);
    option.SetContainer(&feedback);
  }
  Box(u"SSOption1", 0).SetValue(kTrue);
  for (int side = 0; side < 2; ++side) {
    Control& sent = Box(u"feedback_chk", side);
    sent.SetCaption(u"Sent Feedback");
    sent.SetContainer(&feedback);
  }
  ShowOnPages(feedback, {kContactPage});

  // The Setup page's comment list edits the stored comments in place.
  f.feedback_grid.columns.clear();
  f.feedback_grid.AddColumn(u"Feedback Comment", u"feedback_comment");
  f.feedback_grid.SetDataSource(&f.Bulk);
  f.feedback_grid.allow_delete = true;
}

void AfterSale::RegisterMailRoutines(const std::shared_ptr<AfterSale>& self) {
  auto add = [&self](const char* name, void (AfterSale::*routine)()) { AddRoutine(self, name, routine); };
  add("ctToolBar2(1)", &AfterSale::send_feedback);
  add("send_feedback", &AfterSale::send_feedback);
  add("ctToolBar4(1)", &AfterSale::send_now);
  add("send_pop_mail", &AfterSale::send_pop_mail);
  add("send_mapi_mail", &AfterSale::send_mapi_mail);
  add("ctToolBar4(2)", &AfterSale::set_bulk_mail);
  add("set_bulk_mail", &AfterSale::set_bulk_mail);
  add("ctToolBar4(3)", &AfterSale::print_email);
  add("print_email", &AfterSale::print_email);
  add("view_bulkmail", &AfterSale::view_bulkmail);
  add("show_bulk_mail_page", &AfterSale::show_bulk_mail_page);
  add("email_tab_click", &AfterSale::email_tab_click);
  add("ctToolBar7(1)", &AfterSale::send_bulk_now);
  add("ctToolBar7(2)", &AfterSale::refresh_bulk_list);
  add("ctToolBar7(3)", &AfterSale::delete_all_bulk_mail);
  add("populate_feedback_grid", &AfterSale::populate_feedback_grid);
  add("populate_feedback_combo", &AfterSale::populate_feedback_combo);

  Grid& queue = main().Get<Grid>(u"TDBGrid1");
  queue.OnRowColChange = [self](int, int) { self->bulk_row_changed(); };
  queue.OnAfterDelete = [self] { self->bulk_row_deleted(); };
  Control& comment = Box(u"Combo1");
  comment.OnChange = [self] { self->feedback_comment_change(); };
  comment.OnGotFocus = [self] {
    try {
      self->populate_feedback_combo();
    } catch (const RuntimeError&) {
    }
  };
}

}  // namespace lw
