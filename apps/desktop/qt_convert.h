// The few conversions between the model's values and Qt's: text, colours, twips.
#pragma once

#include <QColor>
#include <QString>

#include "core/primitives/types.h"

namespace lw::desktop {

inline QString Q(const Text& text) {
  return QString::fromStdU16String(text);
}
inline Text FromQ(const QString& text) {
  return text.toStdU16String();
}

// The model keeps colours as 0x00BBGGRR.
inline QColor QColour(int32_t bgr) {
  return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}
inline int32_t Bgr(const QColor& c) {
  return c.red() | (c.green() << 8) | (c.blue() << 16);
}

// The model measures forms and columns in twips, 15 to a pixel on a screen of 96 dots an inch.
inline constexpr int kTwipsPerPixel = 15;
inline int Pixels(int twips) {
  return twips / kTwipsPerPixel;
}
inline int Twips(int pixels) {
  return pixels * kTwipsPerPixel;
}

// A caption for a Qt widget that takes '&' as the mark of a shortcut key: the model's '&' is a letter.
inline QString Literal(const Text& caption) {
  return Q(caption).replace(QLatin1Char('&'), QLatin1String("&&"));
}

// The model's multi-line texts end their lines with a carriage return and a line feed; a Qt text box
// shows and gives plain line feeds.
inline QString ShownLines(const Text& text) {
  return Q(text).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}
inline Text ModelLines(const QString& shown) {
  QString t = shown;
  t.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  t.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
  return FromQ(t);
}

}  // namespace lw::desktop
