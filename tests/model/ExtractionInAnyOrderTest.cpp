#include <filesystem>
#include <random>

#include "fakes/ModelFixture.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageOperations.h"
#include "reading/ImageWriting.h"

// Extract Window, decisions, copies and what other programs do to the files meanwhile, in any order. Whatever happens,
// no picture is lost: each is in the folder or in the Trash as it was, unless the test itself deleted it.

namespace quillmere::testing {
namespace {

constexpr int kSeeds = 150;
constexpr int kSteps = 40;
const QRectF kWindow(5, 5, 20, 10);

class ExtractionInAnyOrder : public ModelFixture {
 protected:
  void begin(unsigned seed) {
    random_.seed(seed);
    setSettings(R"({"quillmere.popup-autosave": true, "quillmere.popup-seconds": 3})");
    launchWatching();
  }
  uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

  std::string newPicture() {
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(QColor::fromRgb(random_() & 0xFFFFFFU));
    return ImageOperations::encode(image, PictureFormat::png).value().toStdString();
  }
  void capture() {
    const FileURL url = shots.appending("shot " + std::to_string(++captures_) + ".png");
    const std::string bytes = newPicture();
    pictures_.insert(bytes);
    writeFile(url, bytes);
    monitor.onScreenshot(url);
  }
  void toggle(const UUID& id) { model->setPromptWindowExtraction(item(id), below(3) != 0).detach(); }
  void answerScan() {
    std::vector<size_t> open;
    for (size_t i = 0; i < scanner.calls.size(); ++i) {
      if (scanner.calls[i]->waiter) open.push_back(i);
    }
    if (open.empty()) return;
    const size_t call = open[below(static_cast<uint32_t>(open.size()))];
    const auto image = ImageOperations::loadImage(scanner.calls[call]->url);
    if (!image || below(8) == 0) {
      scanner.answer(call, ImageOperations::OperationError::unreadable);
    } else {
      scanner.answer(call, *image, below(4) == 0 ? std::nullopt : std::optional(kWindow));
    }
  }
  /// Another program saves its own picture under the name, or deletes the file.
  void interfere(const UUID& id) {
    const FileURL url = item(id).url;
    if (!fileExists(url)) return;
    pictures_.erase(readBytes(url));
    if (below(3) == 0) {
      std::filesystem::remove(url.path());
      reportRemoval({url});
    } else {
      const std::string bytes = newPicture();
      pictures_.insert(bytes);
      writeFile(url, bytes);
    }
  }
  void step() {
    const auto head = model->prompts().queue->empty() ? std::nullopt : std::optional(model->prompts().queue->front());
    switch (below(15)) {
      case 0:
      case 1:
        return capture();
      case 2:
        return answerScan();
      case 3:
        return executor.holdBackground();
      case 4:
        return executor.runHeldBackground();
      case 5:
        return executor.drain();
      case 6:
        return advance(2);
      case 7:
        return model->setShowPopupThumbnail(below(4) != 0);
      default:
        break;
    }
    if (!head) return;
    switch (below(14)) {
      case 0:
      case 1:
      case 2:
        return toggle(*head);
      case 3:
        return model->keepPrompt(*head, below(2) == 0 ? std::nullopt : std::optional(QStringLiteral("Named"))).detach();
      case 4:
        return model->markTemporary(*head, TemporaryDuration::oneHour).detach();
      case 5:
        return model->dismissPrompt();
      case 6:
        return model->copy(item(*head), ErrorScope::popup).detach();
      case 7:
        return model->disposeItem(item(*head), ErrorScope::popup, AppModel::DisposalReason::chosen).detach();
      case 8:
        return interfere(*head);
      default: {
        // What a person does: the window, and Keep.
        toggle(*head);
        answerScan();
        return model->keepPrompt(*head).detach();
      }
    }
  }
  void expectExtractionIsOfTheHead() const {
    const auto& extraction = *model->windowExtraction().state;
    if (extraction) {
      EXPECT_EQ(extraction->itemID, model->prompts().queue->front());
    }
  }
  std::multiset<std::string> bytesIn(const FileURL& folder) const {
    std::multiset<std::string> found;
    if (!fileExists(folder)) return found;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      found.insert(readBytes(FileURL::fromPath(entry.path().native())));
    }
    return found;
  }
  void settle() {
    executor.runHeldBackground();
    for (size_t i = 0; i < scanner.calls.size(); ++i) {
      if (scanner.calls[i]->waiter) scanner.answer(i, ImageOperations::OperationError::unreadable);
    }
    executor.drain();
  }
  void expectNothingIsLost() const {
    const auto kept = bytesIn(shots);
    const auto trashed = bytesIn(trash);
    for (const std::string& picture : pictures_) EXPECT_TRUE(kept.contains(picture) || trashed.contains(picture));
    for (const auto& entry : std::filesystem::directory_iterator(shots.path())) {
      EXPECT_FALSE(entry.path().filename().native().starts_with(ImageOperations::kReplacementPrefix));
    }
    model->items().forEach([&](const ScreenshotItem& record) {
      if (!model->unavailableItemIDs->contains(record.id)) {
        EXPECT_TRUE(fileExists(record.url)) << record.url.path();
      }
    });
  }

 private:
  std::mt19937 random_;
  int captures_ = 0;
  std::set<std::string> pictures_;
};

class EverySeed : public ExtractionInAnyOrder, public ::testing::WithParamInterface<int> {};

TEST_P(EverySeed, LosesNoPicture) {
  begin(static_cast<unsigned>(GetParam()));
  for (int i = 0; i < kSteps && !HasFailure(); ++i) {
    step();
    expectExtractionIsOfTheHead();
  }
  settle();
  reconcileAll();
  expectNothingIsLost();
}

INSTANTIATE_TEST_SUITE_P(ExtractionInAnyOrder, EverySeed, ::testing::Range(1, kSeeds + 1));

}  // namespace
}  // namespace quillmere::testing
