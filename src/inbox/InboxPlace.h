#pragma once

#include <QtCore/QRect>
#include <QtCore/QString>
#include <map>
#include <optional>
#include <vector>

#include "foundation/UserDefaults.h"

namespace quillmere {

/// Where the Inbox was on each screen, by the screen's name, and on which it was last. The form on disk is one JSON
/// text; what cannot be read of it is as if it were not there.
class InboxPlace {
 public:
  struct Place {
    QRect frame;  ///< without the window manager's decoration, in points
    bool isMaximized = false;
    int sidebarWidth = 0;  ///< in points; 0: as it comes
    bool operator==(const Place&) const = default;
  };
  struct Screen {
    QString name;
    QRect available;  ///< without docks, in points
  };

  static constexpr const char* kKey = "quillmere.inbox-place";
  static InboxPlace read(const UserDefaults& defaults);
  void write(UserDefaults& defaults) const;

  void note(const QString& screen, const Place& place);
  /// Where it opens: on the screen where it was last, if that is there, and else on the first one, as it was on that
  /// screen; never outside of a screen, never larger than it.
  Place place(const std::vector<Screen>& screens, QSize usualSize) const;

 private:
  std::map<QString, Place> places_;
  QString last_;
};

}  // namespace quillmere
