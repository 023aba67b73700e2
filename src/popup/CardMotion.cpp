#include "popup/CardMotion.h"

#include <QtGui/QPainter>
#include <QtGui/QWindow>
#include <cmath>

namespace quillmere {
namespace {

/// Enough for the first frame to be seen.
constexpr qreal kFirstOpacity = 0.4;
constexpr const char* kPictureName = "fadingPicture";

/// A window that shows a picture and is nobody's: without keyboard, clicks or window manager.
class FadingPicture final : public QWidget {
 public:
  FadingPicture(QWidget& panel, const QPixmap& picture)
      : QWidget(&panel, Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint |
                            Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint),
        picture_(picture) {
    setObjectName(QLatin1String(kPictureName));
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    setGeometry(panel.geometry());
    fading_.setDuration(CardMotion::kMilliseconds);
    fading_.setStartValue(1.0);
    fading_.setEndValue(0.0);
    connect(&fading_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setWindowOpacity(value.toDouble()); });
    connect(&fading_, &QVariantAnimation::finished, this, &QWidget::close);
  }
  void begin() {
    show();
    fading_.start();
  }

 protected:
  void paintEvent(QPaintEvent*) override { QPainter(this).drawPixmap(0, 0, picture_); }

 private:
  QPixmap picture_;
  QVariantAnimation fading_;
};

}  // namespace

CardMotion::CardMotion(QWidget& panel, std::function<void()> layOut) : panel_(panel), layOut_(std::move(layOut)) {
  rise_.setDuration(kMilliseconds);
  rise_.setEasingCurve(QEasingCurve::OutCubic);
  rise_.setStartValue(0.0);
  rise_.setEndValue(1.0);
  QObject::connect(&rise_, &QVariantAnimation::valueChanged, &panel_, [this](const QVariant& value) {
    const qreal progress = value.toDouble();
    panel_.setWindowOpacity(kFirstOpacity + (1 - kFirstOpacity) * progress);
    if (const int offset = qRound(kRise * (1 - progress)); offset != offset_) {
      offset_ = offset;
      layOut_();
    }
  });
}

void CardMotion::begin() {
  rise_.stop();
  offset_ = kRise;
  panel_.setWindowOpacity(kFirstOpacity);
  layOut_();
  rise_.start();
}

void CardMotion::end() {
  rise_.stop();
  panel_.setWindowOpacity(1);
  if (std::exchange(offset_, 0) != 0) layOut_();
}

void CardMotion::dropPicture(const QWidget& panel) {
  const auto pictures = panel.findChildren<QWidget*>(QLatin1String(kPictureName), Qt::FindDirectChildrenOnly);
  for (QWidget* picture : pictures) {
    picture->setWindowOpacity(0);
    picture->close();
  }
}

void CardMotion::fadeAway(QWidget& panel) {
  const QPixmap picture = panel.grab();
  (new FadingPicture(panel, picture))->begin();
}

}  // namespace quillmere
