#include "inbox/ShowOriginalButton.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(ShowOriginalButton, IsNamedAfterTheWholeSentence) {
  ShowOriginalButton button(nullptr);
  button.setOriginal(QStringLiteral("a <b>b</b> “c” %@"));
  EXPECT_EQ(button.accessibleName(), QStringLiteral("Cropped from “a <b>b</b> “c” %@”."));
  EXPECT_EQ(button.toolTip(), QStringLiteral("Select the screenshot this one was cropped from"));
}

TEST(ShowOriginalButton, ALongNameGoesOnInFurtherLines) {
  ShowOriginalButton button(nullptr);
  button.setOriginal(QStringLiteral("Short"));
  const int line = button.heightForWidth(600);
  EXPECT_EQ(button.heightForWidth(300), line);
  button.setOriginal(QString(200, QLatin1Char('n')));
  EXPECT_GE(button.heightForWidth(300), 3 * line);
  EXPECT_LE(button.minimumSizeHint().width(), 120) << "it never widens its window";
}

TEST(ShowOriginalButton, LineBreaksAndDirectionsOfANameStayItsOwn) {
  ShowOriginalButton plain(nullptr);
  plain.setOriginal(QStringLiteral("a b"));
  ShowOriginalButton broken(nullptr);
  broken.setOriginal(QStringLiteral("a\u2028b"));
  EXPECT_EQ(broken.heightForWidth(600), plain.heightForWidth(600));
  ShowOriginalButton turned(nullptr);
  turned.setOriginal(QStringLiteral("\u202ea b"));
  turned.resize(400, 30);
  EXPECT_FALSE(turned.grab().isNull());
}

}  // namespace
}  // namespace quillmere
