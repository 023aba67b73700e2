// Draws the Inbox window in all its states, with what opens over it, for people to look at.
//
//   inbox_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--accent COLOUR] [--size WIDTH HEIGHT]
//   [--texts FOLDER-OF-A-CATALOGUE] [--only NAME]

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QTimer>
#include <QtGui/QHoverEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <cstdio>

#include "../inbox/InboxFixture.h"
#include "PaintedDesktop.h"
#include "PaintedScreens.h"
#include "PictureAppearance.h"
#include "controls/ActionButton.h"
#include "controls/ApplicationAppearance.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"
#include "inbox/InboxListView.h"
#include "inbox/InboxWindow.h"
#include "inbox/SearchField.h"
#include "support/PrivateEnvironment.h"

namespace quillmere {
namespace {

using testing::State;

struct Record {
  const char* name;
  const char* moment;
  State state;
  std::optional<PaintedScreen> screen;
  std::optional<CaptureKind> kind;
  const char* description;
  const char* text;
};

const std::vector<Record> kRecords{
    {"Screenshot from 2026-11-22 09-38-07.png", "2026-11-22T09:38:07Z", State::pending, PaintedScreen::mail,
     CaptureKind::window, "A mail about the second draft of a report and the date for its print.",
     "Second draft, and the date for print\n\nHello,\n\nthank you for the draft. Two things are left for "
     "Thursday:\nwho "
     "reads chapter three, and when the figures are due.\nThe print shop needs the file by Friday, 27 November.\n\n"
     "Amira"},
    {"Screenshot_20261122_091512.png", "2026-11-22T09:15:12Z", State::temporary, PaintedScreen::terminal,
     CaptureKind::window, "A terminal in which a report of 64 pages was built with one warning.",
     "~/report $ make\nwarning: figures/costs.csv has no unit in column 4\nDone in 2.4 s, 64 pages."},
    {"Costs first half of 2026.png", "2026-11-21T17:42:30Z", State::permanent, PaintedScreen::table,
     CaptureKind::selection, "A table of costs by month.", "Costs 2026 Rent Electricity Paper Printing"},
    {"2026-11-21-161803_1040x900_scrot.png", "2026-11-21T16:18:03Z", State::pending, PaintedScreen::code,
     CaptureKind::window, "Code that counts working days.", "def working_days(start, end, holidays):"},
    {"Readers per week, with the campaign of November and the correction for the holidays in the south.png",
     "2026-11-20T11:02:45Z", State::permanent, PaintedScreen::chart, CaptureKind::selection,
     "A chart of readers per week.", "Readers per week"},
    {"Screenshot_2026-11-20_10-22-08.png", "2026-11-20T10:22:08Z", State::pending, std::nullopt, CaptureKind::display,
     "A desktop with several windows.", ""},
    {"20261119_11h02m45s_grim.png", "2026-11-19T11:02:45Z", State::temporary, PaintedScreen::darkChart,
     CaptureKind::display, "The load of a server over a day.", "Load of the last day"},
    {"Printer.png", "2026-11-19T08:30:00Z", State::permanent, PaintedScreen::message, CaptureKind::window,
     "A message that the printer does not answer.", "The printer does not answer"},
    {"A week by the lake.png", "2026-11-18T20:14:51Z", State::permanent, PaintedScreen::page, std::nullopt,
     "An article about a week by a lake.", "A week by the lake"},
    {"Screenshot from 2026-11-17 13-05-44.png", "2026-11-17T13:05:44Z", State::pending, PaintedScreen::table,
     CaptureKind::selection, "A table of costs by month.", "Costs 2026"},
};

/// Painted once.
const QByteArray& pngOf(const std::optional<PaintedScreen>& screen) {
  static std::map<int, QByteArray> painted;
  QByteArray& png = painted[screen ? static_cast<int>(*screen) : -1];
  if (!png.isEmpty()) return png;
  QBuffer file(&png);
  file.open(QIODevice::WriteOnly);
  (screen ? paintedScreen(*screen) : paintedDesktop(QSize(1920, 1080), 7)).save(&file, "PNG");
  return png;
}

template <typename Kind>
Kind* findChild(const QWidget& parent) {
  for (auto* child : parent.findChildren<QWidget*>()) {
    if (auto* found = dynamic_cast<Kind*>(child)) return found;
  }
  return nullptr;
}

/// The windows of this program that are open, as the desktop would show them.
QImage composed(const QWidget& window) {
  std::vector<QWidget*> above;
  QRect all = window.geometry();
  for (QWidget* each : QApplication::topLevelWidgets()) {
    if (each == &window || !each->isVisible()) continue;
    above.push_back(each);
    all |= each->geometry();
  }
  const qreal ratio = window.devicePixelRatioF();
  QImage picture(all.size() * ratio, QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  picture.fill(Theme(QApplication::palette()).isDark ? QColor(0x4a5568) : QColor(0xa8c0d8));
  QPainter painter(&picture);
  painter.drawPixmap(window.geometry().topLeft() - all.topLeft(), const_cast<QWidget&>(window).grab());
  for (QWidget* each : above) {
    const QPoint place = each->geometry().topLeft() - all.topLeft();
    painter.setClipping(false);
    if (!each->mask().isEmpty()) painter.setClipRegion(each->mask().translated(place));
    painter.drawPixmap(place, each->grab());
  }
  return picture;
}

class Scene final : public testing::InboxFixture {
 public:
  using testing::InboxFixture::analyzer;
  using testing::InboxFixture::dataless;
  using testing::InboxFixture::ejectDisk;
  using testing::InboxFixture::launch;
  using testing::InboxFixture::launchWatching;
  using testing::InboxFixture::makeSavingFail;
  using testing::InboxFixture::makeSavingWork;
  using testing::InboxFixture::makeUnavailable;
  using testing::InboxFixture::model;
  using testing::InboxFixture::reconcileAll;
  using testing::InboxFixture::report;
  using testing::InboxFixture::shots;
  using testing::InboxFixture::ubiquitous;
  using testing::InboxFixture::unreachableFolders;

  explicit Scene(const QSize& size) : size_(size) {
    setClock(Date::fromDateTime(QDateTime::fromString(QStringLiteral("2026-11-22T09:41:00Z"), Qt::ISODate)) - now());
  }
  ~Scene() override {
    window.reset();
    InboxFixture::presentation.reset();
    model.reset();
  }
  void SetUp() override {}
  void TestBody() override {}

  /// Launches with the ten records, one of which is unavailable and one evicted.
  void launchFull() {
    std::vector<ScreenshotItem> items;
    for (size_t i = 0; i < kRecords.size(); ++i) items.push_back(stored(static_cast<int>(i), kRecords[i]));
    storeRecords(items);
    launchWatching();
    model->setAnalyzeScreenshots(true);
    dataless.insert(itemAt(8).url.path());
    ubiquitous.insert(itemAt(8).url.path());
    reconcileAll();
    makeUnavailable(itemAt(7).id);
    unreachableFolders.clear();
  }
  void openWindow() {
    services.thumbnails = &thumbnails;
    services.sharing = &sharing;
    services.defaults = defaults.get();
    window = std::make_unique<InboxWindow>(*model, services);
    window->setGeometry(QRect(QPoint(200, 100), size_));
    window->show();
    window->activateWindow();
    window->takeKeyboard();
    settle();
  }
  void open() {
    launchFull();
    openWindow();
  }
  void settle() {
    for (int i = 0; i < 6; ++i) {
      advance(0.05);
      executor.drain();
      QCoreApplication::processEvents();
    }
  }
  QImage picture() {
    settle();
    return composed(*window);
  }
  /// While a menu is open nothing else runs: it is drawn from within.
  QImage pictureWhile(
      const std::function<void()>& opens, const std::function<void()>& meanwhile = [] {}) {
    QImage drawn;
    QTimer::singleShot(0, window.get(), [&] {
      settle();
      meanwhile();
      drawn = picture();
      while (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    });
    opens();
    QCoreApplication::processEvents();
    return drawn;
  }

  ScreenshotItem itemAt(int row) const { return model->items()[static_cast<size_t>(row)]; }
  InboxListView& list() const { return *findChild<InboxListView>(*window); }
  InboxPresentation& shown() const { return window->presentation(); }
  void select(std::initializer_list<int> rows) {
    UUIDSet ids;
    for (const int row : rows) ids.insert(itemAt(row).id);
    model->setSelectedItemIDs(ids);
    settle();
  }
  void filter(const char* text, InboxFilter::Scope status = InboxFilter::Scope::all) {
    InboxFilter filter;
    filter.text = QString::fromLatin1(text);
    filter.scope = status;
    shown().setFilter(filter);
    settle();
  }
  ActionButton& button(const QString& accessibleName) const {
    for (auto* child : window->findChildren<QPushButton*>()) {
      auto* button = dynamic_cast<ActionButton*>(child);
      if (button && button->accessibleName() == accessibleName) return *button;
    }
    qFatal("no such button");
  }
  void hover(int row) {
    QWidget& viewport = *list().viewport();
    const QPointF place = list().visualRect(list().model()->index(row, 0)).center();
    for (const QEvent::Type type : {QEvent::HoverEnter, QEvent::HoverMove}) {
      QHoverEvent event(type, place, viewport.mapToGlobal(place), place - QPointF(1, 1));
      QApplication::sendEvent(&viewport, &event);
    }
  }

  std::unique_ptr<InboxWindow> window;

 private:
  ScreenshotItem stored(int number, const Record& record) {
    ScreenshotItem item = storedItem(number + 1, record.name, record.state);
    const QByteArray& png = pngOf(record.screen);
    testing::writeFile(item.url, std::string_view(png.constData(), static_cast<size_t>(png.size())));
    item.fileIdentity = identityOf(item.url);
    item.createdAt = Date::fromDateTime(QDateTime::fromString(QString::fromLatin1(record.moment), Qt::ISODate));
    if (item.state == State::temporary) item.expiresAt = now() + 3300;
    item.captureKind = record.kind;
    item.imageDescription = record.description;
    item.recognizedText = record.text;
    return item;
  }
  QSize size_;
};

struct Picture {
  const char* name;
  std::function<QImage(Scene&)> draw;
};

QImage selected(Scene& scene, std::initializer_list<int> rows) {
  scene.open();
  scene.select(rows);
  return scene.picture();
}

QImage found(Scene& scene, const char* text, InboxFilter::Scope status = InboxFilter::Scope::all) {
  scene.open();
  scene.shown().find();
  scene.filter(text, status);
  return scene.picture();
}

/// Of the menu bar, by its place in it.
QImage menu(Scene& scene, int place) {
  scene.open();
  scene.select({0});
  auto* bar = findChild<QMenuBar>(*scene.window);
  QAction* title = bar->actions()[place];
  bar->setActiveAction(title);
  title->menu()->setActiveAction(title->menu()->actions()[2]);
  const QImage drawn = scene.picture();
  title->menu()->close();
  return drawn;
}

const std::vector<Picture> kPictures{
    {"selected", [](Scene& scene) { return selected(scene, {0}); }},
    {"selected-temporary", [](Scene& scene) { return selected(scene, {1}); }},
    {"selected-saved", [](Scene& scene) { return selected(scene, {4}); }},
    {"nothing-selected", [](Scene& scene) { return selected(scene, {}); }},
    {"unavailable", [](Scene& scene) { return selected(scene, {7}); }},
    {"evicted", [](Scene& scene) { return selected(scene, {8}); }},
    {"several",
     [](Scene& scene) {
       return selected(scene, {0, 1, 2, 5});
     }},
    {"found",
     [](Scene& scene) {
       scene.open();
       scene.select({2});
       scene.shown().find();
       scene.filter("costs");
       return scene.picture();
     }},
    {"no-match", [](Scene& scene) { return found(scene, "harbour"); }},
    {"empty-status",
     [](Scene& scene) {
       scene.open();
       scene.model->keepBatch({scene.itemAt(1).id, scene.itemAt(6).id});
       scene.filter("", InboxFilter::Scope::temporary);
       return scene.picture();
     }},
    {"renaming-row",
     [](Scene& scene) {
       scene.open();
       scene.select({1});
       scene.list().setFocus();
       scene.shown().beginRename(scene.itemAt(1));
       return scene.picture();
     }},
    {"renaming-header",
     [](Scene& scene) {
       scene.open();
       scene.select({1});
       // As if the list were scrolled past it.
       scene.shown().placeForRename = [place = scene.shown().placeForRename](const UUID& id) {
         place(id);
         return InboxPresentation::RenamePlace::header;
       };
       scene.shown().beginRename(scene.itemAt(1));
       return scene.picture();
     }},
    {"recognized-text",
     [](Scene& scene) {
       scene.open();
       scene.select({0});
       scene.shown().showRecognizedText(scene.itemAt(0));
       return scene.picture();
     }},
    {"question",
     [](Scene& scene) {
       scene.open();
       scene.select({3});
       scene.shown().requestDeletion({scene.itemAt(3)}, AppModel::DisposalReason::chosen);
       return scene.picture();
     }},
    {"banners",
     [](Scene& scene) {
       scene.open();
       scene.select({0});
       scene.makeSavingFail();
       scene.model->saveNow();
       scene.unreachableFolders.insert(scene.shots.path());
       scene.report(WatcherStatus::notFound);
       const QImage drawn = scene.picture();
       scene.makeSavingWork();
       return drawn;
     }},
    {"setup",
     [](Scene& scene) {
       scene.launch();
       scene.openWindow();
       return scene.picture();
     }},
    {"no-screenshots",
     [](Scene& scene) {
       scene.launchWatching();
       scene.openWindow();
       return scene.picture();
     }},
    {"hover-and-keyboard",
     [](Scene& scene) {
       scene.open();
       scene.select({0});
       scene.list().selectionModel()->setCurrentIndex(scene.list().model()->index(2, 0), QItemSelectionModel::NoUpdate);
       scene.list().setFocus(Qt::TabFocusReason);
       scene.hover(4);
       return scene.picture();
     }},
    {"menu-file", [](Scene& scene) { return menu(scene, 0); }},
    {"menu-edit", [](Scene& scene) { return menu(scene, 1); }},
    {"menu-screenshot", [](Scene& scene) { return menu(scene, 2); }},
    {"menu-context",
     [](Scene& scene) {
       scene.open();
       scene.select({3});
       const QPoint place = scene.list().visualRect(scene.list().model()->index(3, 0)).center();
       return scene.pictureWhile(
           [&] { scene.list().onContextMenu({scene.itemAt(3).id}, scene.list().viewport()->mapToGlobal(place)); },
           [&] {
             auto* open = qobject_cast<QMenu*>(QApplication::activePopupWidget());
             for (QAction* action : open->actions()) {
               if (!action->menu() || !action->isVisible()) continue;
               // Opened as by the arrow key.
               open->setActiveAction(action);
               QKeyEvent key(QEvent::KeyPress, open->isRightToLeft() ? Qt::Key_Left : Qt::Key_Right, Qt::NoModifier);
               QApplication::sendEvent(open, &key);
               break;
             }
           });
     }},
    {"menu-filter",
     [](Scene& scene) {
       scene.open();
       scene.filter("", InboxFilter::Scope::saved);
       return scene.pictureWhile([&] { scene.button(localized("Filter")).click(); });
     }},
    {"menu-more",
     [](Scene& scene) {
       scene.open();
       scene.select({0});
       return scene.pictureWhile([&] { scene.button(localized("More")).click(); });
     }},
};

/// Screens that are large enough for the widest window with its menus.
void writeScreens(const QString& path) {
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(R"({"screens":[{"name":"S","x":0,"y":0,"width":4800,"height":3200,"logicalDpi":96,"logicalBaseDpi":96,
"dpr":1}]})");
}

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  const QString screens = QDir::home().filePath(QStringLiteral("screens.json"));
  writeScreens(screens);
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screens));
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs("inbox_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--size WIDTH HEIGHT]\n",
               stderr);
    return 2;
  }
  const auto argument = [&](const char* name, int number = 1) {
    const qsizetype at = arguments.indexOf(QLatin1String(name));
    return at > 0 ? arguments.value(at + number) : QString();
  };
  if (const QString texts = argument("--texts"); !texts.isEmpty()) {
    QDir::addSearchPath(QStringLiteral("catalogues"), texts);
  }
  QSize size(1040, 680);
  if (!argument("--size").isEmpty()) size = QSize(argument("--size").toInt(), argument("--size", 2).toInt());
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  look.setCompositing([] { return true; });
  if (arguments.contains(QStringLiteral("--rtl"))) QGuiApplication::setLayoutDirection(Qt::RightToLeft);

  const QDir folder(arguments[1]);
  QDir().mkpath(folder.path());
  bool isWhole = true;
  for (const Picture& picture : kPictures) {
    const QString name = QString::fromLatin1(picture.name);
    if (const QString only = argument("--only"); !only.isEmpty() && only != name) continue;
    Scene scene(size);
    isWhole &= picture.draw(scene).save(folder.filePath(name + QStringLiteral(".png")));
  }
  return isWhole ? 0 : 1;
}
