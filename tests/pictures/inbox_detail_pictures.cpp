// Draws what stands beside the Inbox's list, in all its states, for people to look at.
//
//   inbox_detail_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--size WIDTH HEIGHT] [--texts
//   FOLDER-OF-A-CATALOGUE]

#include <QtCore/QDir>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <cstdio>

#include "PaintedDesktop.h"
#include "PictureAppearance.h"
#include "controls/ApplicationAppearance.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "fakes/DecodedPictures.h"
#include "fakes/ModelFixture.h"
#include "inbox/DeletionQuestion.h"
#include "inbox/InboxDetail.h"
#include "inbox/RecognizedTextSheet.h"
#include "inbox/ScreenshotSelectionView.h"
#include "support/PrivateEnvironment.h"

namespace quillmere {
namespace {

const char* const kName = "Screenshot from 2026-11-21 09-41-07.png";
const QString kDescription = QStringLiteral(
    "A text editor with the notes of a week and a terminal below it in which a report was built without errors.");

class Scene final : public testing::ModelFixture {
 public:
  using ModelFixture::analyzer;
  using ModelFixture::captureKinds;
  using ModelFixture::dataless;
  using ModelFixture::makeUnavailable;
  using ModelFixture::model;
  using ModelFixture::monitor;
  using ModelFixture::reconcileAll;
  using ModelFixture::refusesDownloads;
  using ModelFixture::ubiquitous;

  explicit Scene(const QSize& size) : size_(size) {
    launchWatching();
    model->setAnalyzeScreenshots(true);
    presentation =
        std::make_unique<InboxPresentation>(*model, InboxServices{.thumbnails = &thumbnails_, .executor = &executor});
  }
  ~Scene() override {
    window_.reset();
    presentation.reset();
    model.reset();
  }
  void TestBody() override {}

  enum class From { here, elsewhere };
  UUID capture(const std::string& name = kName, From from = From::here,
               std::optional<CaptureKind> kind = CaptureKind::display) {
    static const QImage picture = paintedDesktop(QSize(1280, 800), 7);
    const FileURL url = shots.appending(name);
    picture.save(url.displayPath(), "PNG");
    if (kind) captureKinds.insert_or_assign(url.path(), *kind);
    from == From::here ? monitor.onScreenshot(url) : monitor.onArrivedScreenshot(url);
    executor.drain();
    return model->items()[0].id;
  }
  void describe() {
    analyzer.immediateDescriptions = {ScreenshotAnalysisResult{kDescription, QStringLiteral("Notes")}};
  }
  void pass(double seconds) { advance(seconds); }

  QImage detail() {
    auto view = std::make_unique<InboxDetail>(*model, *presentation, nullptr);
    auto* shown = view.get();
    if (*presentation->renameSession) QApplication::setActiveWindow(shown);
    return draw(std::move(view), [&] { shown->show(*model->items().find(of)); });
  }
  QImage selection() {
    auto view = std::make_unique<ScreenshotSelectionView>(*model, *presentation, nullptr);
    auto* shown = view.get();
    return draw(std::move(view), [&] { shown->update(); });
  }
  UUID of;
  std::unique_ptr<InboxPresentation> presentation;

 private:
  QImage draw(std::unique_ptr<QWidget> view, const std::function<void()>& show) {
    window_ = std::move(view);
    window_->resize(size_);
    show();
    window_->setVisible(true);
    window_->activateWindow();
    for (int i = 0; i < 4; ++i) {
      executor.drain();
      QCoreApplication::processEvents();
    }
    return window_->grab().toImage();
  }
  QSize size_;
  ThumbnailLoader thumbnails_{executor, testing::decodedPictures(), [](const FileURL&) { return false; }};
  std::unique_ptr<QWidget> window_;
};

struct Picture {
  const char* name;
  std::function<QImage(Scene&)> draw;
};

QImage evicted(Scene& scene, bool isAsked, bool isRefused, double after, bool canAsk = true) {
  scene.of = scene.capture();
  const FileURL url = scene.model->items().find(scene.of)->url;
  scene.dataless.insert(url.path());
  if (canAsk) scene.ubiquitous.insert(url.path());
  scene.refusesDownloads = isRefused;
  scene.reconcileAll();
  if (isAsked) scene.model->download(scene.of);
  scene.pass(after);
  return scene.detail();
}

const std::vector<Picture> kPictures{
    {"pending",
     [](Scene& scene) {
       scene.describe();
       scene.of = scene.capture();
       return scene.detail();
     }},
    {"analyzing",
     [](Scene& scene) {
       scene.analyzer.holdsDescriptions = true;
       scene.of = scene.capture();
       return scene.detail();
     }},
    {"failed",
     [](Scene& scene) {
       scene.analyzer.immediateDescriptions = {AnalysisError{AnalysisError::Kind::busy}};
       scene.of = scene.capture(kName, Scene::From::here, CaptureKind::window);
       return scene.detail();
     }},
    {"temporary",
     [](Scene& scene) {
       scene.analyzer.text = QStringLiteral("words");
       scene.describe();
       scene.of = scene.capture(kName, Scene::From::here, CaptureKind::selection);
       scene.model->markTemporaryBatch({scene.of}, TemporaryDuration::oneHour);
       return scene.detail();
     }},
    {"saved",
     [](Scene& scene) {
       scene.analyzer.text = QStringLiteral("words");
       scene.describe();
       scene.of = scene.capture();
       scene.model->keepBatch({scene.of});
       return scene.detail();
     }},
    {"unavailable",
     [](Scene& scene) {
       scene.of = scene.capture();
       scene.model->markTemporaryBatch({scene.of}, TemporaryDuration::oneHour);
       scene.makeUnavailable(scene.of);
       return scene.detail();
     }},
    {"evicted", [](Scene& scene) { return evicted(scene, false, false, 0); }},
    {"evicted-elsewhere", [](Scene& scene) { return evicted(scene, false, false, 0, false); }},
    {"downloading", [](Scene& scene) { return evicted(scene, true, false, 0); }},
    {"stalled", [](Scene& scene) { return evicted(scene, true, false, 150); }},
    {"refused", [](Scene& scene) { return evicted(scene, true, true, 0); }},
    {"arrived",
     [](Scene& scene) {
       scene.of = scene.capture(kName, Scene::From::elsewhere, std::nullopt);
       return scene.detail();
     }},
    {"cropped",
     [](Scene& scene) {
       const UUID source = scene.capture(
           "Quarterly figures of the northern region with all corrections and the remarks of the third reading.png");
       scene.model
           ->saveAsNew(*scene.model->items().find(source), paintedDesktop(QSize(1280, 800), 7),
                       QRectF(96, 70, 760, 470))
           .detach();
       for (int i = 0; i < 4; ++i) scene.pass(0.1);
       scene.of = scene.model->items()[0].id;
       return scene.detail();
     }},
    {"long-name",
     [](Scene& scene) {
       scene.of = scene.capture(
           "Quarterly_figures_of_the_northern_region_with_all_corrections_and_the_remarks_of_the_third_reading.png");
       return scene.detail();
     }},
    {"reading",
     [](Scene& scene) {
       scene.analyzer.holdsReadings = true;
       scene.of = scene.capture();
       scene.presentation->showRecognizedText(*scene.model->items().find(scene.of));
       return scene.detail();
     }},
    {"renaming",
     [](Scene& scene) {
       scene.describe();
       scene.of = scene.capture();
       scene.presentation->beginRename(*scene.model->items().find(scene.of));
       return scene.detail();
     }},
    {"selection",
     [](Scene& scene) {
       UUIDSet ids;
       for (int i = 0; i < 9; ++i) ids.insert(scene.capture("Screenshot " + std::to_string(i) + ".png"));
       scene.model->keepBatch({scene.model->items()[0].id, scene.model->items()[1].id});
       scene.model->markTemporaryBatch({scene.model->items()[2].id}, TemporaryDuration::oneHour);
       scene.analyzer.holdsReadings = true;
       std::vector<ScreenshotItem> items;
       for (int i = 3; i < 7; ++i) items.push_back(scene.model->items()[static_cast<size_t>(i)]);
       scene.makeUnavailable(scene.model->items()[8].id);
       scene.presentation->extractText(items);
       scene.model->setSelectedItemIDs(ids);
       return scene.selection();
     }},
};

QImage over(QWidget& widget) {
  widget.show();
  for (int i = 0; i < 4; ++i) QCoreApplication::processEvents();
  const QPixmap shot = widget.grab();
  QImage picture(shot.size(), QImage::Format_RGB32);
  picture.setDevicePixelRatio(shot.devicePixelRatio());
  picture.fill(Theme(QApplication::palette()).isDark ? QColor(0x4a5568) : QColor(0xa8c0d8));
  QPainter(&picture).drawPixmap(0, 0, shot);
  return picture;
}

QImage symbols() {
  constexpr int kSide = 56;
  constexpr int kColumns = 10;
  symbolPixmap({}, 1, Qt::black, 1);
  const QStringList files = QDir(QStringLiteral(":/symbols")).entryList();
  const int rows = (static_cast<int>(files.size()) + kColumns - 1) / kColumns;
  QImage sheet(kColumns * kSide, rows * kSide, QImage::Format_RGB32);
  const Theme theme(QApplication::palette());
  sheet.fill(theme.card);
  QPainter painter(&sheet);
  for (int i = 0; i < files.size(); ++i) {
    const QPoint place(i % kColumns * kSide + 8, i / kColumns * kSide + 8);
    painter.drawPixmap(place, symbolPixmap(files[i].chopped(4), 40, theme.text, 1));
  }
  return sheet;
}

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs("inbox_detail_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--size WIDTH HEIGHT]\n",
               stderr);
    return 2;
  }
  if (const qsizetype texts = arguments.indexOf(QStringLiteral("--texts")); texts > 0) {
    QDir::addSearchPath(QStringLiteral("catalogues"), arguments.value(texts + 1));
  }
  QSize size(700, 760);
  if (const qsizetype at = arguments.indexOf(QStringLiteral("--size")); at > 0) {
    size = QSize(arguments.value(at + 1).toInt(), arguments.value(at + 2).toInt());
  }
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  if (arguments.contains(QStringLiteral("--rtl"))) QGuiApplication::setLayoutDirection(Qt::RightToLeft);

  const QDir folder(arguments[1]);
  QDir().mkpath(folder.path());
  bool isWhole = true;
  const auto save = [&](const QString& name, const QImage& image) {
    isWhole &= image.save(folder.filePath(name + QStringLiteral(".png")));
  };
  for (const Picture& picture : kPictures) {
    Scene scene(size);
    save(QString::fromLatin1(picture.name), picture.draw(scene));
  }
  for (const bool deletes : {false, true}) {
    for (const int count : {1, 3}) {
      Scene scene(size);
      std::vector<ScreenshotItem> items;
      for (int i = 0; i < count; ++i) scene.capture("Screenshot " + std::to_string(i) + ".png");
      scene.model->items().forEach([&](const ScreenshotItem& item) { items.push_back(item); });
      using Reason = AppModel::DisposalReason;
      scene.presentation->requestDeletion(items, deletes ? Reason::deleteImmediately : Reason::chosen);
      Alert alert(*deletionQuestion(*scene.presentation), nullptr);
      save(QStringLiteral("%1-%2").arg(deletes ? QStringLiteral("delete") : QStringLiteral("trash")).arg(count),
           over(alert));
    }
  }
  RecognizedTextSheet sheet(nullptr);
  sheet.show(std::nullopt, true);
  save(QStringLiteral("text-reading"), over(sheet));
  sheet.show(QString(), false);
  save(QStringLiteral("text-none"), over(sheet));
  sheet.show(QStringLiteral("Notes of the week\n\nThe report was built without errors. Two questions are left for "
                            "Thursday:\n– who reads the second draft\n– when the figures are due\n\n")
                 .repeated(6),
             false);
  save(QStringLiteral("text"), over(sheet));
  save(QStringLiteral("symbols"), symbols());
  return isWhole ? 0 : 1;
}
