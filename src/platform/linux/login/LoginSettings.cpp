#include "platform/linux/login/LoginSettings.h"

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <vector>

namespace quillmere {
namespace {

struct Program {
  const char* desktop;
  std::vector<const char*> command;
};

/// Those of one desktop in the order in which they show most of it.
const std::vector<Program>& programs() {
  static const std::vector<Program> kPrograms{
      {"GNOME", {"gnome-session-properties"}},
      {"GNOME", {"gnome-tweaks"}},
      {"GNOME", {"gnome-control-center", "applications"}},
      {"KDE", {"systemsettings", "kcm_autostart"}},
      {"KDE", {"systemsettings5", "kcm_autostart"}},
      {"KDE", {"kcmshell6", "kcm_autostart"}},
      {"KDE", {"kcmshell5", "kcm_autostart"}},
      {"XFCE", {"xfce4-session-settings"}},
      {"MATE", {"mate-session-properties"}},
      {"X-Cinnamon", {"cinnamon-settings", "startup"}},
      {"LXQt", {"lxqt-config-session"}},
      {"LXDE", {"lxsession-edit"}},
      {"Unity", {"gnome-session-properties"}},
  };
  return kPrograms;
}

QStringList listed(const Program& program) {
  QStringList command;
  for (const char* word : program.command) command << QLatin1String(word);
  return command;
}

}  // namespace

LoginSettings::World LoginSettings::World::live() {
  return {qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'), Qt::SkipEmptyParts),
          [](const QString& program) { return !QStandardPaths::findExecutable(program).isEmpty(); },
          [](const QStringList& command) { QProcess::startDetached(command.first(), command.mid(1)); }};
}

std::optional<QStringList> LoginSettings::command() const {
  bool isKnown = false;
  for (const Program& program : programs()) {
    if (!world_.desktops.contains(QLatin1String(program.desktop))) continue;
    isKnown = true;
    if (const QStringList command = listed(program); world_.isInstalled(command.first())) return command;
  }
  if (isKnown) return std::nullopt;
  for (const Program& program : programs()) {
    if (const QStringList command = listed(program); world_.isInstalled(command.first())) return command;
  }
  return std::nullopt;
}

void LoginSettings::open() const {
  if (const auto found = command()) world_.start(*found);
}

}  // namespace quillmere
