// The views of the controls that show a document rather than a value: the report viewer, which draws
// the laid-out pages of a report one at a time with buttons to turn them, and the picture display, which
// draws a picture file in the box's display mode.
#pragma once

#include <QImage>
#include <QRectF>
#include <QWidget>

#include <filesystem>
#include <map>
#include <memory>

#include "apps/desktop/views.h"
#include "screen/picture_box.h"
#include "screen/report_viewer.h"

namespace lw::desktop {

// One laid-out page as paper on a grey desk: items at their places, 15 twips to a pixel.
class ReportCanvas : public QWidget {
 public:
  // Blank paper round the page.
  static constexpr int kMargin = 8;

  // The page `number` (from 1) of a report; nothing for 0 or no report.
  void Show(std::shared_ptr<const ReportDocument> document, int number);
  const ReportDocument* document() const { return document_.get(); }
  int number() const { return number_; }
  // Where a box of the page (in twips) is drawn on the canvas.
  static QRectF Place(int left, int top, int width, int height);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const ReportPage* page() const;
  const QImage& Picture(const std::filesystem::path& file);

  std::shared_ptr<const ReportDocument> document_;
  int number_ = 0;
  // Pictures of the report on show, each read once.
  std::map<std::filesystem::path, QImage> pictures_;
};

std::unique_ptr<ControlView> MakeReportView(Renderer& renderer, Control& control);
std::unique_ptr<ControlView> MakePictureView(Renderer& renderer, PictureBox& control);

}  // namespace lw::desktop
