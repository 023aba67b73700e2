#include "inbox/ShowOriginalButton.h"

#include <QtGui/QPainter>
#include <QtGui/QTextLayout>
#include <QtWidgets/QStyle>
#include <algorithm>

#include "controls/ButtonLook.h"
#include "controls/Metrics.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSymbol = Metrics::kSmallSymbol;
constexpr int kGap = 7;
/// Stands for the name while the sentence is put together: no name and no language has it.
constexpr QChar kMark(0xfdd2);

/// The name as one run of text, whatever its letters, and without line breaks.
QString isolated(QString name) {
  for (QChar& character : name) {
    const bool isControl = character.category() == QChar::Other_Control || character.category() == QChar::Other_Format;
    if (isControl || character == QChar::LineSeparator || character == QChar::ParagraphSeparator) {
      character = QLatin1Char(' ');
    }
  }
  return name;
}

}  // namespace

ShowOriginalButton::ShowOriginalButton(QWidget* parent) : QPushButton(parent) {
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  setAutoDefault(false);
  setCursor(Qt::PointingHandCursor);
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  setToolTip(localized("Select the screenshot this one was cropped from"));
}

void ShowOriginalButton::setOriginal(const QString& name) {
  const QString shown = isolated(name);
  const QString sentence = localized("Cropped from “%@”.", {QString(kMark)});
  nameStart_ = std::max<qsizetype>(0, sentence.indexOf(kMark));
  nameLength_ = shown.size();
  sentence_ = QString(sentence).replace(kMark, shown);
  setAccessibleName(localized("Cropped from “%@”.", {name}));
  updateGeometry();
  update();
}

std::unique_ptr<QTextLayout> ShowOriginalButton::laidOut(int width) const {
  auto layout = std::make_unique<QTextLayout>(sentence_, font());
  QTextOption option;
  option.setTextDirection(layoutDirection());
  option.setAlignment(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft));
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout->setTextOption(option);
  QTextLayout::FormatRange name{static_cast<int>(nameStart_), static_cast<int>(nameLength_), {}};
  name.format.setForeground(Theme(palette()).text);
  name.format.setFontUnderline(true);
  layout->setFormats({name});
  const int room = std::max(1, width - kSymbol - kGap);
  qreal y = 0;
  layout->beginLayout();
  for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
    line.setLineWidth(room);
    line.setPosition(QPointF(0, y));
    y += line.height();
  }
  layout->endLayout();
  return layout;
}

QSize ShowOriginalButton::sizeHint() const {
  const int width = kSymbol + kGap + fontMetrics().horizontalAdvance(sentence_) + 1;
  return {width, heightForWidth(width)};
}

QSize ShowOriginalButton::minimumSizeHint() const {
  constexpr int kLeast = 120;
  return {std::min(kLeast, sizeHint().width()), std::max(kSymbol, fontMetrics().height())};
}

int ShowOriginalButton::heightForWidth(int width) const {
  const auto layout = laidOut(width);
  return std::max(kSymbol, qCeil(layout->boundingRect().height()));
}

void ShowOriginalButton::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const int lineHeight = fontMetrics().height();
  const QColor ink = isDown() || underMouse() ? theme.text : theme.secondaryText;
  const QRect symbol(0, std::max(0, (lineHeight - kSymbol) / 2), kSymbol, kSymbol);
  painter.drawPixmap(QStyle::visualRect(layoutDirection(), rect(), symbol).topLeft(),
                     symbolPixmap(QStringLiteral("crop"), kSymbol, ink, devicePixelRatioF()));
  const QRect text = QStyle::visualRect(layoutDirection(), rect(), rect().adjusted(kSymbol + kGap, 0, 0, 0));
  painter.setPen(ink);
  const auto layout = laidOut(width());
  layout->draw(&painter, text.topLeft());
  if (!hasFocus()) return;
  qreal widest = 0;
  for (int i = 0; i < layout->lineCount(); ++i) widest = std::max(widest, layout->lineAt(i).naturalTextWidth());
  const QRect around(0, 0, std::min(width(), kSymbol + kGap + qCeil(widest) + 4), height());
  paintFocusRing(painter, QStyle::visualRect(layoutDirection(), rect(), around), Radius::kMark, theme.focusRing);
}

}  // namespace quillmere
