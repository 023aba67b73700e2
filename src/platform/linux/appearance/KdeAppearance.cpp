#include "platform/linux/appearance/KdeAppearance.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>
#include <utility>

#include "platform/linux/common/ConfigurationText.h"

namespace quillmere {
namespace {

/// "red,green,blue", with an opacity behind it or not.
std::optional<QColor> colorAt(std::string_view settings, const ConfigurationKey& key) {
  const QStringList parts =
      QString::fromStdString(configurationValue(settings, key).value_or("")).split(QLatin1Char(','));
  if (parts.size() < 3) return std::nullopt;
  int channels[3];
  for (int i = 0; i < 3; ++i) {
    bool isNumber = false;
    channels[i] = parts[i].toInt(&isNumber);
    if (!isNumber || channels[i] < 0 || channels[i] > 255) return std::nullopt;
  }
  return QColor(channels[0], channels[1], channels[2]);
}

}  // namespace

Appearance kdeAppearance(std::string_view settings) {
  constexpr int kHalf = 128;
  Appearance appearance;
  if (const auto window = colorAt(settings, {"Colors:Window", "BackgroundNormal"})) {
    appearance.scheme = window->lightness() < kHalf ? Appearance::Scheme::dark : Appearance::Scheme::light;
  }
  // Without an accent of the person's own it is what the colour scheme selects in.
  appearance.accent = colorAt(settings, {"General", "AccentColor"});
  if (!appearance.accent) appearance.accent = colorAt(settings, {"Colors:Selection", "BackgroundNormal"});
  bool isNumber = false;
  const auto factor = configurationValue(settings, {"KDE", "AnimationDurationFactor"});
  appearance.isMotionReduced = QByteArray::fromStdString(factor.value_or("")).toDouble(&isNumber) == 0 && isNumber;
  return appearance;
}

KdeAppearance::KdeAppearance(QString file, std::function<void(const Appearance&)> told)
    : file_(std::move(file)), told_(std::move(told)) {
  // The folder, since KDE replaces the file whole; and a folder alone says nothing of a file written in place.
  watcher_.addPath(QFileInfo(file_).path());
  QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_, [this] { read(); });
  QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, [this] { read(); });
  read();
}

void KdeAppearance::read() {
  if (watcher_.files().isEmpty() && QFileInfo::exists(file_)) watcher_.addPath(file_);
  QFile file(file_);
  if (!file.open(QIODevice::ReadOnly)) return;
  const QByteArray text = file.readAll();
  told_(kdeAppearance({text.constData(), static_cast<size_t>(text.size())}));
}

}  // namespace quillmere
