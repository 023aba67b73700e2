#include "platform/linux/session/WindowPlatform.h"

#include <QtCore/QStringList>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace quillmere {
namespace {

constexpr const char* kPlatform = "QT_QPA_PLATFORM";

/// What Qt said since the platform was chosen, also from threads of its own: shown if it goes on, for the one reason
/// below is clearer if it does not.
struct HeldMessages {
  std::mutex mutex;
  QStringList lines;
  DisplayEnvironment environment;
};
HeldMessages& held() {
  static HeldMessages messages;
  return messages;
}

/// Qt's answer to a missing display is to abort.
void hold(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  const std::lock_guard lock(held().mutex);
  if (type != QtFatalMsg) {
    held().lines << qFormatLogMessage(type, context, message);
    return;
  }
  std::fprintf(stderr, "quillmere: %s\n", qPrintable(reasonWithoutWindows(held().environment)));
  // Nothing is open yet that would have to be closed.
  std::_Exit(EXIT_FAILURE);
}

}  // namespace

/// A Wayland client cannot place its own windows; there the application asks for the X server that runs beside it.
WindowPlatform::WindowPlatform() {
  held().environment = DisplayEnvironment::current();
  isX11Preferred_ = qEnvironmentVariableIsEmpty(kPlatform) && !qEnvironmentVariableIsEmpty("DISPLAY");
  if (isX11Preferred_) qputenv(kPlatform, "xcb");
  qInstallMessageHandler(&hold);
}

WindowPlatform::~WindowPlatform() {
  settle();
}

void WindowPlatform::settle() {
  if (std::exchange(isSettled_, true)) return;
  qInstallMessageHandler(nullptr);
  // Applications that this one opens choose for themselves.
  if (isX11Preferred_) qunsetenv(kPlatform);
  const std::lock_guard lock(held().mutex);
  for (const QString& line : std::as_const(held().lines)) std::fprintf(stderr, "%s\n", qPrintable(line));
  held().lines.clear();
}

DisplayEnvironment DisplayEnvironment::current() {
  return {qEnvironmentVariable(kPlatform), qEnvironmentVariable("DISPLAY"), qEnvironmentVariable("WAYLAND_DISPLAY")};
}

QString reasonWithoutWindows(const DisplayEnvironment& environment) {
  if (!environment.platform.isEmpty() && !environment.platform.startsWith(QLatin1String("xcb"))) {
    return QStringLiteral("Qt cannot show windows on the platform '%1' that QT_QPA_PLATFORM names.")
        .arg(environment.platform);
  }
  if (!environment.x11Display.isEmpty()) {
    return QStringLiteral("the X display '%1' that DISPLAY names cannot be used.").arg(environment.x11Display);
  }
  if (environment.waylandDisplay.isEmpty()) {
    return QStringLiteral("there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set.");
  }
  return QStringLiteral("there is no X display, and Qt cannot use the Wayland display '%1'.")
      .arg(environment.waylandDisplay);
}

}  // namespace quillmere
