#include "apps/desktop/views.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFont>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPalette>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QStatusBar>
#include <QTime>
#include <QTimer>
#include <QToolBar>
#include <QToolBox>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <map>

#include "apps/desktop/desktop.h"
#include "apps/desktop/document_views.h"
#include "apps/desktop/grid_view.h"
#include "apps/desktop/qt_convert.h"
#include "apps/desktop/renderer.h"
#include "apps/desktop/web_view.h"
#include "core/primitives/encoding.h"
#include "screen/edits.h"
#include "screen/tree_view.h"

namespace lw::desktop {

namespace {

std::string Ref(const Control& c) {
  return ToUtf8(c.form().name()) + "." + ToUtf8(c.Reference());
}

std::string Shown(const QString& s) {
  return "\"" + s.toStdString() + "\"";
}

// The check's line for a widget that shows `shown` where the model's `what` holds `model`.
std::string ShowsOther(const QString& shown, const char* what, const Text& model) {
  return "shows " + Shown(shown) + ", " + what + " is " + Shown(Q(model));
}

// The key codes and characters of a key as the model numbers them; {0, 0} for a key the model does
// not hear of (modifiers, Tab, which moves the focus).
std::pair<int, int> ModelKey(const QKeyEvent& e) {
  const int k = e.key();
  if (k >= Qt::Key_F1 && k <= Qt::Key_F12) return {key::kF1 + (k - Qt::Key_F1), 0};
  switch (k) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return {key::kEnter, key::kEnter};
    case Qt::Key_Escape:
      return {key::kEscape, key::kEscape};
    case Qt::Key_Backspace:
      return {key::kBack, key::kBack};
    case Qt::Key_Delete:
      return {key::kDelete, 0};
    case Qt::Key_Left:
      return {37, 0};
    case Qt::Key_Up:
      return {38, 0};
    case Qt::Key_Right:
      return {39, 0};
    case Qt::Key_Down:
      return {40, 0};
    case Qt::Key_Home:
      return {36, 0};
    case Qt::Key_End:
      return {35, 0};
    case Qt::Key_PageUp:
      return {33, 0};
    case Qt::Key_PageDown:
      return {34, 0};
    default:
      break;
  }
  const QString text = e.text();
  if (text.size() != 1 || text[0].unicode() < 32 || text[0].isSurrogate()) return {0, 0};
  const char16_t c = text[0].unicode();
  int code = 0;
  if (c >= u'a' && c <= u'z')
    code = c - u'a' + 'A';
  else if ((c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u' ')
    code = c;
  return {code, c};
}

}  // namespace

void KeepRowsInSight(QWidget& list, int row_height, int rows) {
  // The rows, a header and the frame round them.
  list.setMinimumHeight((rows + 1) * row_height + 4);
}

void ApplyColours(QWidget& widget, const Control& control, bool input) {
  QPalette p = QApplication::palette(&widget);
  bool own = false;
  if (control.forecolor() != 0) {
    const QColor fore = QColour(control.forecolor());
    p.setColor(QPalette::WindowText, fore);
    p.setColor(QPalette::Text, fore);
    p.setColor(QPalette::ButtonText, fore);
    own = true;
  }
  if (control.backcolor() != 0xFFFFFF) {
    const QColor back = QColour(control.backcolor());
    p.setColor(input ? QPalette::Base : QPalette::Window, back);
    if (!input) widget.setAutoFillBackground(true);
    own = true;
  }
  widget.setPalette(own ? p : QApplication::palette(&widget));
}

// ---- ControlView

// Key presses and clicks in the control's widget go to the model first: its KeyDown and KeyPress
// (with the form's preview) may take a key away, and a click on a label or a text box is an event of
// its own there.
class ControlView::InputFilter : public QObject {
 public:
  explicit InputFilter(ControlView& view) : view_(view) {}

  bool eventFilter(QObject*, QEvent* event) override {
    Control& c = view_.control_;
    Desktop& d = view_.renderer_.desktop();
    switch (event->type()) {
      case QEvent::KeyPress: {
        auto [code, ascii] = ModelKey(*static_cast<QKeyEvent*>(event));
        if (!code && !ascii) return false;
        if (c.kind() == ControlKind::Button) {
          // Enter and the space bar click a button; the model decides.
          view_.UserAction([&c, code = code, ascii = ascii] { c.UserKey(code, ascii); });
          return true;
        }
        int k = code, a = ascii;
        bool refused = true;
        d.Dispatch([&] {
          c.UserKeyEvents(k, a);
          refused = false;
        });
        if (refused) return true;
        // A key the handlers swallowed goes no further; what survives the widget types itself.
        if (ascii) return a == 0;
        return k == 0;
      }
      case QEvent::MouseButtonRelease: {
        auto* m = static_cast<QMouseEvent*>(event);
        if (m->button() != Qt::LeftButton || !clickable()) return false;
        if (!view_.widget_ ||
            !view_.widget_->rect().contains(view_.widget_->mapFromGlobal(m->globalPosition().toPoint())))
          return false;
        d.Dispatch([&c] { c.UserClick(nullptr); });
        return false;
      }
      case QEvent::MouseButtonDblClick: {
        auto* m = static_cast<QMouseEvent*>(event);
        if (m->button() != Qt::LeftButton || !clickable()) return false;
        d.Dispatch([&c] { c.UserDblClick(nullptr); });
        return false;
      }
      case QEvent::ContextMenu:
        d.Dispatch([&c] { c.UserRightClick(nullptr); });
        return true;
      default:
        return false;
    }
  }

 private:
  // Buttons, check boxes and lists report clicks by their own signals.
  bool clickable() const {
    switch (view_.control_.kind()) {
      case ControlKind::Label:
      case ControlKind::TextBox:
      case ControlKind::DateEdit:
      case ControlKind::NumberEdit:
      case ControlKind::Picture:
      case ControlKind::Frame:
      case ControlKind::Clock:
        return true;
      default:
        return false;
    }
  }
  ControlView& view_;
};

ControlView::ControlView(Renderer& renderer, Control& control) : renderer_(renderer), control_(control) {}

ControlView::~ControlView() {
  if (widget_) {
    // The model's control may be gone already: nothing the widget does from now on may reach it.
    widget_->disconnect();
    if (filter_) widget_->removeEventFilter(filter_.get());
    widget_->hide();
    widget_->deleteLater();
  }
}

QWidget* ControlView::Host(int) const {
  return nullptr;
}

bool ControlView::Stretches() const {
  return control_.layout.stretch || control_.layout.multiline;
}

void ControlView::UserAction(const std::function<void()>& action) {
  renderer_.desktop().Dispatch(action);
  if (widget_) Sync(change::kText | change::kValue | change::kSelection | change::kState);
}

void ControlView::WatchInput(QWidget* target) {
  if (!filter_) filter_ = std::make_unique<InputFilter>(*this);
  target->installEventFilter(filter_.get());
}

void ControlView::SyncCommon(unsigned changes) {
  if (!widget_) return;
  if (changes & change::kState) {
    widget_->setVisible(control_.visible());
    widget_->setEnabled(control_.enabled());
  }
  if (changes & change::kLook) {
    widget_->setToolTip(Q(control_.tooltip()));
    const FontSpec& f = control_.font();
    QFont font = QApplication::font(widget_);
    if (!f.name.empty()) font.setFamily(Q(f.name));
    // The size is always the widget's own, so that it follows the window where fonts do.
    const double scale = renderer_.FontScale(control_.form());
    if (f.size > 0 || scale != 1) font.setPointSizeF((f.size > 0 ? f.size : font.pointSizeF()) * scale);
    font.setBold(f.bold);
    font.setItalic(f.italic);
    font.setUnderline(f.underline);
    widget_->setFont(font);
  }
}

void ControlView::Sync(unsigned changes) {
  SyncCommon(changes);
}

void ControlView::Report(std::vector<std::string>& problems, const std::string& what) const {
  problems.push_back(Ref(control_) + ": " + what);
}

void ControlView::Check(std::vector<std::string>& problems) const {
  if (!widget_) {
    Report(problems, "has no widget");
    return;
  }
  if (widget_->isHidden() == control_.visible())
    Report(problems, std::string("widget is ") + (widget_->isHidden() ? "hidden" : "shown") +
                         ", control is " + (control_.visible() ? "visible" : "hidden"));
}

namespace {

// ---- Labels

class LabelView : public ControlView {
 public:
  LabelView(Renderer& r, Control& c) : ControlView(r, c) {
    label_ = new QLabel;
    label_->setTextFormat(Qt::PlainText);
    label_->setWordWrap(false);
    widget_ = label_;
    WatchInput(label_);
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (changes & change::kText) label_->setText(Q(control_.caption()));
    if (changes & change::kLook) ApplyColours(*label_, control_, false);
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (label_->text() != Q(control_.caption()))
      Report(problems, ShowsOther(label_->text(), "caption", control_.caption()));
  }

 private:
  QLabel* label_;
};

// ---- Text boxes, date and money boxes

class TextView : public ControlView {
 public:
  TextView(Renderer& r, Control& c) : ControlView(r, c) {
    QWidget* box = nullptr;
    if (c.layout.multiline) {
      lines_ = new QPlainTextEdit;
      lines_->setTabChangesFocus(true);
      QObject::connect(lines_, &QPlainTextEdit::textChanged, [this] {
        if (renderer_.syncing() || typing_guard_) return;
        Text typed = ModelLines(lines_->toPlainText());
        if (typed == control_.text()) return;
        UserAction([this, typed] { control_.UserSet(typed); });
      });
      box = lines_;
    } else {
      line_ = new QLineEdit;
      if (c.max_length > 0) line_->setMaxLength(c.max_length);
      QObject::connect(line_, &QLineEdit::textEdited, [this](const QString& text) {
        Text typed = FromQ(text);
        UserAction([this, typed] { control_.UserSet(typed); });
      });
      box = line_;
    }
    WatchInput(box);
    auto* money = dynamic_cast<MoneyEdit*>(&c);
    auto* date = dynamic_cast<DateEditBox*>(&c);
    if (!money && !date) {
      widget_ = box;
    } else {
      // A money box shows its currency symbol in front; a date box has its spin buttons behind.
      auto* whole = new QWidget;
      auto* row = new QHBoxLayout(whole);
      row->setContentsMargins(0, 0, 0, 0);
      row->setSpacing(2);
      if (money) {
        symbol_ = new QLabel;
        row->addWidget(symbol_);
      }
      row->addWidget(box, 1);
      if (date) {
        for (int direction : {0, 1}) {
          auto* spin = new QToolButton;
          spin->setArrowType(direction == 0 ? Qt::UpArrow : Qt::DownArrow);
          spin->setAutoRaise(true);
          QObject::connect(spin, &QToolButton::clicked, [this, date, direction] {
            UserAction([date, direction] {
              if (date->Reachable()) date->Spin(direction);
            });
          });
          row->addWidget(spin);
        }
      }
      widget_ = whole;
    }
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    QWidget* box = line_ ? static_cast<QWidget*>(line_) : lines_;
    if (changes & change::kText) {
      if (line_ && line_->text() != Q(control_.text())) line_->setText(Q(control_.text()));
      if (lines_ && ModelLines(lines_->toPlainText()) != control_.text()) {
        typing_guard_ = true;
        lines_->setPlainText(ShownLines(control_.text()));
        typing_guard_ = false;
      }
    }
    if (changes & change::kState) {
      if (line_) line_->setReadOnly(control_.locked());
      if (lines_) lines_->setReadOnly(control_.locked());
    }
    if (changes & change::kLook) ApplyColours(*box, control_, true);
    if (symbol_) {
      auto& money = static_cast<MoneyEdit&>(control_);
      symbol_->setText(Q(money.symbol));
      symbol_->setVisible(!money.symbol.empty());
    }
  }
  bool Stretches() const override { return lines_ != nullptr || ControlView::Stretches(); }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    Text shown = line_ ? FromQ(line_->text()) : ModelLines(lines_->toPlainText());
    Text model = control_.text();
    if (lines_) model = ModelLines(ShownLines(model));
    if (shown != model) Report(problems, ShowsOther(Q(shown), "text", control_.text()));
  }

 private:
  QLineEdit* line_ = nullptr;
  QPlainTextEdit* lines_ = nullptr;
  QLabel* symbol_ = nullptr;
  bool typing_guard_ = false;
};

// ---- Buttons, check boxes, option buttons

class ButtonView : public ControlView {
 public:
  ButtonView(Renderer& r, Control& c) : ControlView(r, c) {
    button_ = new QPushButton;
    button_->setAutoDefault(false);
    QObject::connect(button_, &QPushButton::clicked,
                     [this] { UserAction([this] { control_.UserClick(nullptr); }); });
    widget_ = button_;
    WatchInput(button_);
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (changes & change::kText) button_->setText(Literal(control_.caption()));
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (button_->text() != Literal(control_.caption()))
      Report(problems, ShowsOther(button_->text(), "caption", control_.caption()));
  }

 private:
  QPushButton* button_;
};

class CheckView : public ControlView {
 public:
  CheckView(Renderer& r, Control& c) : ControlView(r, c) {
    if (c.kind() == ControlKind::CheckBox) {
      auto* box = new QCheckBox;
      QObject::connect(box, &QCheckBox::clicked,
                       [this] { UserAction([this] { control_.UserClick(nullptr); }); });
      button_ = box;
    } else {
      auto* option = new QRadioButton;
      // The model keeps one option of a container selected; the widgets only show it.
      option->setAutoExclusive(false);
      QObject::connect(option, &QRadioButton::clicked,
                       [this] { UserAction([this] { control_.UserClick(nullptr); }); });
      button_ = option;
    }
    widget_ = button_;
    WatchInput(button_);
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (changes & change::kText) button_->setText(Literal(control_.caption()));
    if (changes & change::kLook) ApplyColours(*button_, control_, false);
    if (changes & change::kValue) {
      if (auto* box = qobject_cast<QCheckBox*>(button_)) {
        box->setTristate(control_.value() == 2);
        box->setCheckState(control_.value() == 1   ? Qt::Checked
                           : control_.value() == 2 ? Qt::PartiallyChecked
                                                   : Qt::Unchecked);
      } else {
        button_->setChecked(control_.value() != 0);
      }
    }
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (button_->text() != Literal(control_.caption()))
      Report(problems, ShowsOther(button_->text(), "caption", control_.caption()));
    bool on = control_.value() != 0;
    if (qobject_cast<QCheckBox*>(button_)) on = control_.value() == 1;
    if (button_->isChecked() != on) Report(problems, "shows the wrong value");
  }

 private:
  QAbstractButton* button_;
};

// ---- Lists

class ComboView : public ControlView {
 public:
  ComboView(Renderer& r, Control& c) : ControlView(r, c), list_(static_cast<ListControl&>(c)) {
    combo_ = new QComboBox;
    combo_->setEditable(c.kind() == ControlKind::ComboBox && list_.style == 0);
    combo_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo_->setMinimumContentsLength(8);
    QObject::connect(combo_, &QComboBox::activated, [this](int at) {
      Text item = FromQ(combo_->itemText(at));
      UserAction([this, item] { list_.UserClick(&item); });
    });
    if (QLineEdit* edit = combo_->lineEdit()) {
      QObject::connect(edit, &QLineEdit::textEdited, [this](const QString& text) {
        Text typed = FromQ(text);
        UserAction([this, typed] { list_.UserSet(typed); });
      });
      WatchInput(edit);
    }
    WatchInput(combo_);
    widget_ = combo_;
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    const QSignalBlocker quiet(combo_);
    if (changes & change::kItems) {
      combo_->clear();
      for (int i = 0; i < list_.ListCount(); ++i) combo_->addItem(Q(list_.List(i)));
    }
    if (changes & (change::kItems | change::kSelection | change::kText)) {
      combo_->setCurrentIndex(list_.list_index());
      if (combo_->isEditable()) {
        if (combo_->currentText() != Q(list_.text())) combo_->setEditText(Q(list_.text()));
      } else {
        // A bound list may hold a text it has no item for: it shows it all the same.
        combo_->setPlaceholderText(list_.list_index() < 0 ? Q(list_.text()) : QString());
      }
    }
    if (changes & change::kLook) ApplyColours(*combo_, control_, true);
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (combo_->count() != list_.ListCount()) {
      Report(problems, "shows " + std::to_string(combo_->count()) + " items, list has " +
                           std::to_string(list_.ListCount()));
      return;
    }
    for (int i = 0; i < list_.ListCount(); ++i)
      if (combo_->itemText(i) != Q(list_.List(i))) Report(problems, "item " + std::to_string(i) + " differs");
    QString shown = combo_->currentIndex() >= 0 || combo_->isEditable() ? combo_->currentText()
                                                                        : combo_->placeholderText();
    if (shown != Q(list_.text())) Report(problems, ShowsOther(shown, "text", list_.text()));
  }

 private:
  ListControl& list_;
  QComboBox* combo_;
};

class ListBoxView : public ControlView {
 public:
  ListBoxView(Renderer& r, Control& c) : ControlView(r, c), list_(static_cast<ListControl&>(c)) {
    box_ = new QListWidget;
    QObject::connect(box_, &QListWidget::itemClicked, [this](QListWidgetItem* item) {
      Text text = FromQ(item->text());
      UserAction([this, text] { list_.UserClick(&text); });
    });
    QObject::connect(box_, &QListWidget::itemDoubleClicked,
                     [this](QListWidgetItem*) { UserAction([this] { list_.UserDblClick(nullptr); }); });
    WatchInput(box_);
    widget_ = box_;
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    const QSignalBlocker quiet(box_);
    if (changes & change::kItems) {
      box_->clear();
      for (int i = 0; i < list_.ListCount(); ++i) box_->addItem(Q(list_.List(i)));
    }
    if (changes & (change::kItems | change::kSelection))
      for (int i = 0; i < list_.ListCount(); ++i) box_->item(i)->setSelected(list_.Selected(i));
    if (changes & change::kLook) ApplyColours(*box_, control_, true);
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (box_->count() != list_.ListCount()) Report(problems, "shows another number of items");
  }

 private:
  ListControl& list_;
  QListWidget* box_;
};

// ---- Frames: a group box with a caption, a plain area without one

class FrameView : public ControlView {
 public:
  FrameView(Renderer& r, Control& c) : ControlView(r, c) {
    box_ = new QGroupBox;
    widget_ = box_;
    WatchInput(box_);
    Sync(change::kAll);
  }
  QWidget* Host(int) const override { return box_; }
  bool Stretches() const override {
    if (ControlView::Stretches()) return true;
    // A frame holding something that takes the free space takes it too.
    for (const auto& c : control_.form().controls())
      if (c->container() == &control_)
        if (ControlView* v = renderer_.ViewOf(*c); v && v->Stretches()) return true;
    return false;
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (changes & change::kText) {
      // A frame without a caption is a plain area: no border, no room for a title. The rule names this
      // box alone, so that the frames inside keep their own look.
      const bool plain = control_.caption().empty();
      box_->setTitle(Literal(control_.caption()));
      box_->setFlat(plain);
      box_->setProperty("plain", plain);
      box_->setStyleSheet(plain ? QStringLiteral("QGroupBox[plain=\"true\"]{border:0;margin:0;padding:0}")
                                : QString());
    }
    if (changes & change::kLook) ApplyColours(*box_, control_, false);
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (box_->title() != Literal(control_.caption()))
      Report(problems, ShowsOther(box_->title(), "caption", control_.caption()));
  }

 private:
  QGroupBox* box_;
};

// ---- Pictures, meters, clocks

class PictureView : public ControlView {
 public:
  PictureView(Renderer& r, Control& c) : ControlView(r, c) {
    label_ = new QLabel;
    label_->setAlignment(Qt::AlignCenter);
    widget_ = label_;
    WatchInput(label_);
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (changes & change::kLook) ApplyColours(*label_, control_, false);
  }

 private:
  QLabel* label_;
};

class MeterView : public ControlView {
 public:
  MeterView(Renderer& r, Control& c) : ControlView(r, c) {
    bar_ = new QProgressBar;
    bar_->setRange(0, 100);
    bar_->setMaximumWidth(200);
    bar_->setTextVisible(false);
    widget_ = bar_;
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (changes & change::kValue) bar_->setValue(std::clamp(control_.value(), 0, 100));
  }

 private:
  QProgressBar* bar_;
};

// A clock shows the time of day moved by its hour and minute offsets, and ticks every second.
class ClockView : public ControlView {
 public:
  ClockView(Renderer& r, Control& c) : ControlView(r, c), clock_(static_cast<ClockControl&>(c)) {
    label_ = new QLabel;
    label_->setFrameShape(QFrame::StyledPanel);
    timer_ = new QTimer(label_);
    QObject::connect(timer_, &QTimer::timeout, [this] { Show(); });
    timer_->start(1000);
    widget_ = label_;
    WatchInput(label_);
    Sync(change::kAll);
  }
  ~ClockView() override {
    timer_->stop();
    timer_->disconnect();
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    Show();
  }

 private:
  void Show() {
    QTime t = QTime::currentTime().addSecs(clock_.hour_offset * 3600 + clock_.minute_offset * 60);
    label_->setText(t.toString(QStringLiteral("hh:mm:ss")));
  }
  ClockControl& clock_;
  QLabel* label_;
  QTimer* timer_;
};

// ---- Toolbars

class ToolbarView : public ControlView {
 public:
  ToolbarView(Renderer& r, Control& c) : ControlView(r, c), bar_(static_cast<Toolbar&>(c)) {
    tools_ = new QToolBar;
    tools_->setToolButtonStyle(Qt::ToolButtonTextOnly);
    tools_->setMovable(false);
    tools_->setFloatable(false);
    widget_ = tools_;
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (!(changes & change::kItems)) return;
    const Toolbar& bar = bar_;
    while (static_cast<int>(actions_.size()) < bar.ButtonCount()) {
      const int number = static_cast<int>(actions_.size()) + 1;
      QAction* a = tools_->addAction(QString());
      QObject::connect(a, &QAction::triggered, [this, number] {
        const Text n = FromUtf8(std::to_string(number));
        UserAction([this, n] { bar_.UserClick(&n); });
      });
      actions_.push_back(a);
    }
    for (size_t i = 0; i < actions_.size(); ++i) {
      QAction* a = actions_[i];
      if (static_cast<int>(i) >= bar.ButtonCount()) {
        a->setVisible(false);
        continue;
      }
      const Toolbar::Button& b = bar.button(static_cast<int>(i) + 1);
      a->setText(Literal(b.caption));
      a->setToolTip(Q(b.tooltip.empty() ? b.caption : b.tooltip));
      a->setVisible(b.visible);
      a->setEnabled(b.enabled);
      a->setCheckable(b.checked);
      a->setChecked(b.checked);
    }
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    const Toolbar& bar = bar_;
    for (int i = 1; i <= bar.ButtonCount(); ++i) {
      if (static_cast<int>(actions_.size()) < i) {
        Report(problems, "button " + std::to_string(i) + " has no widget");
        continue;
      }
      QAction* a = actions_[i - 1];
      if (a->text() != Literal(bar.button(i).caption))
        Report(problems, "button " + std::to_string(i) + " caption");
      if (a->isVisible() != bar.button(i).visible)
        Report(problems, "button " + std::to_string(i) + " visibility");
    }
  }

 private:
  Toolbar& bar_;
  QToolBar* tools_;
  std::vector<QAction*> actions_;
};

// ---- The list bar: a box per group, its commands in a list

class ListBarView : public ControlView {
 public:
  ListBarView(Renderer& r, Control& c) : ControlView(r, c), bar_(static_cast<ListBar&>(c)) {
    box_ = new QToolBox;
    box_->setMinimumWidth(190);
    QObject::connect(box_, &QToolBox::currentChanged, [this](int g) {
      // Opening a group is the user's only: the program is not told.
      if (!renderer_.syncing() && g >= 0 && g < bar_.GroupCount()) bar_.current_group = g;
    });
    widget_ = box_;
    Sync(change::kAll);
  }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    const ListBar& bar = bar_;
    if (changes & change::kItems) {
      const QSignalBlocker quiet(box_);
      while (box_->count() > 0) {
        // The list clicked may be the one going: it goes once its signal is over.
        QWidget* page = box_->widget(0);
        box_->removeItem(0);
        page->hide();
        page->deleteLater();
      }
      lists_.clear();
      for (int g = 0; g < bar.GroupCount(); ++g) {
        auto* list = new QListWidget;
        list->setContextMenuPolicy(Qt::CustomContextMenu);
        for (const ListBar::Item& item : bar.group(g).items) {
          auto* entry = new QListWidgetItem(Q(item.caption), list);
          entry->setToolTip(Q(item.tip));
          if (!item.enabled) entry->setFlags(entry->flags() & ~Qt::ItemIsEnabled);
        }
        QObject::connect(list, &QListWidget::itemClicked, [this, g, list](QListWidgetItem* item) {
          Text caption = FromQ(item->text());
          list->clearSelection();
          UserAction([this, g, caption] {
            bar_.current_group = g;
            bar_.UserClick(&caption);
          });
        });
        QObject::connect(list, &QListWidget::customContextMenuRequested, [this, g, list](const QPoint& at) {
          QListWidgetItem* item = list->itemAt(at);
          if (!item) return;
          Text caption = FromQ(item->text());
          UserAction([this, g, caption] {
            bar_.current_group = g;
            bar_.UserRightClick(&caption);
          });
        });
        box_->addItem(list, Q(bar.group(g).caption));
        lists_.push_back(list);
      }
    }
    if (changes & (change::kItems | change::kSelection)) {
      const QSignalBlocker quiet(box_);
      if (bar.current_group >= 0 && bar.current_group < box_->count())
        box_->setCurrentIndex(bar.current_group);
    }
    if (changes & (change::kItems | change::kLook))
      for (QListWidget* list : lists_) ApplyColours(*list, control_, true);
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    const ListBar& bar = bar_;
    if (box_->count() != bar.GroupCount()) {
      Report(problems, "shows another number of groups");
      return;
    }
    for (int g = 0; g < bar.GroupCount(); ++g) {
      if (box_->itemText(g) != Q(bar.group(g).caption))
        Report(problems, "group " + std::to_string(g) + " caption");
      const auto& items = bar.group(g).items;
      if (lists_[g]->count() != static_cast<int>(items.size())) {
        Report(problems, "group " + std::to_string(g) + " items");
        continue;
      }
      for (size_t i = 0; i < items.size(); ++i)
        if (lists_[g]->item(static_cast<int>(i))->text() != Q(items[i].caption))
          Report(problems, "group " + std::to_string(g) + " item " + std::to_string(i));
    }
  }

 private:
  ListBar& bar_;
  QToolBox* box_;
  std::vector<QListWidget*> lists_;
};

// ---- Tabbed pages: each page holds the controls on it

class TabView : public ControlView {
 public:
  TabView(Renderer& r, Control& c) : ControlView(r, c), strip_(static_cast<TabStrip&>(c)) {
    tabs_ = new QTabWidget;
    QObject::connect(tabs_, &QTabWidget::currentChanged, [this](int at) {
      if (renderer_.syncing() || at < 0 || at == strip_.tab()) return;
      UserAction([this, at] { strip_.UserTab(at); });
    });
    widget_ = tabs_;
    Sync(change::kAll);
  }
  QWidget* Host(int page) const override {
    return page >= 0 && page < static_cast<int>(pages_.size()) ? pages_[page] : nullptr;
  }
  bool Stretches() const override { return true; }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    const TabStrip& strip = strip_;
    if (changes & change::kItems) {
      while (static_cast<int>(pages_.size()) < strip.Tabs()) {
        // A page taller or wider than the window scrolls inside it rather than growing the window
        // past the screen; its content keeps its natural size, so every control stays reachable.
        auto* page = new QWidget;
        auto* area = new QScrollArea;
        area->setWidgetResizable(true);
        area->setFrameShape(QFrame::NoFrame);
        area->setWidget(page);
        tabs_->addTab(area, QString());
        pages_.push_back(page);
      }
      for (int i = 0; i < strip.Tabs(); ++i) {
        const TabStrip::Page& p = strip.page(i);
        tabs_->setTabText(i, Literal(p.caption));
        tabs_->setTabVisible(i, p.visible);
        tabs_->setTabEnabled(i, p.enabled);
      }
    }
    if ((changes & (change::kItems | change::kSelection)) && tabs_->currentIndex() != strip.tab())
      tabs_->setCurrentIndex(strip.tab());
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    const TabStrip& strip = strip_;
    for (int i = 0; i < strip.Tabs(); ++i) {
      if (i >= tabs_->count()) {
        Report(problems, "page " + std::to_string(i) + " has no tab");
        continue;
      }
      if (tabs_->tabText(i) != Literal(strip.page(i).caption))
        Report(problems, "page " + std::to_string(i) + " caption");
      if (tabs_->isTabVisible(i) != strip.page(i).visible)
        Report(problems, "page " + std::to_string(i) + " visibility");
    }
    if (tabs_->currentIndex() != strip.tab())
      Report(problems, "shows page " + std::to_string(tabs_->currentIndex()) + ", page is " +
                           std::to_string(strip.tab()));
  }

 private:
  TabStrip& strip_;
  QTabWidget* tabs_;
  std::vector<QWidget*> pages_;
};

// ---- The status bar: one label a panel, the first taking the room

class StatusView : public ControlView {
 public:
  StatusView(Renderer& r, Control& c) : ControlView(r, c), bar_(static_cast<StatusBar&>(c)) {
    status_ = new QStatusBar;
    status_->setSizeGripEnabled(false);
    widget_ = status_;
    Sync(change::kAll);
  }
  QStatusBar* status() const { return status_; }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    const StatusBar& bar = bar_;
    if (changes & change::kItems) {
      while (static_cast<int>(panels_.size()) < bar.Panels()) {
        const int number = static_cast<int>(panels_.size()) + 1;
        auto* panel = new PanelLabel([this, number] {
          const Text n = FromUtf8(std::to_string(number));
          UserAction([this, n] { bar_.UserClick(&n); });
        });
        panel->setTextFormat(Qt::PlainText);
        if (number == 1) {
          panel->setMinimumWidth(200);
          status_->addWidget(panel, 1);
        } else {
          panel->setMinimumWidth(140);
          status_->addPermanentWidget(panel);
        }
        panels_.push_back(panel);
      }
    }
    if (changes & (change::kItems | change::kText))
      for (int i = 0; i < bar.Panels() && i < static_cast<int>(panels_.size()); ++i)
        panels_[i]->setText(Q(bar.panel(i + 1)));
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    const StatusBar& bar = bar_;
    for (int i = 1; i <= bar.Panels(); ++i)
      if (i > static_cast<int>(panels_.size()) || panels_[i - 1]->text() != Q(bar.panel(i)))
        Report(problems, "panel " + std::to_string(i) + " differs");
  }

 private:
  class PanelLabel : public QLabel {
   public:
    explicit PanelLabel(std::function<void()> clicked) : clicked_(std::move(clicked)) {}

   protected:
    void mouseReleaseEvent(QMouseEvent* e) override {
      if (e->button() == Qt::LeftButton) clicked_();
    }

   private:
    std::function<void()> clicked_;
  };
  StatusBar& bar_;
  QStatusBar* status_;
  std::vector<QLabel*> panels_;
};

// ---- Trees

class TreeWidgetView : public ControlView {
 public:
  TreeWidgetView(Renderer& r, Control& c) : ControlView(r, c), tree_(static_cast<TreeView&>(c)) {
    widget_tree_ = new QTreeWidget;
    widget_tree_->setHeaderHidden(true);
    QObject::connect(widget_tree_, &QTreeWidget::itemClicked, [this](QTreeWidgetItem* item, int) {
      const int node = item->data(0, Qt::UserRole).toInt();
      UserAction([this, node] { tree_.UserClickNode(node); });
    });
    // The widget has opened or closed the item already; the model learns it without a notice back,
    // which would rebuild the items under the user's hand.
    auto expand = [this](QTreeWidgetItem* item, bool open) {
      if (renderer_.syncing()) return;
      const int node = item->data(0, Qt::UserRole).toInt();
      renderer_.desktop().Dispatch(
          [&] { renderer_.Quietly(control_, [&] { tree_.UserExpand(node, open); }); });
    };
    QObject::connect(widget_tree_, &QTreeWidget::itemExpanded,
                     [expand](QTreeWidgetItem* i) { expand(i, true); });
    QObject::connect(widget_tree_, &QTreeWidget::itemCollapsed,
                     [expand](QTreeWidgetItem* i) { expand(i, false); });
    KeepRowsInSight(*widget_tree_, widget_tree_->fontMetrics().height() + 6);
    widget_ = widget_tree_;
    WatchInput(widget_tree_);
    Sync(change::kAll);
  }
  bool Stretches() const override { return true; }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    const TreeView& tree = tree_;
    // While the model holds back painting, thousands of items may be coming: rebuild once it is back.
    widget_tree_->setUpdatesEnabled(tree.redraw());
    if ((changes & change::kItems) && tree.redraw() && built_revision_ != tree.revision()) Rebuild();
    if (changes & (change::kItems | change::kSelection)) {
      const QSignalBlocker quiet(widget_tree_);
      const int s = tree.current();
      widget_tree_->setCurrentItem(s >= 0 && s < static_cast<int>(items_.size()) ? items_[s] : nullptr);
    }
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    const TreeView& tree = tree_;
    if (static_cast<int>(items_.size()) != tree.NodeCount()) {
      Report(problems, "shows another number of items");
      return;
    }
    for (int i = 0; i < tree.NodeCount(); ++i) {
      const TreeView::Node& n = tree.node(i);
      const QTreeWidgetItem* parent = items_[i]->parent();
      const int shown_parent = parent ? parent->data(0, Qt::UserRole).toInt() : -1;
      if (items_[i]->text(0) != Q(n.text) || shown_parent != n.parent)
        Report(problems, "item " + std::to_string(i) + " differs");
    }
  }

 private:
  // Builds the items in the order the model shows siblings, each opened as the model has it.
  void Rebuild() {
    const TreeView& tree = tree_;
    const QSignalBlocker quiet(widget_tree_);
    widget_tree_->clear();
    items_.assign(tree.NodeCount(), nullptr);
    std::vector<std::pair<int, QTreeWidgetItem*>> pending;
    for (auto it = tree.Roots().rbegin(); it != tree.Roots().rend(); ++it) pending.emplace_back(*it, nullptr);
    QList<QTreeWidgetItem*> tops;
    while (!pending.empty()) {
      auto [at, parent] = pending.back();
      pending.pop_back();
      const TreeView::Node& n = tree.node(at);
      auto* item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem;
      if (!parent) tops.append(item);
      item->setText(0, Q(n.text));
      item->setData(0, Qt::UserRole, at);
      items_[at] = item;
      for (auto c = n.children.rbegin(); c != n.children.rend(); ++c) pending.emplace_back(*c, item);
    }
    widget_tree_->addTopLevelItems(tops);
    for (int i = 0; i < tree.NodeCount(); ++i)
      if (items_[i]) items_[i]->setExpanded(tree.node(i).expanded);
    built_revision_ = tree.revision();
  }
  TreeView& tree_;
  QTreeWidget* widget_tree_;
  std::vector<QTreeWidgetItem*> items_;
  uint64_t built_revision_ = ~uint64_t{0};
};

// ---- Menus: an action, with a menu of its own when it has entries

class MenuView : public ControlView {
 public:
  MenuView(Renderer& r, Control& c) : ControlView(r, c), menu_(static_cast<Menu&>(c)) {
    action_ = new QAction;
    QObject::connect(action_, &QAction::triggered,
                     [this] { renderer_.desktop().Dispatch([this] { menu_.UserClick(nullptr); }); });
    Sync(change::kAll);
  }
  ~MenuView() override {
    action_->disconnect();
    action_->deleteLater();
    if (submenu_) submenu_->deleteLater();
  }
  QAction* action() const override { return action_; }
  // The entries under this one are shown in a menu of its own, read afresh each time it opens.
  QMenu* Submenu() {
    if (!submenu_) {
      submenu_ = new QMenu;
      action_->setMenu(submenu_);
    }
    return submenu_;
  }
  void Sync(unsigned changes) override {
    if (changes & change::kText) action_->setText(Literal(menu_.caption()));
    if (changes & change::kState) {
      action_->setVisible(menu_.visible());
      action_->setEnabled(menu_.enabled());
    }
    action_->setCheckable(menu_.checked);
    action_->setChecked(menu_.checked);
  }
  void Check(std::vector<std::string>& problems) const override {
    if (action_->text() != Literal(menu_.caption()))
      Report(problems, ShowsOther(action_->text(), "caption", menu_.caption()));
    if (action_->isVisible() != menu_.visible()) Report(problems, "menu visibility differs");
  }

 private:
  Menu& menu_;
  QAction* action_;
  QPointer<QMenu> submenu_;
};

// ---- Web views: a place the web view is put into when first needed

class BrowserView : public ControlView {
 public:
  BrowserView(Renderer& r, Control& c) : ControlView(r, c) {
    auto* place = new QWidget;
    auto* box = new QVBoxLayout(place);
    box->setContentsMargins(0, 0, 0, 0);
    widget_ = place;
    renderer_.WebViewFor(static_cast<BrowserControl&>(c)).PutInto(place);
    Sync(change::kAll);
  }
  bool Stretches() const override { return true; }
};

}  // namespace

std::unique_ptr<ControlView> MakeControlView(Renderer& renderer, Control& control) {
  switch (control.kind()) {
    case ControlKind::Label:
      return std::make_unique<LabelView>(renderer, control);
    case ControlKind::TextBox:
    case ControlKind::DateEdit:
    case ControlKind::NumberEdit:
      return std::make_unique<TextView>(renderer, control);
    case ControlKind::Button:
      return std::make_unique<ButtonView>(renderer, control);
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
      return std::make_unique<CheckView>(renderer, control);
    case ControlKind::ComboBox:
      return std::make_unique<ComboView>(renderer, control);
    case ControlKind::ListBox:
      return std::make_unique<ListBoxView>(renderer, control);
    case ControlKind::Frame:
      return std::make_unique<FrameView>(renderer, control);
    case ControlKind::Picture:
      // A picture display draws its file; a bare picture box is an area of colour.
      if (auto* box = dynamic_cast<PictureBox*>(&control)) return MakePictureView(renderer, *box);
      return std::make_unique<PictureView>(renderer, control);
    case ControlKind::Meter:
      return std::make_unique<MeterView>(renderer, control);
    case ControlKind::Grid:
      return MakeGridView(renderer, control);
    case ControlKind::Menu:
      return std::make_unique<MenuView>(renderer, control);
    case ControlKind::Toolbar:
      return std::make_unique<ToolbarView>(renderer, control);
    case ControlKind::ListBar:
      return std::make_unique<ListBarView>(renderer, control);
    case ControlKind::TabStrip:
      return std::make_unique<TabView>(renderer, control);
    case ControlKind::StatusBar:
      return std::make_unique<StatusView>(renderer, control);
    case ControlKind::Clock:
      return std::make_unique<ClockView>(renderer, control);
    case ControlKind::TreeView:
      return std::make_unique<TreeWidgetView>(renderer, control);
    case ControlKind::WebBrowser:
      return std::make_unique<BrowserView>(renderer, control);
    case ControlKind::ReportViewer:
      return MakeReportView(renderer, control);
    case ControlKind::Timer:
    case ControlKind::DataControl:
      return nullptr;
  }
  return nullptr;
}

}  // namespace lw::desktop
