// Draws the Welcome and About windows and the tray's menu in all their states, for people to look at.
//
//   shell_pictures FOLDER [--dark] [--contrast] [--rtl] [--flat] [--font NAME SIZE] [--accent COLOUR]
//   [--texts FOLDER-OF-A-CATALOGUE] [--only NAME]
//
// --flat: as without a compositor. QT_SCALE_FACTOR gives them at other sizes.

#include <QtCore/QDir>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <cstdio>

#include "PictureAppearance.h"
#include "controls/ApplicationAppearance.h"
#include "controls/KeyNames.h"
#include "controls/Theme.h"
#include "fakes/ModelFixture.h"
#include "shell/AboutWindow.h"
#include "shell/MenuBarExtra.h"
#include "shell/WelcomeWindow.h"
#include "support/PrivateEnvironment.h"

namespace quillmere {
namespace {

/// The window with what is open over it, as the desktop would show them.
QImage composed(QWidget& window) {
  std::vector<QWidget*> shown{&window};
  QRect all = window.geometry();
  for (QWidget* each : QApplication::topLevelWidgets()) {
    if (each == &window || !each->isVisible()) continue;
    shown.push_back(each);
    all |= each->geometry();
  }
  const qreal ratio = window.devicePixelRatioF();
  QImage picture(all.size() * ratio, QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  picture.fill(Theme(QApplication::palette()).isDark ? QColor(0x4a5568) : QColor(0xa8c0d8));
  QPainter painter(&picture);
  for (QWidget* each : shown) {
    const QPoint place = each->geometry().topLeft() - all.topLeft();
    painter.setClipping(!each->mask().isEmpty());
    if (!each->mask().isEmpty()) painter.setClipRegion(each->mask().translated(place));
    painter.drawPixmap(place, each->grab());
  }
  return picture;
}

void settle(QWidget& window) {
  window.move(400, 100);
  window.show();
  window.activateWindow();
  for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
}

struct Tray final : DesktopTray {
  bool isThere() const override { return isThereNow; }
  bool isThereNow = true;
};

QImage welcome(bool hasTray, bool hasOptions) {
  Tray tray;
  tray.isThereNow = hasTray;
  WelcomeWindow::Actions actions;
  actions.chooseFolder = [] { return false; };
  if (hasOptions) actions.openScreenshotOptions = [] {};
  actions.openHelp = [](HelpAnchor) {};
  WelcomeWindow window(std::move(actions), tray);
  settle(window);
  return composed(window);
}

/// As on Debian 12, with one library that nobody described.
std::vector<LinkedLibrary> libraries() {
  const auto library = [](const char* name, const char* licence) {
    return LinkedLibrary{QString::fromLatin1(name), QString::fromLatin1(licence)};
  };
  const char* compiler = "GPL-3.0-or-later WITH GCC-exception-3.1";
  return {library("GCC runtime libraries", compiler),
          library("GLib", "LGPL-2.1-or-later"),
          library("GNU C Library", "LGPL-2.1-or-later"),
          library("ICU", "MIT"),
          library("libcurious.so.3", ""),
          library("libdeflate", "MIT"),
          library("libheif", "LGPL-3.0-or-later"),
          library("libplist", "LGPL-2.1-or-later"),
          library("OpenCV", "Apache-2.0 AND BSD-3-Clause"),
          library("Qt", "LGPL-3.0-only OR GPL-2.0-only"),
          library("Qt SVG", "(LGPL-3.0-only OR GPL-2.0-only) AND HPND-sell-variant"),
          library("RapidJSON", "MIT"),
          library("Speech Dispatcher", "LGPL-2.1-or-later"),
          library("Tesseract", "Apache-2.0"),
          library("XCB", "X11"),
          library("Xlib", "MIT AND X11")};
}

QImage about(const char* build, bool showsAcknowledgments) {
  AboutWindow window(
      {.version = QStringLiteral("0.1.0"), .build = QString::fromLatin1(build), .libraries = libraries()},
      {.openWebsite = [] {}, .openSupport = [] {}, .openPrivacyPolicy = [] {}});
  settle(window);
  if (showsAcknowledgments) {
    window.showAcknowledgments();
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  }
  return composed(window);
}

/// The model that the tray's menu follows.
class WatchingModel final : public testing::ModelFixture {
 public:
  using testing::ModelFixture::model;

  WatchingModel() {
    firstShortcut = HotKeyShortcut::standard();
    launchWatching();
  }

 private:
  void TestBody() override {}
};

QImage trayMenu(bool canCheckForUpdates) {
  const WatchingModel world;
  Tray tray;
  SoftwareUpdateModel updates;
  updates.setCanCheckForUpdates(canCheckForUpdates);
  MenuBarExtra extra(*world.model, updates, tray, {[] {}, [] {}, [] {}, [] {}});
  extra.setShown(true);
  extra.menu()->popup({400, 100});
  for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  return composed(*extra.menu());
}

struct Picture {
  const char* name;
  std::function<QImage()> draw;
};
const std::vector<Picture> kPictures{
    {"welcome", [] { return welcome(true, true); }},
    {"welcome-without-tray", [] { return welcome(false, true); }},
    {"welcome-without-options", [] { return welcome(true, false); }},
    {"about", [] { return about("", false); }},
    {"about-build", [] { return about("2026112304", false); }},
    {"acknowledgments", [] { return about("", true); }},
    {"tray-menu", [] { return trayMenu(false); }},
    {"tray-menu-updates", [] { return trayMenu(true); }},
};

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  const QString screens = QDir::home().filePath(QStringLiteral("screens.json"));
  QFile file(screens);
  if (!file.open(QIODevice::WriteOnly)) return 1;
  file.write(R"({"screens":[{"name":"S","x":0,"y":0,"width":1920,"height":1200,"logicalDpi":96,"logicalBaseDpi":96,
"dpr":1}]})");
  file.close();
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screens));
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs("shell_pictures FOLDER [--dark] [--contrast] [--rtl] [--flat] [--font NAME SIZE]\n", stderr);
    return 2;
  }
  const auto argument = [&](const char* name) {
    const qsizetype at = arguments.indexOf(QLatin1String(name));
    return at > 0 ? arguments.value(at + 1) : QString();
  };
  if (const QString texts = argument("--texts"); !texts.isEmpty()) {
    QDir::addSearchPath(QStringLiteral("catalogues"), texts);
  }
  KeyNames keyNames;
  QCoreApplication::installTranslator(&keyNames);
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  look.setCompositing([isFlat = arguments.contains(QStringLiteral("--flat"))] { return !isFlat; });
  if (arguments.contains(QStringLiteral("--rtl"))) QGuiApplication::setLayoutDirection(Qt::RightToLeft);

  const QDir folder(arguments[1]);
  QDir().mkpath(folder.path());
  bool isWhole = true;
  for (const Picture& picture : kPictures) {
    const QString name = QString::fromLatin1(picture.name);
    if (const QString only = argument("--only"); !only.isEmpty() && only != name) continue;
    isWhole &= picture.draw().save(folder.filePath(name + QStringLiteral(".png")));
  }
  return isWhole ? 0 : 1;
}
