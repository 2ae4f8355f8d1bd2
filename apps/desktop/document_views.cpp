#include "apps/desktop/document_views.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>

#include "apps/desktop/qt_convert.h"
#include "apps/desktop/renderer.h"
#include "screen/picture_box.h"

namespace lw::desktop {

namespace {

double Px(int twips) {
  return static_cast<double>(twips) / kTwipsPerPixel;
}

QFont RunFont(const ReportFont& f) {
  QFont font(Q(f.name));
  font.setPointSizeF(f.size > 0 ? f.size : 8);
  font.setBold(f.bold);
  font.setItalic(f.italic);
  font.setUnderline(f.underline);
  return font;
}

Qt::Alignment RunAlign(ReportAlign align) {
  switch (align) {
    case ReportAlign::kCenter:
      return Qt::AlignHCenter;
    case ReportAlign::kRight:
      return Qt::AlignRight;
    case ReportAlign::kLeft:
      break;
  }
  return Qt::AlignLeft;
}

// A scroll area that says when its size changes, so that what it holds can be fitted again.
class FittingArea : public QScrollArea {
 public:
  std::function<void()> resized;

 protected:
  void resizeEvent(QResizeEvent* e) override {
    QScrollArea::resizeEvent(e);
    if (resized) resized();
  }
};

}  // namespace

// ---- The page of a report

void ReportCanvas::Show(std::shared_ptr<const ReportDocument> document, int number) {
  if (document != document_) pictures_.clear();
  document_ = std::move(document);
  number_ = document_ && number >= 1 && number <= static_cast<int>(document_->pages.size()) ? number : 0;
  updateGeometry();
  resize(sizeHint());
  update();
}

const ReportPage* ReportCanvas::page() const {
  return number_ > 0 ? &document_->pages[number_ - 1] : nullptr;
}

QRectF ReportCanvas::Place(int left, int top, int width, int height) {
  return QRectF(kMargin + Px(left), kMargin + Px(top), Px(width), Px(height));
}

QSize ReportCanvas::sizeHint() const {
  const ReportPage* p = page();
  if (!p) return QSize(2 * kMargin, 2 * kMargin);
  return QSize(2 * kMargin + Pixels(p->width) + 1, 2 * kMargin + Pixels(p->height) + 1);
}

const QImage& ReportCanvas::Picture(const std::filesystem::path& file) {
  auto it = pictures_.find(file);
  if (it == pictures_.end())
    it = pictures_.emplace(file, QImage(QString::fromStdString(file.string()))).first;
  return it->second;
}

void ReportCanvas::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(0x80, 0x80, 0x80));
  const ReportPage* p = page();
  if (!p) return;
  const QRectF paper = Place(0, 0, p->width, p->height);
  painter.fillRect(paper, Qt::white);
  painter.setPen(Qt::black);
  painter.drawRect(paper);
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setRenderHint(QPainter::TextAntialiasing, true);

  for (const ReportPicture& picture : p->pictures) {
    const QImage& image = Picture(picture.file);
    if (!image.isNull())
      painter.drawImage(Place(picture.left, picture.top, picture.width, picture.height), image);
  }
  for (const ReportRun& run : p->runs) {
    const QRectF box = Place(run.left, run.top, run.width, run.height);
    if (run.backcolor != kNoColour) painter.fillRect(box, QColour(run.backcolor));
    const QColor fore = QColour(run.forecolor);
    if (run.check_box) {
      // A square as high as the line, at the left of the box; a cross in it when checked.
      const double side = std::max(6.0, std::min({box.width(), box.height(), 13.0}));
      const QRectF square(box.left() + 1, box.center().y() - side / 2, side, side);
      painter.setPen(QPen(fore, 1));
      painter.setBrush(Qt::NoBrush);
      painter.drawRect(square);
      if (run.checked) {
        const QRectF in = square.adjusted(2, 2, -2, -2);
        painter.drawLine(in.topLeft(), in.bottomRight());
        painter.drawLine(in.topRight(), in.bottomLeft());
      }
      continue;
    }
    painter.setFont(RunFont(document_->font(run)));
    painter.setPen(fore);
    painter.drawText(box, static_cast<int>(RunAlign(run.align) | Qt::AlignVCenter | Qt::TextSingleLine),
                     Q(run.text));
  }
  for (const ReportRule& rule : p->rules) {
    painter.setPen(QPen(QColour(rule.colour), std::max(1.0, Px(rule.weight)), Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(QPointF(ReportCanvas::kMargin + Px(rule.x1), ReportCanvas::kMargin + Px(rule.y1)),
                     QPointF(ReportCanvas::kMargin + Px(rule.x2), ReportCanvas::kMargin + Px(rule.y2)));
  }
}

namespace {

// ---- The report viewer: the page on show, with buttons to turn pages and to print

class ReportView : public ControlView {
 public:
  ReportView(Renderer& r, Control& c) : ControlView(r, c), viewer_(static_cast<ReportViewer&>(c)) {
    auto* whole = new QWidget;
    auto* column = new QVBoxLayout(whole);
    column->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QHBoxLayout;
    auto button = [&](const char* caption, std::function<int()> target) {
      auto* b = new QPushButton(caption);
      b->setAutoDefault(false);
      QObject::connect(b, &QPushButton::clicked, [this, target] {
        const Text number = FromQ(QString::number(target()));
        UserAction([this, number] { viewer_.UserClick(&number); });
      });
      bar->addWidget(b);
      return b;
    };
    first_ = button("First", [] { return 1; });
    previous_ = button("Previous", [this] { return viewer_.current_page() - 1; });
    where_ = new QLabel;
    where_->setObjectName("page_of");
    where_->setAlignment(Qt::AlignCenter);
    where_->setMinimumWidth(110);
    bar->addWidget(where_);
    next_ = button("Next", [this] { return viewer_.current_page() + 1; });
    last_ = button("Last", [this] { return viewer_.PageCount(); });
    bar->addStretch(1);
    print_ = new QPushButton("Print");
    print_->setAutoDefault(false);
    QObject::connect(print_, &QPushButton::clicked, [this] {
      const Text print = u"print";
      UserAction([this, print] { viewer_.UserClick(&print); });
    });
    bar->addWidget(print_);
    column->addLayout(bar);

    area_ = new QScrollArea;
    area_->setBackgroundRole(QPalette::Dark);
    canvas_ = new ReportCanvas;
    canvas_->setObjectName("page");
    area_->setWidget(canvas_);
    area_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    column->addWidget(area_, 1);
    widget_ = whole;
    Sync(change::kAll);
  }
  bool Stretches() const override { return true; }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (!(changes & (change::kItems | change::kSelection))) return;
    const bool new_report = canvas_->document() != viewer_.document().get();
    canvas_->Show(viewer_.document(), viewer_.current_page());
    if (new_report) area_->verticalScrollBar()->setValue(0);
    const int at = viewer_.current_page(), count = viewer_.PageCount();
    where_->setText(PageOf(at, count));
    first_->setEnabled(at > 1);
    previous_->setEnabled(at > 1);
    next_->setEnabled(at < count);
    last_->setEnabled(at < count);
    print_->setEnabled(count > 0);
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (canvas_->document() != viewer_.document().get()) Report(problems, "shows another report");
    if (canvas_->number() != viewer_.current_page())
      Report(problems, "shows page " + std::to_string(canvas_->number()) + ", the page on show is " +
                           std::to_string(viewer_.current_page()));
    if (where_->text() != PageOf(viewer_.current_page(), viewer_.PageCount()))
      Report(problems, "says " + where_->text().toStdString());
  }

 private:
  static QString PageOf(int at, int count) {
    return count == 0 ? QString() : QString("Page %1 of %2").arg(at).arg(count);
  }

  ReportViewer& viewer_;
  QScrollArea* area_;
  ReportCanvas* canvas_;
  QLabel* where_;
  QPushButton *first_, *previous_, *next_, *last_, *print_;
};

// ---- The picture display: the file drawn in the box's display mode

class PictureFileView : public ControlView {
 public:
  PictureFileView(Renderer& r, PictureBox& c) : ControlView(r, c), box_(c) {
    auto* area = new FittingArea;
    area->setAlignment(Qt::AlignCenter);
    area->setFrameShape(QFrame::NoFrame);
    area->setMinimumSize(160, 120);
    shown_ = new QLabel;
    shown_->setObjectName("picture");
    shown_->setAlignment(Qt::AlignCenter);
    area->setWidget(shown_);
    area->resized = [this] { Fit(); };
    area_ = area;
    widget_ = area;
    // The picture takes no clicks of its own: they reach the area round it, watched once.
    WatchInput(area->viewport());
    Sync(change::kAll);
  }
  bool Stretches() const override { return true; }
  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (changes & change::kLook) ApplyColours(*area_->viewport(), control_, false);
    if (changes & change::kText) {
      image_ = box_.loaded() ? QImage(QString::fromStdString(box_.details().path.string())) : QImage();
      file_ = box_.file_name();
    }
    if (changes & (change::kText | change::kValue)) Fit();
  }
  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (file_ != box_.file_name()) Report(problems, "shows another file");
    const bool drawn = !shown_->pixmap().isNull();
    if (drawn != (box_.loaded() && !image_.isNull()))
      Report(problems, drawn ? "shows a picture in an empty box" : "shows no picture");
    if (drawn && mode_ != box_.display_mode()) Report(problems, "shows another display mode");
  }

 private:
  // Scales the picture to the box as the display mode says.
  void Fit() {
    mode_ = box_.display_mode();
    if (image_.isNull()) {
      shown_->setPixmap(QPixmap());
      shown_->resize(0, 0);
      return;
    }
    const QSize room = area_->maximumViewportSize();
    QImage fitted = image_;
    if (mode_ == PictureBox::kBestFit)
      fitted = image_.scaled(room.expandedTo(QSize(1, 1)), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    else if (mode_ == PictureBox::kFitToWidth) {
      // A picture taller than the box scrolls: the scroll bar takes its width from the room.
      int width = std::max(1, room.width());
      if (static_cast<qint64>(image_.height()) * width > static_cast<qint64>(room.height()) * image_.width())
        width = std::max(1, width - area_->verticalScrollBar()->sizeHint().width());
      fitted = image_.scaledToWidth(width, Qt::SmoothTransformation);
    }
    shown_->setPixmap(QPixmap::fromImage(fitted));
    shown_->resize(fitted.size());
  }

  PictureBox& box_;
  QScrollArea* area_;
  QLabel* shown_;
  QImage image_;
  Text file_;
  int mode_ = 0;
};

}  // namespace

std::unique_ptr<ControlView> MakeReportView(Renderer& renderer, Control& control) {
  return std::make_unique<ReportView>(renderer, control);
}

std::unique_ptr<ControlView> MakePictureView(Renderer& renderer, PictureBox& control) {
  return std::make_unique<PictureFileView>(renderer, control);
}

}  // namespace lw::desktop
