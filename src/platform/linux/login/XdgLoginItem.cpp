#include "platform/linux/login/XdgLoginItem.h"

#include <unistd.h>
#include <QtCore/QStandardPaths>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"
#include "foundation/Localized.h"
#include "platform/linux/login/AutostartEntry.h"

namespace quillmere {
namespace {

constexpr std::string_view kEntry = "com.quillmere.app.desktop";

constexpr int64_t kLargest = 1 << 20;  // bytes; no entry has more than a few lines

std::optional<std::string> textOf(const FileURL& file) {
  return readFile(file, kLargest);
}

/// In the system's words.
QString problemWith(const FileURL& file, int number) {
  return localized("“%@” couldn’t be changed: %@.",
                   {file.displayPath(), QString::fromStdString(std::generic_category().message(number))});
}

}  // namespace

AutostartPlaces AutostartPlaces::live() {
  const auto entryIn = [](const QString& configuration) {
    return FileURL::fromPath(configuration).appending("autostart").appending(kEntry);
  };
  QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
  AutostartPlaces places;
  places.own = entryIn(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
  for (const QString& folder : folders.mid(1)) places.shared.push_back(entryIn(folder));
  places.desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'), Qt::SkipEmptyParts);
  return places;
}

XdgLoginItem::XdgLoginItem(AutostartPlaces places, ProgramPlaces programs, LoginSettings settings)
    : places_(std::move(places)), programs_(std::move(programs)), settings_(std::move(settings)) {}

LoginItemStatus XdgLoginItem::status() const {
  if (!installedProgram(programs_)) return LoginItemStatus::notFound;
  const AutostartEntry::Session session{
      places_.desktops, [this](const std::string& program) { return startable(program, programs_).has_value(); }};
  // The first one that is there decides, whatever it says.
  auto text = textOf(places_.own);
  for (size_t i = 0; !text && i < places_.shared.size(); ++i) text = textOf(places_.shared[i]);
  return text && AutostartEntry::isOn(*text, session) ? LoginItemStatus::enabled : LoginItemStatus::notRegistered;
}

std::optional<QString> XdgLoginItem::registerItem() {
  const auto program = installedProgram(programs_);
  if (!program) return localized("This copy of Quillmere isn’t installed.");
  return write(AutostartEntry::startingAtLogin(*program));
}

std::optional<QString> XdgLoginItem::unregisterItem() {
  if (::unlink(places_.own.c_str()) != 0 && errno != ENOENT) return problemWith(places_.own, errno);
  // One of all users would come to light.
  if (status() != LoginItemStatus::enabled) return std::nullopt;
  return write(AutostartEntry::hidden(installedProgram(programs_).value_or(std::string())));
}

/// In the place of whatever has the name. A link may lead to anybody's file, which is not to be written to.
std::optional<QString> XdgLoginItem::write(const std::string& text) const {
  const FileURL unfinished = places_.own.parent().appending("." + std::string(kEntry) + ".new");
  ::unlink(unfinished.c_str());
  const bool isPlaced = replaceFile(unfinished, text) && ::rename(unfinished.c_str(), places_.own.c_str()) == 0;
  if (isPlaced) {
    flushFolder(places_.own.parent());
    return std::nullopt;
  }
  const int number = errno;
  ::unlink(unfinished.c_str());
  return problemWith(places_.own, number);
}

}  // namespace quillmere
