#include "apps/drive/driver.h"

#include <algorithm>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <istream>
#include <ostream>
#include <thread>

#include "core/primitives/encoding.h"
#include "screen/grid.h"
#include "screen/names.h"

extern char** environ;

namespace lw {

namespace {

std::string U8(TextView t) {
  return ToUtf8(t);
}

std::string Q(TextView t) {
  return QuoteForScript(t);
}

std::string PlainNumber(double d) {
  if (std::isnan(d)) return "NaN";
  if (std::isinf(d)) return d < 0 ? "-Infinity" : "Infinity";
  if (d == 0) return "0";
  char buf[400];
  auto [end, ec] = std::to_chars(buf, buf + sizeof buf, d, std::chars_format::fixed);
  if (ec != std::errc()) return std::to_string(d);
  return std::string(buf, end);
}

std::string PlainCurrency(Currency c) {
  int64_t s = c.scaled();
  std::string sign = s < 0 ? "-" : "";
  uint64_t a = s < 0 ? 0 - static_cast<uint64_t>(s) : static_cast<uint64_t>(s);
  std::string out = sign + std::to_string(a / Currency::kScale);
  uint64_t frac = a % Currency::kScale;
  if (frac) {
    char digits[8];
    std::snprintf(digits, sizeof digits, "%04llu", static_cast<unsigned long long>(frac));
    std::string f = digits;
    while (!f.empty() && f.back() == '0') f.pop_back();
    out += "." + f;
  }
  return out;
}

std::string PlainDate(Date d) {
  CivilTime t = SplitDate(d);
  char buf[40];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", t.year, t.month, t.day, t.hour, t.minute,
                t.second);
  return buf;
}

std::string SqlValue(const Variant& v) {
  switch (v.kind()) {
    case Variant::Kind::Null:
      return "Null";
    case Variant::Kind::Bool:
      return *v.boolean() ? "True" : "False";
    case Variant::Kind::Number:
      return PlainNumber(*v.number());
    case Variant::Kind::Currency:
      return PlainCurrency(*v.currency());
    case Variant::Kind::Date:
      return PlainDate(*v.date());
    case Variant::Kind::Text:
      return Q(*v.text());
  }
  return "Null";
}

// A statement that gives rows rather than changing them.
bool IsQuery(TextView statement) {
  size_t i = 0;
  while (i < statement.size() && (statement[i] == u' ' || statement[i] == u'\t' || statement[i] == u'(')) ++i;
  Text word;
  while (i < statement.size() &&
         ((statement[i] >= u'a' && statement[i] <= u'z') || (statement[i] >= u'A' && statement[i] <= u'Z')))
    word += statement[i++];
  return SameName(word, u"select") || SameName(word, u"transform");
}

// "YYYY-MM-DD HH:MM:SS", every field checked.
std::optional<Date> ParseMoment(TextView text) {
  if (text.size() != 19) return std::nullopt;
  auto num = [&](size_t at, size_t len, int& out) {
    out = 0;
    for (size_t i = at; i < at + len; ++i) {
      if (text[i] < u'0' || text[i] > u'9') return false;
      out = out * 10 + (text[i] - u'0');
    }
    return true;
  };
  int y, mo, d, h, mi, s;
  if (!num(0, 4, y) || text[4] != u'-' || !num(5, 2, mo) || text[7] != u'-' || !num(8, 2, d) ||
      text[10] != u' ' || !num(11, 2, h) || text[13] != u':' || !num(14, 2, mi) || text[16] != u':' ||
      !num(17, 2, s))
    return std::nullopt;
  static const int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (y < 100 || mo < 1 || mo > 12 || d < 1 || d > kDays[mo - 1] || h > 23 || mi > 59 || s > 59)
    return std::nullopt;
  bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
  if (mo == 2 && d == 29 && !leap) return std::nullopt;
  return MakeDate(y, mo, d, h, mi, s);
}

struct KeyStroke {
  int code = 0;
  int ascii = 0;
};

std::optional<KeyStroke> ParseKey(TextView name) {
  if (SameName(name, u"enter") || SameName(name, u"return")) return KeyStroke{key::kEnter, key::kEnter};
  if (SameName(name, u"escape") || SameName(name, u"esc")) return KeyStroke{key::kEscape, key::kEscape};
  if (SameName(name, u"tab")) return KeyStroke{key::kTab, key::kTab};
  if (SameName(name, u"backspace")) return KeyStroke{key::kBack, key::kBack};
  if (SameName(name, u"delete")) return KeyStroke{key::kDelete, 0};
  if (SameName(name, u"space")) return KeyStroke{32, 32};
  if (name.size() >= 2 && (name[0] == u'F' || name[0] == u'f')) {
    int n = 0;
    if (ParseInt(name.substr(1), n) && n >= 1 && n <= 12) return KeyStroke{key::kF1 + n - 1, 0};
  }
  if (name.size() == 1 && !(name[0] >= 0xD800 && name[0] <= 0xDFFF)) {
    char16_t c = name[0];
    int code = 0;
    if (c >= u'a' && c <= u'z')
      code = c - u'a' + 'A';
    else if ((c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u' ')
      code = c;
    return KeyStroke{code, static_cast<int>(c)};
  }
  return std::nullopt;
}

UserError Usage(const char* usage) {
  return UserError(std::string("usage: ") + usage);
}

}  // namespace

Driver::Driver(std::istream& script, std::ostream& out) : script_(script), out_(out) {}

Driver::~Driver() = default;

void Driver::Attach(Program program) {
  program_ = std::move(program);
}

Screen& Driver::screen() const {
  if (!program_.screen) throw UserError("the program has no screen yet");
  return *program_.screen;
}

void Driver::Line(const std::string& line) {
  out_ << line << '\n' << std::flush;
}

void Driver::Error(const std::string& message) {
  errors_ = true;
  Line("error: line " + std::to_string(line_number_) + ": " + message);
}

void Driver::Refused(const std::string& message) {
  Line("refused: " + message);
}

bool Driver::NextLine(std::vector<Text>& words) {
  if (pending_) {
    words = std::move(*pending_);
    pending_.reset();
    return true;
  }
  std::string line;
  while (std::getline(script_, line)) {
    ++line_number_;
    try {
      if (auto split = SplitScriptLine(line)) {
        words = std::move(*split);
        return true;
      }
    } catch (const ScriptSyntaxError& e) {
      Error(e.what());
    }
  }
  return false;
}

bool Driver::IsStageCommand(const std::vector<Text>& words) const {
  const Text c = FoldName(words[0]);
  return c == u"now" || c == u"answer" || c == u"file" || c == u"color";
}

int Driver::Run(const std::function<void()>& start) {
  int code = kOk;
  try {
    std::vector<Text> words;
    // What the script fixes before the program starts: the clock and the answers start-up may need.
    while (NextLine(words)) {
      if (!IsStageCommand(words)) {
        pending_ = std::move(words);
        break;
      }
      Execute(words);
    }
    if (start) {
      try {
        start();
      } catch (const RuntimeError& e) {
        Line("fatal: run-time error " + std::to_string(e.number()) + ": " + e.description());
        return kFatal;
      } catch (const std::exception& e) {
        Line(std::string("fatal: ") + e.what());
        return kFatal;
      }
    }
    while (NextLine(words)) Execute(words);
  } catch (const ProcessEnd& end) {
    code = end.code;
    // What the program said on its way out (the backup question, the conversion notice) can no longer
    // be asked for with `messages`, so it is shown here.
    for (const auto& m : messages_) Line(m);
    messages_.clear();
  } catch (const ScriptEnd&) {
  } catch (const FatalEnd&) {
    return kFatal;
  }
  if (errors_) return kScriptErrors;
  return code;
}

void Driver::Execute(const std::vector<Text>& words) {
  // A popup opened by an earlier command offers its entries to the next user action only; looking at
  // the screen in between leaves it open.
  static constexpr std::u16string_view kLooks[] = {u"get",  u"status", u"messages", u"outside",
                                                   u"grid", u"sql",    u"clipboard"};
  bool look = !words.empty() && std::any_of(std::begin(kLooks), std::end(kLooks),
                                            [&](std::u16string_view c) { return SameName(words[0], c); });
  Menu* popup = look ? nullptr : std::exchange(popup_, nullptr);
  struct ClosePopup {
    Menu* menu;
    ~ClosePopup() {
      if (menu) menu->popped_up = false;
    }
  } close{popup};
  try {
    Dispatch(words);
  } catch (const UserRefused& e) {
    Refused(e.what());
  } catch (const UserError& e) {
    Error(e.what());
  } catch (const ScriptSyntaxError& e) {
    Error(e.what());
  } catch (const RuntimeError& e) {
    Line("fatal: run-time error " + std::to_string(e.number()) + ": " + e.description());
    throw FatalEnd{};
  } catch (const std::exception& e) {
    Line(std::string("fatal: ") + e.what());
    throw FatalEnd{};
  }
}

Control& Driver::ResolveControl(TextView word) const {
  auto segs = ParseReference(word);
  Control* c = nullptr;
  if (segs.size() == 1) {
    c = screen().Resolve(Text(), segs[0].name, SegmentIndex(segs[0]));
  } else if (segs.size() == 2 && !segs[0].bracketed) {
    if (!screen().FindForm(segs[0].name)) throw UserError("no form " + U8(segs[0].name));
    c = screen().Resolve(segs[0].name, segs[1].name, SegmentIndex(segs[1]));
  } else {
    throw UserError("\"" + U8(word) + "\" is not a control reference");
  }
  if (!c) throw UserError("no control " + U8(word));
  return *c;
}

void Driver::Dispatch(const std::vector<Text>& words) {
  const Text cmd = FoldName(words[0]);
  const size_t n = words.size() - 1;
  const Text* arg2 = n >= 2 ? &words[2] : nullptr;

  if (cmd == u"set") {
    if (n != 2) throw Usage("set REF VALUE");
    return CmdSet(words[1], words[2]);
  }
  if (cmd == u"click" || cmd == u"rclick" || cmd == u"dblclick") {
    if (n < 1 || n > 2) throw Usage("click REF [N|CAPTION]");
    Control& c = ResolveControl(words[1]);
    if (cmd == u"click")
      c.UserClick(arg2);
    else if (cmd == u"rclick")
      c.UserRightClick(arg2);
    else
      c.UserDblClick(arg2);
    return;
  }
  if (cmd == u"row") {
    if (n != 2) throw Usage("row NAME N");
    auto* grid = dynamic_cast<Grid*>(&ResolveControl(words[1]));
    if (!grid) throw UserError(U8(words[1]) + " is not a grid");
    int row = 0;
    if (!ParseInt(words[2], row)) throw UserError("row takes a row number from 0");
    return grid->UserRow(row);
  }
  if (cmd == u"resize") {
    if (n != 3) throw Usage("resize GRID COLUMN WIDTH");
    auto* grid = dynamic_cast<Grid*>(&ResolveControl(words[1]));
    if (!grid) throw UserError(U8(words[1]) + " is not a grid");
    int col = 0, width = 0;
    if (!ParseInt(words[2], col) || !ParseInt(words[3], width))
      throw UserError("resize takes a column number from 0 and a width in twips");
    return grid->UserResizeColumn(col, width);
  }
  if (cmd == u"edit") {
    if (n != 4) throw Usage("edit GRID ROW COLUMN VALUE");
    auto* grid = dynamic_cast<Grid*>(&ResolveControl(words[1]));
    if (!grid) throw UserError(U8(words[1]) + " is not a grid");
    int row = 0, col = 0;
    if (!ParseInt(words[2], row) || !ParseInt(words[3], col))
      throw UserError("edit takes a row and a column number from 0");
    return grid->UserEditCell(row, col, words[4]);
  }
  if (cmd == u"key") {
    if (n != 2) throw Usage("key REF KEY");
    return CmdKey(words[1], words[2]);
  }
  if (cmd == u"leave") {
    if (n != 1) throw Usage("leave REF");
    return ResolveControl(words[1]).UserLeave();
  }
  if (cmd == u"tab") {
    if (n != 1) throw Usage("tab N");
    int page = 0;
    if (!ParseInt(words[1], page)) throw UserError("tab takes a page number from 0");
    Control* c = screen().Resolve(Text(), u"SSTab1", -1);
    auto* strip = dynamic_cast<TabStrip*>(c);
    if (!strip) {
      for (Form* f : {screen().TopModal(), screen().main_form}) {
        if (!f || strip) continue;
        for (const auto& ctl : f->controls())
          if ((strip = dynamic_cast<TabStrip*>(ctl.get()))) break;
      }
    }
    if (!strip) throw UserError("no tab strip on the screen");
    return strip->UserTab(page);
  }
  if (cmd == u"menu") {
    if (n != 1) throw Usage("menu NAME");
    auto* menu = dynamic_cast<Menu*>(&ResolveControl(words[1]));
    if (!menu) throw UserError(U8(words[1]) + " is not a menu entry");
    return menu->UserClick(nullptr);
  }
  if (cmd == u"answer") {
    if (n != 1) throw Usage("answer Yes|No|OK|Cancel|Retry|Ignore|Abort");
    auto a = ParseAnswer(words[1]);
    if (!a) throw UserError("no message box button \"" + U8(words[1]) + "\"");
    answers_.push_back(*a);
    return;
  }
  if (cmd == u"file") {
    if (n < 1 || n > 2) throw Usage("file PATH [FILTER] | file cancel");
    FileAnswer f;
    if (n == 1 && SameName(words[1], u"cancel")) {
      f.cancel = true;
    } else {
      if (words[1].empty()) throw UserError("file needs a path");
      f.path = std::filesystem::path(U8(words[1]));
      if (n == 2 && (!ParseInt(words[2], f.filter_index) || f.filter_index < 1))
        throw UserError("the filter of file is a number from 1");
    }
    files_.push_back(std::move(f));
    return;
  }
  if (cmd == u"color") {
    if (n != 1) throw Usage("color N | color cancel");
    if (SameName(words[1], u"cancel")) {
      colours_.push_back(std::nullopt);
      return;
    }
    int colour = 0;
    if (!ParseInt(words[1], colour) || colour < 0 || colour > 0xFFFFFF)
      throw UserError("color takes a colour number from 0 to 16777215");
    colours_.push_back(colour);
    return;
  }
  if (cmd == u"now") {
    if (n != 1) throw Usage("now \"YYYY-MM-DD HH:MM:SS\"");
    return CmdNow(words[1]);
  }
  if (cmd == u"pump") {
    if (n != 0) throw Usage("pump");
    return CmdPump();
  }
  if (cmd == u"tick") {
    if (n < 1 || n > 2) throw Usage("tick NAME [N]");
    return CmdTick(words[1], arg2 ? arg2 : nullptr);
  }
  if (cmd == u"get") {
    if (n != 1) throw Usage("get REF[.PROP]");
    return CmdGet(words[1]);
  }
  if (cmd == u"status") {
    if (n != 1) throw Usage("status N");
    return CmdStatus(words[1]);
  }
  if (cmd == u"messages") {
    if (n != 0) throw Usage("messages");
    for (const auto& m : messages_) Line(m);
    messages_.clear();
    return;
  }
  if (cmd == u"grid") {
    if (n != 1) throw Usage("grid NAME");
    return CmdGrid(words[1]);
  }
  if (cmd == u"sql") {
    if (n != 1) throw Usage("sql \"STATEMENT\"");
    return CmdSql(words[1]);
  }
  if (cmd == u"exit") {
    if (n != 0) throw Usage("exit");
    return CmdExit();
  }
  if (cmd == u"clipboard") {
    if (n != 0) throw Usage("clipboard");
    Line("clipboard = " + Q(clipboard_));
    return;
  }
  if (cmd == u"outside") {
    if (n != 0) throw Usage("outside");
    for (const auto& m : outside_) Line(m);
    outside_.clear();
    return;
  }
  throw UserError("unknown command " + U8(words[0]));
}

void Driver::CmdGet(const Text& word) {
  auto segs = ParseReference(word);
  Form* form = nullptr;
  Control* control = nullptr;
  const RefSegment* prop = nullptr;
  if (segs.size() == 3) {
    if (segs[0].bracketed || !(form = screen().FindForm(segs[0].name)))
      throw UserError("no form " + U8(segs[0].name));
    control = form->Find(segs[1].name, SegmentIndex(segs[1]));
    if (!control) throw UserError("no control " + U8(segs[1].name) + " on form " + U8(segs[0].name));
    prop = &segs[2];
    form = nullptr;
  } else if (segs.size() == 2) {
    Form* f = segs[0].bracketed ? nullptr : screen().FindForm(segs[0].name);
    if (f) {
      if ((control = f->Find(segs[1].name, SegmentIndex(segs[1])))) {
        // FORM.CONTROL: the control's text.
      } else if (!segs[1].bracketed && f->Property(segs[1].name)) {
        form = f;
        prop = &segs[1];
      } else {
        throw UserError("form " + U8(segs[0].name) + " has no control or property " + U8(segs[1].name));
      }
    } else {
      control = screen().Resolve(Text(), segs[0].name, SegmentIndex(segs[0]));
      if (!control) throw UserError("no control or form " + U8(segs[0].name));
      prop = &segs[1];
    }
  } else {
    control = screen().Resolve(Text(), segs[0].name, SegmentIndex(segs[0]));
    if (!control) {
      if (!segs[0].bracketed) form = screen().FindForm(segs[0].name);
      if (!form) throw UserError("no control " + U8(word));
    }
  }
  std::optional<Text> value;
  if (form) {
    value = form->Property(prop ? TextView(prop->name) : TextView(u"caption"));
  } else {
    static const Text kText = u"text";
    value = control->Property(prop ? prop->name : kText, prop ? prop->args : std::vector<Text>{});
    if (!value)
      throw UserError(U8(control->Reference()) + " has no property " + U8(prop ? prop->name : kText));
  }
  Line(U8(word) + " = " + Q(value.value_or(Text())));
}

void Driver::CmdSet(const Text& word, const Text& value) {
  auto segs = ParseReference(word);
  if (segs.size() == 2 && !segs[0].bracketed && !segs[1].bracketed) {
    if (Form* f = screen().FindForm(segs[0].name); f && !f->Find(segs[1].name, -1)) {
      if (!f->SetProperty(segs[1].name, value))
        throw UserError("form " + U8(segs[0].name) + " has no control or property " + U8(segs[1].name));
      return;
    }
  }
  ResolveControl(word).UserSet(value);
}

void Driver::CmdKey(const Text& word, const Text& key_name) {
  auto stroke = ParseKey(key_name);
  if (!stroke)
    throw UserError("unknown key " + U8(key_name) + " (Enter, Escape, F2 ... F11, or one character)");
  ResolveControl(word).UserKey(stroke->code, stroke->ascii);
}

void Driver::CmdTick(const Text& word, const Text* number) {
  Control& c = ResolveControl(word);
  if (auto* timer = dynamic_cast<Timer*>(&c)) {
    if (number) throw UserError("a timer ticks without a number");
    if (!timer->enabled()) throw UserRefused(U8(c.Reference()) + " is not running");
    timer->Fire();
    return;
  }
  if (auto* clock = dynamic_cast<ClockControl*>(&c)) {
    int n = 0;
    if (number && !ParseInt(*number, n)) throw UserError("a clock tick takes a whole number");
    clock->Tick(n);
    return;
  }
  throw UserError(U8(c.Reference()) + " is neither a timer nor a clock");
}

void Driver::CmdNow(const Text& moment) {
  auto date = ParseMoment(moment);
  if (!date) throw UserError("now takes \"YYYY-MM-DD HH:MM:SS\", not \"" + U8(moment) + "\"");
  if (!program_.clock) throw UserError("the program has no clock");
  program_.clock->Fix(*date);
}

void Driver::CmdPump() {
  if (!screen().queue().Pump(std::chrono::seconds(30)))
    throw UserError("pump: events were still to come after 30 seconds");
}

void Driver::CmdStatus(const Text& number) {
  int panel = 0;
  if (!ParseInt(number, panel)) throw UserError("status takes a panel number from 1");
  StatusBar* bar = nullptr;
  std::vector<Form*> forms;
  if (screen().main_form) forms.push_back(screen().main_form);
  for (Form* f : screen().forms()) forms.push_back(f);
  for (Form* f : forms) {
    for (const auto& c : f->controls())
      if ((bar = dynamic_cast<StatusBar*>(c.get()))) break;
    if (bar) break;
  }
  if (!bar) throw UserError("no status bar on the screen");
  if (panel < 1 || panel > bar->Panels()) throw UserError("the status bar has no panel " + U8(number));
  Line("status " + std::to_string(panel) + " = " + Q(bar->panel(panel)));
}

void Driver::CmdGrid(const Text& word) {
  auto* grid = dynamic_cast<Grid*>(&ResolveControl(word));
  if (!grid) throw UserError(U8(word) + " is not a grid");
  // What the user sees: hidden columns stay out.
  for (const auto& cells : grid->Rows()) {
    std::string line = "row:";
    for (size_t col = 0; col < cells.size(); ++col)
      if (col >= grid->columns.size() || grid->columns[col].visible) line += " " + Q(cells[col]);
    Line(line);
  }
}

void Driver::CmdSql(const Text& statement) {
  Database* db = program_.database ? program_.database() : nullptr;
  if (!db) throw UserError("sql: no store is open");
  try {
    if (IsQuery(statement)) {
      auto rs = db->OpenRecordset(statement);
      const auto names = rs->FieldNames();
      std::string header = "columns:";
      for (const auto& name : names) header += " " + U8(name);
      Line(header);
      while (!rs->Eof()) {
        std::string line = "row:";
        for (const auto& name : names) line += " " + SqlValue(rs->Fields(name));
        Line(line);
        rs->MoveNext();
      }
    } else {
      db->Execute(statement);
      Line("affected: " + std::to_string(db->RecordsAffected()));
    }
  } catch (const RuntimeError& e) {
    throw UserError("sql: run-time error " + std::to_string(e.number()) + ": " + e.description());
  }
}

void Driver::CmdExit() {
  if (program_.exit_routine) program_.exit_routine();
  // An exit routine that comes back has still ended the program.
  throw ProcessEnd{0};
}

// ---- Ui

MsgAnswer Driver::MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon icon) {
  const auto offered = ButtonsOf(buttons);
  MsgAnswer answer = offered.front();
  if (!answers_.empty()) {
    MsgAnswer queued = answers_.front();
    answers_.pop_front();
    if (std::find(offered.begin(), offered.end(), queued) != offered.end()) {
      answer = queued;
    } else {
      Error(std::string("the queued answer ") + AnswerName(queued) + " is not a button of the box " +
            Q(title) + " (" + ButtonsName(buttons) + "); took " + AnswerName(answer));
    }
  }
  messages_.push_back("msgbox " + Q(title) + " " + Q(text) + " " + ButtonsName(buttons) + " " +
                      IconName(icon) + " -> " + AnswerName(answer));
  return answer;
}

std::optional<FileDialogAnswer> Driver::FileDialog() {
  if (files_.empty() || files_.front().cancel) {
    if (!files_.empty()) files_.pop_front();
    return std::nullopt;
  }
  FileAnswer f = std::move(files_.front());
  files_.pop_front();
  return FileDialogAnswer{f.path, f.filter_index};
}

std::optional<FileDialogAnswer> Driver::ShowOpen(const FileDialogRequest& request) {
  auto answer = FileDialog();
  outside_.push_back("open dialog " + Q(request.title) + " -> " +
                     (answer ? Q(FromUtf8(answer->path.string())) : std::string("cancel")));
  return answer;
}

std::optional<FileDialogAnswer> Driver::ShowSave(const FileDialogRequest& request) {
  auto answer = FileDialog();
  outside_.push_back("save dialog " + Q(request.title) + " -> " +
                     (answer ? Q(FromUtf8(answer->path.string())) : std::string("cancel")));
  return answer;
}

std::optional<Colour> Driver::ChooseColour(Colour) {
  if (colours_.empty()) return std::nullopt;
  auto c = colours_.front();
  colours_.pop_front();
  return c;
}

void Driver::SetWaitCursor(bool on) {
  if (on)
    ++wait_cursor_;
  else if (wait_cursor_ > 0)
    --wait_cursor_;
}

void Driver::ShowModal(Form& form) {
  // The form takes the following commands until it closes; then the command that opened it goes on.
  while (form.loaded() && form.visible()) {
    std::vector<Text> words;
    if (!NextLine(words)) throw ScriptEnd{};
    Execute(words);
  }
}

void Driver::PopupMenu(Form&, Menu& menu) {
  outside_.push_back("popup " + U8(menu.Reference()));
  if (popup_ && popup_ != &menu) popup_->popped_up = false;
  popup_ = &menu;
}

void Driver::SetClipboardText(const Text& text) {
  clipboard_ = text;
}
void Driver::ClearClipboard() {
  clipboard_.clear();
}
Text Driver::ClipboardText() {
  return clipboard_;
}

void Driver::OpenHelp(const std::filesystem::path& file, int topic) {
  outside_.push_back("help " + Q(FromUtf8(file.string())) + " " + std::to_string(topic));
}

void Driver::OpenAddress(const Text& address) {
  outside_.push_back("address " + Q(address));
}

void Driver::StartProgram(const std::filesystem::path& program, const std::vector<Text>& arguments) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(program, ec))
    throw RuntimeError(err::kFileNotFound, "File not found: " + program.string());
  std::vector<std::string> args{program.string()};
  for (const auto& a : arguments) args.push_back(U8(a));
  std::vector<char*> argv;
  for (auto& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  // The started program reports on the driver's error stream, so the transcript stays the driver's own.
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, 2, 1);
  pid_t pid = 0;
  int rc = posix_spawn(&pid, args[0].c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) throw RuntimeError(err::kFileNotFound, "Cannot start " + program.string());
  children_.push_back(pid);
  std::string line = "start " + Q(FromUtf8(program.string()));
  for (const auto& a : arguments) line += " " + Q(a);
  outside_.push_back(line);
}

void Driver::WaitForStartedPrograms(std::chrono::seconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!children_.empty()) {
    for (auto it = children_.begin(); it != children_.end();) {
      int status = 0;
      pid_t r = waitpid(*it, &status, WNOHANG);
      if (r == *it || r < 0)
        it = children_.erase(it);
      else
        ++it;
    }
    if (children_.empty() || std::chrono::steady_clock::now() >= deadline) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

void Driver::EndProcess(int code) {
  throw ProcessEnd{code};
}

}  // namespace lw
