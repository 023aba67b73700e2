#include "platform/linux/appearance/XSettings.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QtEndian>

#include "platform/linux/appearance/GnomeAppearance.h"

namespace quillmere {
namespace {

/// Reads on while there is something; afterwards everything is zero or empty.
class Reader {
 public:
  explicit Reader(const QByteArray& bytes) : rest_(bytes) {
    isBigEndian_ = number<quint8>() == 1;
    skip(3);
  }
  bool isAtEnd() const { return isAtEnd_; }

  template <typename Number>
  Number number() {
    const QByteArrayView bytes = take(sizeof(Number));
    if (isAtEnd_) return 0;
    return isBigEndian_ ? qFromBigEndian<Number>(bytes.data()) : qFromLittleEndian<Number>(bytes.data());
  }
  /// Filled up to a multiple of four.
  QString text(size_t length) {
    const QByteArrayView bytes = take(length);
    skip((4 - length % 4) % 4);
    return QString::fromUtf8(bytes);
  }
  void skip(size_t count) { take(count); }

 private:
  QByteArrayView take(size_t count) {
    isAtEnd_ = isAtEnd_ || count > static_cast<size_t>(rest_.size());
    if (isAtEnd_) return {};
    const QByteArrayView taken = rest_.first(static_cast<qsizetype>(count));
    rest_ = rest_.sliced(taken.size());
    return taken;
  }

  QByteArrayView rest_;
  bool isBigEndian_ = false;
  bool isAtEnd_ = false;
};

QVariant valueOf(Reader& reader, quint8 type) {
  constexpr size_t kColor = 8;
  switch (type) {
    case 0:
      return reader.number<qint32>();
    case 1:
      return reader.text(reader.number<quint32>());
    default:
      reader.skip(kColor);
      return {};
  }
}

}  // namespace

QMap<QString, QVariant> parsedXSettings(const QByteArray& property) {
  constexpr quint8 kColorType = 2;
  QMap<QString, QVariant> settings;
  Reader reader(property);
  reader.number<quint32>();  // serial number of the whole
  for (auto count = reader.number<quint32>(); count > 0 && !reader.isAtEnd(); --count) {
    const auto type = reader.number<quint8>();
    if (type > kColorType) break;  // its length is not known
    reader.skip(1);
    const QString name = reader.text(reader.number<quint16>());
    reader.number<quint32>();  // serial number of its last change
    const QVariant value = valueOf(reader, type);
    if (!reader.isAtEnd() && value.isValid()) settings.insert(name, value);
  }
  return settings;
}

Appearance appearanceOf(const QMap<QString, QVariant>& xSettings) {
  static const QRegularExpression kDark(QStringLiteral("-dark(-|$)"), QRegularExpression::CaseInsensitiveOption);
  const QString theme = xSettings.value(QStringLiteral("Net/ThemeName")).toString();
  Appearance appearance;
  appearance.isHighContrast =
      theme.startsWith(QLatin1String("HighContrast")) || theme.startsWith(QLatin1String("ContrastHigh"));
  const bool isInverse = appearance.isHighContrast && theme.endsWith(QLatin1String("Inverse"));
  // A theme that is not called dark may be so all the same, and tells nothing.
  if (isInverse || kDark.match(theme).hasMatch()) appearance.scheme = Appearance::Scheme::dark;
  appearance.isMotionReduced = xSettings.value(QStringLiteral("Gtk/EnableAnimations"), 1).toInt() == 0;
  appearance.font = fontOf(xSettings.value(QStringLiteral("Gtk/FontName")).toString());
  return appearance;
}

}  // namespace quillmere
