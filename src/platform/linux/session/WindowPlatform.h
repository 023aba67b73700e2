#pragma once

#include <QtCore/QString>

namespace quillmere {

/// Which of Qt's platforms shows the windows, and what is said when none can. Made before the application object.
class WindowPlatform {
 public:
  WindowPlatform();
  ~WindowPlatform();
  WindowPlatform(const WindowPlatform&) = delete;
  WindowPlatform& operator=(const WindowPlatform&) = delete;

  /// The application object is there.
  void settle();

 private:
  bool isX11Preferred_ = false;
  bool isSettled_ = false;
};

/// What the environment says of displays; empty where it says nothing.
struct DisplayEnvironment {
  QString platform{};        ///< QT_QPA_PLATFORM
  QString x11Display{};      ///< DISPLAY
  QString waylandDisplay{};  ///< WAYLAND_DISPLAY

  static DisplayEnvironment current();
};

/// Why no windows can be shown, in a line.
QString reasonWithoutWindows(const DisplayEnvironment& environment);

}  // namespace quillmere
