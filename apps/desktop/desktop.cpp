#include "apps/desktop/desktop.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileDialog>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineView>

#include <chrono>

#include "apps/desktop/cookie_bridge.h"
#include "apps/desktop/qt_convert.h"
#include "apps/desktop/renderer.h"
#include "apps/desktop/web_view.h"
#include "core/primitives/encoding.h"
#include "platform/http_session.h"
#include "screen/main/main_form.h"

namespace lw::desktop {

namespace {

QMessageBox::StandardButton StandardButton(MsgAnswer a) {
  switch (a) {
    case MsgAnswer::OK:
      return QMessageBox::Ok;
    case MsgAnswer::Cancel:
      return QMessageBox::Cancel;
    case MsgAnswer::Abort:
      return QMessageBox::Abort;
    case MsgAnswer::Retry:
      return QMessageBox::Retry;
    case MsgAnswer::Ignore:
      return QMessageBox::Ignore;
    case MsgAnswer::Yes:
      return QMessageBox::Yes;
    case MsgAnswer::No:
      return QMessageBox::No;
  }
  return QMessageBox::Ok;
}

QMessageBox::Icon BoxIcon(MsgIcon icon) {
  switch (icon) {
    case MsgIcon::Critical:
      return QMessageBox::Critical;
    case MsgIcon::Question:
      return QMessageBox::Question;
    case MsgIcon::Exclamation:
      return QMessageBox::Warning;
    case MsgIcon::Information:
      return QMessageBox::Information;
    case MsgIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

// "Description|pattern|Description|pattern" as a file dialog's filters; a description without its
// pattern stands for itself.
QStringList Filters(const Text& filter) {
  QStringList parts = Q(filter).split(QLatin1Char('|'));
  QStringList out;
  for (qsizetype i = 0; i < parts.size(); i += 2) {
    const QString desc = parts[i];
    const QString pattern = i + 1 < parts.size() ? parts[i + 1] : desc;
    QString patterns = pattern;
    patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
    out << desc + QStringLiteral(" (") + patterns + QLatin1Char(')');
  }
  return out;
}

// Progress shown in the middle of long work comes at most this often.
constexpr int kRepaintEveryMs = 100;

}  // namespace

Desktop::Desktop(DesktopOptions options) {
  // No storage name: the web views keep their cookies and cache in memory, as the program's fetches do.
  profile_ = std::make_unique<QWebEngineProfile>();
  std::filesystem::path settings =
      options.settings_file.empty() ? Settings::DefaultPath() : options.settings_file;
  assembly_ = std::make_unique<Assembly>(*this, settings, options.files);
  Program& p = program();
  if (options.database) p.startup.command_line_store = *options.database;
  p.http_session = std::make_shared<HttpSession>();
  cookies_ = std::make_unique<CookieBridge>(*p.http_session, *profile_->cookieStore());

  renderer_ = std::make_unique<Renderer>(*this, p.screen);
  p.screen.SetObserver(renderer_.get());
  renderer_->fonts_follow_window = [&p] { return p.main_screen.fontsizing; };
  // Every web view of the screen is the desktop's, shown or not yet.
  for (Form* f : p.screen.forms())
    for (const auto& c : f->controls())
      if (auto* browser = dynamic_cast<BrowserControl*>(c.get()))
        browser->navigator = [this](BrowserControl& b, const Text& url) {
          renderer_->WebViewFor(b).Navigate(url);
        };

  timer_ = std::make_unique<QTimer>();
  timer_->setSingleShot(true);
  QObject::connect(timer_.get(), &QTimer::timeout, timer_.get(), [this] { DeliverEvents(); });
  // A transport's worker thread wakes the GUI thread, which delivers its event to the model.
  assembly_->queue().SetWakeup([this] {
    if (delivery_posted_.exchange(true)) return;
    QMetaObject::invokeMethod(
        timer_.get(),
        [this] {
          delivery_posted_ = false;
          DeliverEvents();
        },
        Qt::QueuedConnection);
  });
  repaint_clock_.start();
}

Desktop::~Desktop() {
  assembly_->queue().SetWakeup(nullptr);
  timer_->stop();
  program().screen.SetObserver(nullptr);
  cookies_.reset();
  renderer_.reset();
  delete help_window_.data();
  // The program (its forms, its transports) goes before the web profile the pages used.
  assembly_.reset();
}

HttpSession& Desktop::http_session() {
  return *program().http_session;
}

int Desktop::Run() {
  Start();
  return Loop();
}

void Desktop::Start() {
  Dispatch([this] { assembly_->Start(); });
}

int Desktop::Loop() {
  while (!ended_) {
    QEventLoop loop;
    waits_.push_back({&loop, nullptr});
    loop.exec();
    waits_.pop_back();
  }
  return exit_code_;
}

void Desktop::Dispatch(const std::function<void()>& call) {
  if (ended_) return;
  if (repainting_) {
    // Long work is showing its progress: what the user did waits until that work is done.
    deferred_.push_back(call);
    return;
  }
  if (dispatch_depth_ == 0) busy_since_.start();
  ++dispatch_depth_;
  try {
    call();
  } catch (const ProcessEnd& end) {
    End(end.code);
  } catch (const UserError&) {
    // What the user could not do (a disabled control, a locked box) changes nothing.
  } catch (const RuntimeError& e) {
    ShowError("Run-time error '" + std::to_string(e.number()) + "':\n\n" + e.description());
  } catch (const std::exception& e) {
    ShowError(e.what());
  }
  --dispatch_depth_;
  if (ended_) {
    for (auto& [loop, done] : waits_) loop->quit();
    return;
  }
  renderer_->Flush();
  for (auto& [loop, done] : waits_)
    if (done && done()) loop->quit();
  if (dispatch_depth_ == 0 && !deferred_.empty()) {
    auto later = std::move(deferred_);
    deferred_.clear();
    for (const auto& c : later) Dispatch(c);
  }
}

void Desktop::ShowError(const std::string& what) {
  // An error no handler of the program took: the user hears of it and the program goes on.
  QMessageBox box(QMessageBox::Critical, QStringLiteral("Lotwright"), QString::fromStdString(what),
                  QMessageBox::Ok, DialogParent());
  box.setTextFormat(Qt::PlainText);
  dialogs_.push_back(&box);
  box.exec();
  dialogs_.pop_back();
}

void Desktop::End(int code) {
  if (ended_) return;
  ended_ = true;
  exit_code_ = code;
  for (auto& d : dialogs_)
    if (d) d->close();
  for (auto& [loop, done] : waits_) loop->quit();
  renderer_->CloseAll();
}

void Desktop::ThrowIfEnded() const {
  if (ended_) throw ProcessEnd{exit_code_};
}

void Desktop::Wait(const std::function<bool()>& done) {
  while (!ended_ && !done()) {
    QEventLoop loop;
    waits_.push_back({&loop, done});
    loop.exec();
    waits_.pop_back();
  }
  ThrowIfEnded();
}

void Desktop::DeliverEvents() {
  if (ended_) return;
  EventQueue& queue = assembly_->queue();
  Dispatch([&queue] { queue.DeliverPending(); });
  if (ended_) return;
  // What a handler posted, or what a failing handler left, comes at the next turn of the loop.
  if (queue.Queued() > 0 && !delivery_posted_.exchange(true))
    QMetaObject::invokeMethod(
        timer_.get(),
        [this] {
          delivery_posted_ = false;
          DeliverEvents();
        },
        Qt::QueuedConnection);
  ArmTimer();
}

void Desktop::ArmTimer() {
  auto next = assembly_->queue().NextTimerDue();
  if (!next) {
    timer_->stop();
    return;
  }
  auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(*next - std::chrono::steady_clock::now());
  timer_->start(static_cast<int>(std::max<long long>(0, wait.count())));
}

void Desktop::ShowProgress(QWidget& widget) {
  // Only in the middle of long work, and not too often: the window paints what it shows, and the user's
  // input waits for the work to end.
  if (dispatch_depth_ == 0 || repainting_ || busy_since_.elapsed() < kRepaintEveryMs ||
      repaint_clock_.elapsed() < kRepaintEveryMs)
    return;
  repaint_clock_.restart();
  repainting_ = true;
  renderer_->Flush();
  widget.repaint();
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  repainting_ = false;
}

void Desktop::Beep() {
  QApplication::beep();
}

void Desktop::DoEvents() {
  if (ended_) return;
  renderer_->Flush();
  QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
  ThrowIfEnded();
}

QWidget* Desktop::DialogParent() const {
  Screen& s = assembly_->program().screen;
  if (Form* top = s.TopModal())
    if (QWidget* w = renderer_->WindowOf(*top)) return w;
  return renderer_->MainWindow();
}

// ---- Ui

MsgAnswer Desktop::MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon icon) {
  ThrowIfEnded();
  renderer_->Flush();
  QMessageBox box(DialogParent());
  box.setWindowTitle(Q(title));
  box.setTextFormat(Qt::PlainText);
  box.setText(ShownLines(text));
  box.setIcon(BoxIcon(icon));
  const std::vector<MsgAnswer> offered = ButtonsOf(buttons);
  std::vector<std::pair<QPushButton*, MsgAnswer>> answers;
  for (MsgAnswer a : offered) answers.emplace_back(box.addButton(StandardButton(a)), a);
  box.setDefaultButton(answers.front().first);
  for (auto [button, answer] : answers)
    if (answer == MsgAnswer::Cancel || (offered.size() == 1)) box.setEscapeButton(button);
  dialogs_.push_back(&box);
  box.exec();
  dialogs_.pop_back();
  ThrowIfEnded();
  for (auto [button, answer] : answers)
    if (box.clickedButton() == static_cast<QAbstractButton*>(button)) return answer;
  // Closed without a button: the box's default answer.
  return offered.front();
}

std::optional<FileDialogAnswer> Desktop::ShowOpen(const FileDialogRequest& request) {
  ThrowIfEnded();
  renderer_->Flush();
  QFileDialog dialog(DialogParent(), Q(request.title), Q(request.initial_dir));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  const QStringList filters = Filters(request.filter);
  if (!filters.isEmpty()) {
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(filters.value(std::max(0, request.filter_index - 1)));
  }
  if (!request.file_name.empty()) dialog.selectFile(Q(request.file_name));
  dialogs_.push_back(&dialog);
  const int result = dialog.exec();
  dialogs_.pop_back();
  ThrowIfEnded();
  if (result != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return FileDialogAnswer{dialog.selectedFiles().front().toStdString(),
                          static_cast<int>(filters.indexOf(dialog.selectedNameFilter())) + 1};
}

std::optional<FileDialogAnswer> Desktop::ShowSave(const FileDialogRequest& request) {
  ThrowIfEnded();
  renderer_->Flush();
  QFileDialog dialog(DialogParent(), Q(request.title), Q(request.initial_dir));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  const QStringList filters = Filters(request.filter);
  if (!filters.isEmpty()) {
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(filters.value(std::max(0, request.filter_index - 1)));
  }
  if (!request.default_ext.empty()) dialog.setDefaultSuffix(Q(request.default_ext));
  if (!request.file_name.empty()) dialog.selectFile(Q(request.file_name));
  dialogs_.push_back(&dialog);
  const int result = dialog.exec();
  dialogs_.pop_back();
  ThrowIfEnded();
  if (result != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return FileDialogAnswer{dialog.selectedFiles().front().toStdString(),
                          static_cast<int>(filters.indexOf(dialog.selectedNameFilter())) + 1};
}

std::optional<Colour> Desktop::ChooseColour(Colour initial) {
  ThrowIfEnded();
  renderer_->Flush();
  QColorDialog dialog(QColour(initial), DialogParent());
  dialogs_.push_back(&dialog);
  const int result = dialog.exec();
  dialogs_.pop_back();
  ThrowIfEnded();
  if (result != QDialog::Accepted) return std::nullopt;
  return Bgr(dialog.selectedColor());
}

void Desktop::SetWaitCursor(bool on) {
  if (on) {
    if (wait_cursor_++ == 0) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else if (wait_cursor_ > 0) {
    if (--wait_cursor_ == 0) QGuiApplication::restoreOverrideCursor();
  }
}

void Desktop::ShowModal(Form& form) {
  ThrowIfEnded();
  renderer_->Flush();
  renderer_->ShowModal(form);
  Wait([&form] { return !form.loaded() || !form.visible(); });
}

void Desktop::PopupMenu(Form&, Menu& menu) {
  ThrowIfEnded();
  renderer_->Flush();
  renderer_->PopupMenu(menu);
  menu.popped_up = false;
  ThrowIfEnded();
}

void Desktop::SetClipboardText(const Text& text) {
  QGuiApplication::clipboard()->setText(Q(text));
}

void Desktop::ClearClipboard() {
  QGuiApplication::clipboard()->clear();
}

Text Desktop::ClipboardText() {
  return FromQ(QGuiApplication::clipboard()->text());
}

void Desktop::OpenHelp(const std::filesystem::path& file, int) {
  // The help set is pages of its own, read in a window of the program.
  if (!help_window_) {
    auto* window = new QWidget;
    window->setWindowTitle(QStringLiteral("Lotwright Help"));
    window->resize(760, 560);
    auto* box = new QVBoxLayout(window);
    box->setContentsMargins(0, 0, 0, 0);
    auto* view = new QWebEngineView(window);
    view->setPage(new QWebEnginePage(profile_.get(), view));
    view->setObjectName(QStringLiteral("help_view"));
    box->addWidget(view);
    help_window_ = window;
  }
  if (auto* view = help_window_->findChild<QWebEngineView*>(QStringLiteral("help_view")))
    view->load(QUrl::fromLocalFile(QString::fromStdString(file.string())));
  help_window_->show();
  help_window_->raise();
}

void Desktop::OpenAddress(const Text& address) {
  QDesktopServices::openUrl(QUrl::fromUserInput(Q(address)));
}

void Desktop::StartProgram(const std::filesystem::path& program, const std::vector<Text>& arguments) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(program, ec))
    throw RuntimeError(err::kFileNotFound, "File not found: " + program.string());
  QStringList args;
  for (const Text& a : arguments) args << Q(a);
  if (!QProcess::startDetached(QString::fromStdString(program.string()), args))
    throw RuntimeError(err::kFileNotFound, "Cannot start " + program.string());
}

void Desktop::EndProcess(int code) {
  throw ProcessEnd{code};
}

}  // namespace lw::desktop
