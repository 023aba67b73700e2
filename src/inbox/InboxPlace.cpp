#include "inbox/InboxPlace.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <algorithm>

namespace quillmere {
namespace {

/// More screens than anybody sits at are names that some other machine room left behind.
constexpr size_t kMostScreens = 16;
constexpr QSize kSmallest(480, 320);

QRect within(QRect frame, const QRect& available) {
  frame.setSize(frame.size().boundedTo(available.size()));
  frame.moveLeft(std::clamp(frame.left(), available.left(), available.right() - frame.width() + 1));
  frame.moveTop(std::clamp(frame.top(), available.top(), available.bottom() - frame.height() + 1));
  return frame;
}

}  // namespace

InboxPlace InboxPlace::read(const UserDefaults& defaults) {
  InboxPlace place;
  const auto text = defaults.text(QLatin1String(kKey));
  if (!text) return place;
  const QJsonObject stored = QJsonDocument::fromJson(text->toUtf8()).object();
  place.last_ = stored.value(QLatin1String("last")).toString();
  const QJsonObject screens = stored.value(QLatin1String("screens")).toObject();
  for (auto screen = screens.begin(); screen != screens.end() && place.places_.size() < kMostScreens; ++screen) {
    const QJsonObject one = screen.value().toObject();
    const auto number = [&](const char* key) { return one.value(QLatin1String(key)).toInt(); };
    const QRect frame(number("x"), number("y"), number("width"), number("height"));
    if (frame.width() < kSmallest.width() || frame.height() < kSmallest.height()) continue;
    place.places_[screen.key()] = {frame, one.value(QLatin1String("maximized")).toBool(),
                                   std::max(0, number("sidebar"))};
  }
  return place;
}

void InboxPlace::write(UserDefaults& defaults) const {
  QJsonObject screens;
  for (const auto& [name, place] : places_) {
    screens.insert(name, QJsonObject{{QStringLiteral("x"), place.frame.x()},
                                     {QStringLiteral("y"), place.frame.y()},
                                     {QStringLiteral("width"), place.frame.width()},
                                     {QStringLiteral("height"), place.frame.height()},
                                     {QStringLiteral("maximized"), place.isMaximized},
                                     {QStringLiteral("sidebar"), place.sidebarWidth}});
  }
  const QJsonObject stored{{QStringLiteral("last"), last_}, {QStringLiteral("screens"), screens}};
  const QString text = QString::fromUtf8(QJsonDocument(stored).toJson(QJsonDocument::Compact));
  // Each write waits for the disk.
  if (defaults.text(QLatin1String(kKey)) != text) defaults.set(QLatin1String(kKey), text);
}

void InboxPlace::note(const QString& screen, const Place& place) {
  if (!places_.contains(screen) && places_.size() >= kMostScreens) places_.clear();
  places_[screen] = place;
  last_ = screen;
}

InboxPlace::Place InboxPlace::place(const std::vector<Screen>& screens, QSize usualSize) const {
  if (screens.empty()) return {QRect(QPoint(), usualSize), false, 0};
  const auto named = std::find_if(screens.begin(), screens.end(), [&](const Screen& s) { return s.name == last_; });
  const Screen& screen = named == screens.end() ? screens.front() : *named;
  Place place;
  if (const auto known = places_.find(screen.name); known != places_.end()) {
    place = known->second;
  } else {
    place.frame.setSize(usualSize);
    place.frame.moveCenter(screen.available.center());
  }
  place.frame = within(place.frame, screen.available);
  return place;
}

}  // namespace quillmere
