#include "apps/desktop/renderer.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QDialog>
#include <QFont>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "apps/desktop/desktop.h"
#include "apps/desktop/qt_convert.h"
#include "apps/desktop/views.h"
#include "apps/desktop/web_view.h"
#include "core/primitives/encoding.h"

namespace lw::desktop {

namespace {

// The window of a form tells the renderer of the user closing it and of its new size and place.
struct WindowEvents {
  std::function<void()> close;
  std::function<void()> geometry;
};

class MainFormWindow : public QMainWindow {
 public:
  explicit MainFormWindow(WindowEvents events) : events_(std::move(events)) {}

 protected:
  void closeEvent(QCloseEvent* e) override {
    // The form decides whether it goes: its unload runs the exit routine.
    e->ignore();
    events_.close();
  }
  void resizeEvent(QResizeEvent* e) override {
    QMainWindow::resizeEvent(e);
    events_.geometry();
  }
  void moveEvent(QMoveEvent* e) override {
    QMainWindow::moveEvent(e);
    events_.geometry();
  }
  void changeEvent(QEvent* e) override {
    QMainWindow::changeEvent(e);
    if (e->type() == QEvent::WindowStateChange) events_.geometry();
  }

 private:
  WindowEvents events_;
};

class FormDialog : public QDialog {
 public:
  explicit FormDialog(WindowEvents events) : events_(std::move(events)) {}
  // Escape does not close a form: only its own buttons or the window's close box do.
  void reject() override {}

 protected:
  void closeEvent(QCloseEvent* e) override {
    e->ignore();
    events_.close();
  }
  void resizeEvent(QResizeEvent* e) override {
    QDialog::resizeEvent(e);
    events_.geometry();
  }
  void moveEvent(QMoveEvent* e) override {
    QDialog::moveEvent(e);
    events_.geometry();
  }

 private:
  WindowEvents events_;
};

bool HasWidget(ControlKind kind) {
  return kind != ControlKind::Timer && kind != ControlKind::DataControl && kind != ControlKind::Menu;
}

// Kinds laid out in the grid of fields, a label in front of each.
bool IsField(ControlKind kind) {
  switch (kind) {
    case ControlKind::Toolbar:
    case ControlKind::Frame:
    case ControlKind::Button:
    case ControlKind::StatusBar:
    case ControlKind::Menu:
    case ControlKind::Timer:
    case ControlKind::DataControl:
      return false;
    default:
      return true;
  }
}

// Kinds that name themselves and need no label in front.
bool SpansLabel(ControlKind kind) {
  return kind == ControlKind::CheckBox || kind == ControlKind::OptionButton || kind == ControlKind::Label;
}

QWidget* Plain() {
  auto* w = new QWidget;
  w->setAttribute(Qt::WA_NoSystemBackground);
  return w;
}

}  // namespace

struct Renderer::Window {
  Form* form = nullptr;
  QPointer<QWidget> top;
  QMainWindow* main = nullptr;
  QPointer<QWidget> body;  // everything the layout made: rebuilt whole when the layout changes
  Control* focus = nullptr;
  bool needs_layout = false;
  bool geometry_applied = false;
  bool applying_geometry = false;
  QSize first_size;  // the size the window had when it was first shown: fonts at their size there
};

Renderer::Renderer(Desktop& desktop, Screen& screen) : desktop_(desktop), screen_(screen) {
  QObject::connect(qApp, &QApplication::focusChanged, &context_, [this](QWidget*, QWidget* now) {
    if (now) OnFocusChanged(now);
  });
}

Renderer::~Renderer() {
  // Views first, so that nothing reaches a widget being deleted; then the windows and the web views.
  views_.clear();
  controls_.clear();
  for (auto& [form, window] : windows_) delete window->top.data();
  windows_.clear();
  web_views_.clear();
}

Renderer::Window* Renderer::WindowFor(const Form& form) const {
  auto it = windows_.find(&form);
  return it == windows_.end() ? nullptr : it->second.get();
}

QWidget* Renderer::WindowOf(const Form& form) const {
  Window* w = WindowFor(form);
  return w ? w->top.data() : nullptr;
}

QWidget* Renderer::MainWindow() const {
  return screen_.main_form ? WindowOf(*screen_.main_form) : nullptr;
}

ControlView* Renderer::ViewOf(const Control& control) const {
  auto it = views_.find(&control);
  return it == views_.end() ? nullptr : it->second.get();
}

QWidget* Renderer::WidgetOf(const Control& control) const {
  ControlView* v = ViewOf(control);
  return v ? v->widget() : nullptr;
}

QAction* Renderer::ActionOf(const Control& control) const {
  ControlView* v = ViewOf(control);
  return v ? v->action() : nullptr;
}

Control* Renderer::ControlOf(const QWidget* widget) const {
  for (const QWidget* w = widget; w; w = w->parentWidget()) {
    auto it = controls_.find(w);
    if (it != controls_.end()) return it->second;
  }
  return nullptr;
}

void Renderer::Quietly(const Control& control, const std::function<void()>& change) {
  const Control* was = quiet_;
  quiet_ = &control;
  change();
  quiet_ = was;
}

// ---- Notices

void Renderer::ControlChanged(Control& control, unsigned changes) {
  if (&control == quiet_ || !ViewOf(control)) return;
  auto it = dirty_index_.find(&control);
  if (it != dirty_index_.end()) {
    dirty_[it->second].second |= changes;
  } else {
    dirty_index_[&control] = dirty_.size();
    dirty_.emplace_back(&control, changes);
  }
  if (changes & change::kPlace)
    if (Window* w = WindowFor(control.form())) w->needs_layout = true;
  // The status bar and the meter show the progress of long work as it goes.
  if (control.kind() == ControlKind::StatusBar || control.kind() == ControlKind::Meter)
    if (QWidget* widget = WidgetOf(control)) desktop_.ShowProgress(*widget);
  if (!flush_posted_) {
    // Changes made outside a call from a widget (none should be) still show.
    flush_posted_ = true;
    QTimer::singleShot(0, &context_, [this] {
      flush_posted_ = false;
      Flush();
    });
  }
}

void Renderer::ControlAdded(Control& control) {
  Window* w = WindowFor(control.form());
  if (!w) return;
  MakeView(*w, control);
  w->needs_layout = true;
}

void Renderer::ControlRemoved(Control& control) {
  if (auto it = dirty_index_.find(&control); it != dirty_index_.end()) {
    dirty_[it->second].first = nullptr;
    dirty_index_.erase(it);
  }
  auto it = views_.find(&control);
  if (it == views_.end()) return;
  if (QWidget* w = it->second->widget()) controls_.erase(w);
  views_.erase(it);
}

void Renderer::FormChanged(Form& form) {
  const bool shown = form.loaded() && form.visible();
  Window* w = WindowFor(form);
  if (!shown) {
    if (w && w->top) w->top->hide();
    return;
  }
  Build(form);
  w = WindowFor(form);
  SyncWindow(*w);
  if (!w->top->isVisible()) {
    w->top->show();
    if (w->main && w->first_size.isEmpty()) w->first_size = w->top->size();
    w->top->raise();
    w->top->activateWindow();
  }
}

// ---- Building

QWidget* Renderer::Build(Form& form) {
  if (Window* existing = WindowFor(form)) return existing->top;
  auto window = std::make_unique<Window>();
  Window& w = *window;
  w.form = &form;
  windows_[&form] = std::move(window);
  WindowEvents events{[this, &form] { desktop_.Dispatch([&form] { form.Unload(); }); },
                      [this, &w] {
                        if (w.applying_geometry || !w.top || !w.geometry_applied) return;
                        Form& f = *w.form;
                        const QRect r = w.top->geometry();
                        const int state = w.top->isMinimized() ? 1 : w.top->isMaximized() ? 2 : 0;
                        f.window_state = state;
                        if (state == 0) {
                          f.left = Twips(r.x());
                          f.top = Twips(r.y());
                          f.width = Twips(r.width());
                          f.height = Twips(r.height());
                        }
                        if (w.main) FollowWindowSize(w);
                        if (f.OnResize) desktop_.Dispatch([&f] { f.OnResize(); });
                      }};
  if (&form == screen_.main_form) {
    auto* main = new MainFormWindow(events);
    w.main = main;
    w.top = main;
  } else {
    auto* dialog = new FormDialog(events);
    dialog->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    // A dialog belongs to the main window, so it stands over it.
    if (QWidget* owner = MainWindow()) dialog->setParent(owner, dialog->windowFlags() | Qt::Dialog);
    w.top = dialog;
  }
  w.top->setObjectName(Q(form.name()));
  MakeViews(w);
  Layout(w);
  ApplyGeometry(w);
  SyncWindow(w);
  return w.top;
}

void Renderer::BuildAll() {
  for (Form* f : screen_.forms()) Build(*f);
}

void Renderer::MakeViews(Window& window) {
  for (const auto& c : window.form->controls()) MakeView(window, *c);
}

ControlView* Renderer::MakeView(Window& window, Control& control) {
  if (ControlView* existing = ViewOf(control)) return existing;
  if (auto* browser = dynamic_cast<BrowserControl*>(&control)) {
    // The program's addresses go to the web view of this control.
    browser->navigator = [this](BrowserControl& b, const Text& url) { WebViewFor(b).Navigate(url); };
  }
  ++syncing_;
  std::unique_ptr<ControlView> view = MakeControlView(*this, control);
  --syncing_;
  if (!view) return nullptr;
  ControlView* v = view.get();
  if (v->widget()) controls_[v->widget()] = &control;
  views_[&control] = std::move(view);
  (void)window;
  return v;
}

void Renderer::ApplyGeometry(Window& w) {
  Form& f = *w.form;
  w.applying_geometry = true;
  QSize wanted(std::max(Pixels(f.width), 200), std::max(Pixels(f.height), 120));
  if (!w.main) {
    // A dialog the model gives no size of its own is as big as its fields need.
    if (f.width == Form::kDefaultWidth && f.height == Form::kDefaultHeight)
      wanted = w.top->sizeHint().expandedTo(QSize(420, 0));
    wanted = wanted.expandedTo(w.top->sizeHint());
  }
  w.top->resize(wanted);
  if (w.main) {
    w.top->move(Pixels(f.left), Pixels(f.top));
    if (f.window_state == 2) w.top->setWindowState(Qt::WindowMaximized);
  }
  w.applying_geometry = false;
  w.geometry_applied = true;
}

void Renderer::SyncWindow(Window& w) {
  if (!w.top) return;
  const QString title = Q(w.form->caption);
  if (w.top->windowTitle() != title) w.top->setWindowTitle(title);
  // The focus follows the model's active control when code moved it.
  Control* active = w.form->active_control();
  if (active != w.focus) {
    w.focus = active;
    if (QWidget* widget = active ? WidgetOf(*active) : nullptr)
      if (widget->isVisible() && !widget->hasFocus()) widget->setFocus(Qt::OtherFocusReason);
  }
}

double Renderer::FontScale(const Form& form) const {
  return &form == screen_.main_form ? font_scale_ : 1.0;
}

void Renderer::FollowWindowSize(Window& w) {
  double scale = 1;
  if (fonts_follow_window && fonts_follow_window() && !w.first_size.isEmpty() && !w.top->isMinimized()) {
    const QSize now = w.top->size();
    scale = std::min(static_cast<double>(now.width()) / w.first_size.width(),
                     static_cast<double>(now.height()) / w.first_size.height());
    // Within reason: text stays readable in a small window and fits a wide one.
    scale = std::clamp(scale, 0.6, 2.5);
  }
  if (std::abs(scale - font_scale_) < 0.02) return;
  font_scale_ = scale;
  QFont font = QApplication::font();
  font.setPointSizeF(font.pointSizeF() * scale);
  w.top->setFont(font);
  ++syncing_;
  for (const auto& c : w.form->controls())
    if (ControlView* v = ViewOf(*c)) v->Sync(change::kLook);
  --syncing_;
}

// ---- Layout

void Renderer::Layout(Window& w) {
  ++syncing_;
  // The widgets of the controls leave the old arrangement, which then goes whole.
  for (const auto& c : w.form->controls())
    if (QWidget* widget = WidgetOf(*c)) widget->setParent(nullptr);
  delete w.body.data();
  QWidget* body = Plain();
  w.body = body;

  // What docks at the edges of the window, and the status bar.
  std::vector<Control*> left;
  std::vector<Control*> bottom;
  ControlView* status = nullptr;
  for (const auto& c : w.form->controls()) {
    if (c->container() || !WidgetOf(*c)) continue;
    if (c->kind() == ControlKind::StatusBar && !status) {
      status = ViewOf(*c);
    } else if (c->layout.dock == LayoutHint::Dock::Left &&
               !(c->kind() == ControlKind::Label && c->layout.field)) {
      left.push_back(c.get());
    } else if (c->layout.dock == LayoutHint::Dock::Bottom) {
      bottom.push_back(c.get());
    }
  }

  QWidget* centre = body;
  if (!left.empty()) {
    centre = Plain();
    auto* row = new QHBoxLayout(centre);
    row->setContentsMargins(4, 4, 4, 4);
    auto* side = Plain();
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    bool stretched = false;
    for (Control* c : left) {
      for (const auto& l : w.form->controls())
        if (l->kind() == ControlKind::Label && l->layout.field == c)
          if (QWidget* label = WidgetOf(*l)) column->addWidget(label);
      const bool stretch = ViewOf(*c)->Stretches();
      column->addWidget(WidgetOf(*c), stretch ? 1 : 0);
      stretched = stretched || stretch;
    }
    if (!stretched) column->addStretch(1);
    side->setMaximumWidth(230);
    row->addWidget(side);
    row->addWidget(body, 1);
  }
  LayoutContainer(w, body, nullptr, 0, true);

  if (w.main) {
    w.main->setCentralWidget(centre);
    // Menus along the top: each top-level menu with its entries.
    QMenuBar* bar = w.main->menuBar();
    bar->clear();
    for (const auto& c : w.form->controls()) {
      auto* m = dynamic_cast<Menu*>(c.get());
      if (!m || !ViewOf(*m)) continue;
      if (!m->parent()) bar->addAction(ActionOf(*m));
    }
    if (status) {
      auto* s = static_cast<QStatusBar*>(status->widget());
      w.main->setStatusBar(s);
      for (Control* c : bottom) s->addPermanentWidget(WidgetOf(*c));
    } else if (!bottom.empty()) {
      auto* foot = new QHBoxLayout;
      for (Control* c : bottom) foot->addWidget(WidgetOf(*c));
      static_cast<QBoxLayout*>(body->layout())->addLayout(foot);
    }
  } else {
    auto* whole = w.top->layout() ? static_cast<QVBoxLayout*>(w.top->layout()) : new QVBoxLayout(w.top);
    while (whole->count() > 0) delete whole->takeAt(0);
    whole->setContentsMargins(6, 6, 6, 6);
    whole->addWidget(centre, 1);
    for (Control* c : bottom) whole->addWidget(WidgetOf(*c));
    if (status) whole->addWidget(status->widget());
  }
  // Each menu's entries, read afresh as it opens.
  for (const auto& c : w.form->controls()) {
    auto* m = dynamic_cast<Menu*>(c.get());
    if (!m || !m->parent() || !ViewOf(*m) || !ViewOf(*m->parent())) continue;
    QAction* parent = ActionOf(*m->parent());
    if (!parent->menu()) {
      auto* menu = new QMenu;
      parent->setMenu(menu);
      Menu* owner = m->parent();
      QObject::connect(menu, &QMenu::aboutToShow, menu, [this, owner] {
        for (const auto& entry : owner->form().controls())
          if (auto* e = dynamic_cast<Menu*>(entry.get()); e && e->parent() == owner)
            if (ControlView* v = ViewOf(*e)) v->Sync(change::kAll);
      });
    }
    parent->menu()->addAction(ActionOf(*m));
  }
  // The widgets' own visibility is the model's, wherever they now stand.
  for (const auto& c : w.form->controls())
    if (ControlView* v = ViewOf(*c); v && v->widget()) v->Sync(change::kState);
  --syncing_;
  w.needs_layout = false;
}

void Renderer::LayoutContainer(Window& w, QWidget* host, Control* container, int page, bool top) {
  Form& form = *w.form;
  const bool on_tabs = container && container->kind() == ControlKind::TabStrip;
  std::vector<Control*> mine;
  std::unordered_map<const Control*, Control*> label_for;
  std::unordered_map<const Control*, std::vector<Control*>> sharing;
  for (const auto& c : form.controls()) {
    if (c->kind() == ControlKind::Label && c->layout.field && WidgetOf(*c->layout.field) &&
        !label_for.count(c->layout.field))
      label_for[c->layout.field] = c.get();
    if (c->layout.same_place_as && WidgetOf(*c->layout.same_place_as))
      sharing[c->layout.same_place_as].push_back(c.get());
  }
  for (const auto& c : form.controls()) {
    if (c->container() != container || !WidgetOf(*c)) continue;
    if (on_tabs && c->layout.page != page) continue;
    if (top && (c->layout.dock != LayoutHint::Dock::None || c->kind() == ControlKind::StatusBar)) continue;
    if (c->kind() == ControlKind::Label && c->layout.field && label_for[c->layout.field] == c.get()) continue;
    if (c->layout.same_place_as && WidgetOf(*c->layout.same_place_as)) continue;
    mine.push_back(c.get());
  }

  auto* column = new QVBoxLayout(host);
  column->setContentsMargins(container ? 6 : 0, container ? 6 : 0, container ? 6 : 0, container ? 6 : 0);
  // One place: the control and those shown in its place, side by side.
  auto place = [&](Control* c) -> QWidget* {
    auto it = sharing.find(c);
    if (it == sharing.end()) return WidgetOf(*c);
    QWidget* cell = Plain();
    auto* row = new QHBoxLayout(cell);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(WidgetOf(*c), 1);
    for (Control* other : it->second) row->addWidget(WidgetOf(*other), 1);
    return cell;
  };
  auto label_of = [&](Control* c) -> QWidget* {
    auto it = label_for.find(c);
    return it == label_for.end() ? nullptr : WidgetOf(*it->second);
  };

  std::vector<Control*> toolbars, fields, frames, stretchers, buttons;
  for (Control* c : mine) {
    ControlView* v = ViewOf(*c);
    if (c->kind() == ControlKind::Toolbar)
      toolbars.push_back(c);
    else if (v->Stretches())
      stretchers.push_back(c);
    else if (c->kind() == ControlKind::Frame)
      frames.push_back(c);
    else if (c->kind() == ControlKind::Button)
      buttons.push_back(c);
    else if (IsField(c->kind()))
      fields.push_back(c);
  }

  for (Control* c : toolbars) column->addWidget(place(c));
  if (!fields.empty()) {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(8);
    const int pairs = std::max(1, container ? container->layout.columns : 1);
    for (size_t k = 0; k < fields.size(); ++k) {
      Control* c = fields[k];
      const int row = static_cast<int>(k) / pairs;
      const int col = 2 * (static_cast<int>(k) % pairs);
      QWidget* label = label_of(c);
      if (label) {
        grid->addWidget(label, row, col, Qt::AlignLeft | Qt::AlignVCenter);
        grid->addWidget(place(c), row, col + 1);
      } else if (SpansLabel(c->kind())) {
        grid->addWidget(place(c), row, col, 1, 2);
      } else {
        grid->addWidget(place(c), row, col + 1);
      }
    }
    for (int p = 0; p < pairs; ++p) grid->setColumnStretch(2 * p + 1, 1);
    column->addLayout(grid);
  }
  if (!frames.empty()) {
    auto* grid = new QGridLayout;
    const int across = std::max(1, container ? container->layout.frame_columns : 1);
    for (size_t k = 0; k < frames.size(); ++k)
      grid->addWidget(place(frames[k]), static_cast<int>(k) / across, static_cast<int>(k) % across,
                      Qt::AlignTop);
    for (int a = 0; a < across; ++a) grid->setColumnStretch(a, 1);
    column->addLayout(grid);
  }
  for (Control* c : stretchers) {
    if (QWidget* label = label_of(c)) column->addWidget(label);
    column->addWidget(place(c), 1);
  }
  if (stretchers.empty()) column->addStretch(1);
  if (!buttons.empty()) {
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (Control* c : buttons) row->addWidget(place(c));
    column->addLayout(row);
  }

  // What the controls here hold: a frame's box, each page of a tab strip.
  for (Control* c : mine) {
    ControlView* v = ViewOf(*c);
    if (c->kind() == ControlKind::TabStrip) {
      const auto& strip = static_cast<const TabStrip&>(*c);
      for (int p = 0; p < strip.Tabs(); ++p)
        if (QWidget* page_host = v->Host(p)) {
          delete page_host->layout();
          LayoutContainer(w, page_host, c, p, false);
        }
    } else if (QWidget* inner = v->Host(0)) {
      delete inner->layout();
      LayoutContainer(w, inner, c, 0, false);
    }
  }
}

void Renderer::Relayout(Form& form) {
  if (Window* w = WindowFor(form)) Layout(*w);
}

// ---- Bringing widgets up to date

void Renderer::Flush() {
  // A view's sync may change the model in turn (a widget settling): a few rounds, then it waits.
  for (int round = 0; round < 4 && !dirty_.empty(); ++round) {
    auto dirty = std::move(dirty_);
    dirty_.clear();
    dirty_index_.clear();
    for (auto& [form, window] : windows_)
      if (window->needs_layout) Layout(*window);
    ++syncing_;
    for (auto [control, changes] : dirty)
      if (control)
        if (ControlView* v = ViewOf(*control)) v->Sync(changes);
    --syncing_;
  }
  for (auto& [form, window] : windows_) {
    if (window->needs_layout) Layout(*window);
    SyncWindow(*window);
  }
}

void Renderer::ShowModal(Form& form) {
  QWidget* top = Build(form);
  Window* w = WindowFor(form);
  SyncWindow(*w);
  if (top->windowModality() != Qt::ApplicationModal) {
    top->hide();
    top->setWindowModality(Qt::ApplicationModal);
  }
  top->show();
  top->raise();
  top->activateWindow();
}

void Renderer::CloseAll() {
  for (auto& [form, window] : windows_)
    if (window->top) window->top->hide();
}

void Renderer::OnFocusChanged(QWidget* now) {
  Control* c = ControlOf(now);
  if (!c || syncing_) return;
  Form& form = c->form();
  if (form.active_control() == c) return;
  if (Window* w = WindowFor(form)) w->focus = c;
  desktop_.Dispatch([&form, c] { form.SetFocus(c); });
}

// ---- Popup menus

namespace {

void FillPopup(Renderer& r, QMenu& into, Menu& menu) {
  for (const auto& c : menu.form().controls()) {
    auto* entry = dynamic_cast<Menu*>(c.get());
    if (!entry || entry->parent() != &menu || !entry->visible()) continue;
    bool has_entries = false;
    for (const auto& d : menu.form().controls())
      if (auto* m = dynamic_cast<Menu*>(d.get()); m && m->parent() == entry) has_entries = true;
    if (has_entries) {
      QMenu* sub = into.addMenu(Literal(entry->caption()));
      sub->setEnabled(entry->enabled());
      FillPopup(r, *sub, *entry);
      continue;
    }
    QAction* a = into.addAction(Literal(entry->caption()));
    a->setEnabled(entry->enabled());
    a->setCheckable(entry->checked);
    a->setChecked(entry->checked);
    QObject::connect(a, &QAction::triggered,
                     [&r, entry] { r.desktop().Dispatch([entry] { entry->UserClick(nullptr); }); });
  }
}

}  // namespace

void Renderer::PopupMenu(Menu& menu) {
  QMenu popup(MainWindow());
  FillPopup(*this, popup, menu);
  if (!popup.isEmpty()) popup.exec(QCursor::pos());
}

// ---- Web views

WebView& Renderer::WebViewFor(BrowserControl& browser) {
  auto it = web_views_.find(&browser);
  if (it != web_views_.end()) return *it->second;
  auto view = std::make_unique<WebView>(desktop_, browser, desktop_.web_profile());
  WebView& ref = *view;
  web_views_[&browser] = std::move(view);
  return ref;
}

// ---- The check

std::vector<std::string> Renderer::Check() const {
  std::vector<std::string> problems;
  for (const auto& [form, window] : windows_) {
    if (!window->top) {
      problems.push_back(ToUtf8(form->name()) + ": the window is gone");
      continue;
    }
    if (window->top->windowTitle() != Q(form->caption))
      problems.push_back(ToUtf8(form->name()) + ": window title differs from the caption");
    for (const auto& c : form->controls()) {
      const std::string ref = ToUtf8(form->name()) + "." + ToUtf8(c->Reference());
      if (c->kind() == ControlKind::Timer || c->kind() == ControlKind::DataControl) continue;
      ControlView* v = ViewOf(*c);
      if (!v) {
        problems.push_back(ref + ": a " + KindName(c->kind()) + " without a widget");
        continue;
      }
      if (HasWidget(c->kind()) && v->widget() && v->widget()->window() != window->top.data())
        problems.push_back(ref + ": its widget is not on the form's window");
      v->Check(problems);
    }
  }
  return problems;
}

}  // namespace lw::desktop
