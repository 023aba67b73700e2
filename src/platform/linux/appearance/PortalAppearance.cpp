#include "platform/linux/appearance/PortalAppearance.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <utility>

namespace quillmere {
namespace {

const QString kName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");

const QString kAppearance = QStringLiteral("org.freedesktop.appearance");
// What portals older than those keys pass on of GNOME's own settings; to a sandbox by no other way.
const QString kGnome = QStringLiteral("org.gnome.desktop.interface");
const QString kGnomeAccessibility = QStringLiteral("org.gnome.desktop.a11y.interface");

/// Portals differ in how often they wrap a value.
QVariant unwrapped(QVariant value) {
  while (value.metaType() == QMetaType::fromType<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value;
}

Appearance::Scheme schemeOf(const QVariant& value) {
  switch (value.toUInt()) {
    case 1:
      return Appearance::Scheme::dark;
    case 2:
      return Appearance::Scheme::light;
    default:
      return Appearance::Scheme::unknown;
  }
}

/// Red, green and blue from 0 to 1; anything else says that none is set.
std::optional<QColor> accentOf(const QVariant& value) {
  if (value.metaType() != QMetaType::fromType<QDBusArgument>()) return std::nullopt;
  const auto argument = value.value<QDBusArgument>();
  if (argument.currentSignature() != QLatin1String("(ddd)")) return std::nullopt;
  double red = 0;
  double green = 0;
  double blue = 0;
  argument.beginStructure();
  argument >> red >> green >> blue;
  argument.endStructure();
  for (const double channel : {red, green, blue}) {
    if (!(channel >= 0 && channel <= 1)) return std::nullopt;  // and so no NaN
  }
  return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue)).toRgb();
}

}  // namespace

Appearance appearanceOf(const PortalSettings& settings) {
  const QVariantMap own = settings.value(kAppearance);
  const QVariantMap gnome = settings.value(kGnome);
  Appearance appearance;
  appearance.scheme = schemeOf(own.value(QStringLiteral("color-scheme")));
  appearance.accent = accentOf(own.value(QStringLiteral("accent-color")));
  appearance.isHighContrast = own.value(QStringLiteral("contrast")).toUInt() == 1 ||
                              settings.value(kGnomeAccessibility).value(QStringLiteral("high-contrast")).toBool();
  appearance.isMotionReduced = own.value(QStringLiteral("reduced-motion")).toUInt() == 1 ||
                               !gnome.value(QStringLiteral("enable-animations"), true).toBool();
  return appearance;
}

PortalAppearance::PortalAppearance(const QDBusConnection& bus, std::function<void(const Appearance&)> told)
    : told_(std::move(told)), portal_(bus, kName, {[this](BusService& portal) { follow(portal); }, [] {}}) {
  QDBusMessage start =
      QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                     QStringLiteral("org.freedesktop.DBus"), QStringLiteral("StartServiceByName"));
  start << kName << 0U;
  QDBusConnection(bus).send(start);
}

void PortalAppearance::follow(BusService& portal) {
  portal.hear(kPath, kInterface, QStringLiteral("SettingChanged"), [this](const QVariantList& arguments) {
    const QString space = arguments.value(0).toString();
    if (space != kAppearance && space != kGnome && space != kGnomeAccessibility) return;
    settings_[space][arguments.value(1).toString()] = unwrapped(arguments.value(2));
    tell();
  });
  const QStringList wanted{kAppearance, kGnome, kGnomeAccessibility};
  portal.call(kPath, kInterface, QStringLiteral("ReadAll"), {wanted}, [this](const QVariantList& arguments) {
    settings_ = qdbus_cast<PortalSettings>(arguments.value(0));
    for (QVariantMap& space : settings_) {
      for (QVariant& value : space) value = unwrapped(value);
    }
    tell();
  });
}

void PortalAppearance::tell() {
  told_(appearanceOf(settings_));
}

}  // namespace quillmere
