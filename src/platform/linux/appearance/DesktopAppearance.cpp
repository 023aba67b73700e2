#include "platform/linux/appearance/DesktopAppearance.h"

#include <QtCore/QStandardPaths>
#include <optional>
#include <utility>

namespace quillmere {

AppearanceSources AppearanceSources::live() {
  AppearanceSources sources;
  const auto desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'));
  if (desktops.contains(QLatin1String("KDE"), Qt::CaseInsensitive)) {
    sources.kdeSettings =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/kdeglobals");
  }
  return sources;
}

DesktopAppearance::DesktopAppearance(Executor& executor, AppearanceSources sources,
                                     std::function<void(const Appearance&)> told)
    : told_(std::move(told)) {
  const auto into = [this](Appearance& place) {
    return [this, &place](const Appearance& appearance) {
      place = appearance;
      tell();
    };
  };
  // One desktop's settings may still be there from the days before another.
  if (sources.kdeSettings.isEmpty()) {
    gnome_ = std::make_unique<GnomeAppearance>(into(settingsTell_));
  } else {
    kde_ = std::make_unique<KdeAppearance>(sources.kdeSettings, into(settingsTell_));
  }
  xSettings_ = std::make_unique<XSettingsAppearance>(into(xSettingsTell_));
  isComplete_ = true;
  tell();

  // Connecting waits for the bus; so not on the main thread.
  auto connection = std::make_shared<std::optional<QDBusConnection>>();
  executor.runInBackground([connection, bus = std::move(sources.sessionBus)] { connection->emplace(bus()); },
                           [connection, self = lifetime_.weak(this), heard = into(portalTells_)] {
                             if (self) self->portal_ = std::make_unique<PortalAppearance>(**connection, heard);
                           });
}

void DesktopAppearance::tell() const {
  // The settings of the running X session come before files, which may be another desktop's.
  if (isComplete_) told_(merged(portalTells_, merged(xSettingsTell_, settingsTell_)));
}

}  // namespace quillmere
