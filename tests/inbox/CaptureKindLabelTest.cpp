#include "inbox/CaptureKindLabel.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(CaptureKindLabel, SaysWhatWasTakenAndShowsItsSymbol) {
  CaptureKindLabel label(nullptr);
  QList<QImage> pictures;
  const std::pair<CaptureKind, const char*> rows[] = {{CaptureKind::display, "Entire screen"},
                                                      {CaptureKind::window, "Window"},
                                                      {CaptureKind::selection, "Selected portion"}};
  for (const auto& [kind, text] : rows) {
    label.show(kind);
    EXPECT_EQ(label.text(), QString::fromUtf8(text));
    label.resize(200, 24);
    const QImage picture = label.grab(QRect(0, 0, 20, 24)).toImage();
    EXPECT_FALSE(pictures.contains(picture)) << text;
    pictures += picture;
  }
}

}  // namespace
}  // namespace quillmere
