#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "editor/ImageEditor.h"
#include "fakes/PictureFixture.h"

namespace quillmere::testing {

/// A model with one screenshot that awaits its decision: a picture of 100 by 80 pixels.
class EditorFixture : public PictureFixture {
 protected:
  static constexpr QRect kWindow{10, 20, 60, 40};
  static constexpr QRect kSmaller{40, 30, 20, 20};

  void SetUp() override {
    PictureFixture::SetUp();
    id = arrivePicture("Shot.png");
    file = item(id).url;
  }
  static ImageOperations::DetectedWindow window(const QRect& frame, bool isEnclosed = false) {
    ImageOperations::DetectedWindow window;
    window.frame = frame;
    window.isEnclosed = isEnclosed;
    return window;
  }
  static ImageOperations::DetectedWindow withShadow(ImageOperations::DetectedWindow window,
                                                    WindowShadowMargin::Source source) {
    window.shadow.left = window.shadow.top = window.shadow.right = window.shadow.bottom = 5;
    window.shadow.source = source;
    return window;
  }
  /// The scan that waits finds these.
  void find(const std::vector<ImageOperations::DetectedWindow>& windows) {
    executor.drain();
    scanner.answer(scanner.calls.size() - 1,
                   FakeWindowScanner::Outcome(ImageOperations::WindowScan{picture(), windows}));
    executor.drain();
  }
  /// Somebody else writes another picture under the same name.
  void rewrite() {
    const auto data = ImageOperations::encode(picture().copy(0, 0, 50, 50), PictureFormat::png);
    writeFile(file, data->toStdString());
  }
  FileURL newFile() const { return shots.appending("Shot Crop.png"); }
  bool isProtected() {
    const auto disposal = finish(model->disposeChosen(id, ErrorScope::inbox));
    return disposal == AppModel::ChosenDisposal::refused;
  }

  UUID id;
  FileURL file = shots;
};

inline constexpr const char* kObstacle =
    "Replace Original isn’t available: this screenshot’s file has moved, been renamed, or left the Inbox. Save the "
    "crop as a new screenshot instead.";
/// By what it really is: few of the widgets have names of their own in Qt's eyes.
template <typename Kind>
Kind& childOf(const QWidget& parent) {
  for (auto* child : parent.findChildren<QWidget*>()) {
    if (auto* found = dynamic_cast<Kind*>(child)) return *found;
  }
  throw std::out_of_range("no such child");
}
inline QString text(const char* words) {
  return QString::fromUtf8(words);
}

}  // namespace quillmere::testing
