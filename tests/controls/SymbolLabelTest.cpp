#include "controls/SymbolLabel.h"

#include <QtCore/QEvent>

#include "controls/DesktopLook.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class SymbolLabelTest : public testing::DesktopLook {};

TEST_F(SymbolLabelTest, ASymbolIsDrawnInTheInkOfNow) {
  SymbolLabel symbol(48, Ink::warning, nullptr, QStringLiteral("photo"));
  symbol.resize(symbol.sizeHint());
  for (const Scheme scheme : {Scheme::light, Scheme::dark}) {
    show(of(scheme));
    EXPECT_TRUE(shows(symbol, theme().warning));
    EXPECT_FALSE(shows(symbol, theme().danger));
  }
  symbol.setSymbol(QStringLiteral("photo"), Ink::danger);
  EXPECT_TRUE(shows(symbol, theme().danger));
}

TEST_F(SymbolLabelTest, IsAsLargeAsItsSymbolAndItsMargins) {
  SymbolLabel symbol(18, Ink::secondary, nullptr, QStringLiteral("photo"));
  EXPECT_EQ(symbol.sizeHint(), QSize(18, 18));
  symbol.setContentsMargins(1, 5, 2, 0);
  EXPECT_EQ(symbol.sizeHint(), QSize(21, 23));
  EXPECT_EQ(symbol.minimumSizeHint(), symbol.sizeHint()) << "a row that is too narrow takes from the text";
}

TEST_F(SymbolLabelTest, ItsMarginsStayEmpty) {
  SymbolLabel symbol(18, Ink::danger, nullptr, QStringLiteral("checkmark.circle.fill"));
  symbol.setContentsMargins(0, 30, 0, 0);
  symbol.resize(symbol.sizeHint());
  const QImage image = picture(symbol);
  EXPECT_EQ(image.copy(0, 0, 18, 30), [] {
    QWidget empty;
    empty.resize(18, 30);
    return picture(empty);
  }());
  EXPECT_TRUE(shows(symbol, theme().danger));
}

TEST_F(SymbolLabelTest, AClickGoesThroughIt) {
  QWidget row;
  row.resize(100, 40);
  SymbolLabel symbol(18, Ink::secondary, &row, QStringLiteral("photo"));
  symbol.setGeometry(0, 0, 18, 18);
  EXPECT_TRUE(symbol.testAttribute(Qt::WA_TransparentForMouseEvents));
  EXPECT_EQ(row.childAt(9, 9), nullptr);
}

TEST_F(SymbolLabelTest, TheSameAgainIsNotDrawnAgain) {
  class Paints : public QObject {
   public:
    int count = 0;
    bool eventFilter(QObject*, QEvent* event) override {
      count += event->type() == QEvent::Paint;
      return false;
    }
  } paints;
  SymbolLabel symbol(18, Ink::secondary, nullptr, QStringLiteral("photo"));
  symbol.installEventFilter(&paints);
  symbol.show();
  ASSERT_TRUE(testing::runLoopUntil([&] { return paints.count > 0; }));
  const int count = paints.count;
  symbol.setSymbol(QStringLiteral("photo"));
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.count, count);
  symbol.setSymbol(QStringLiteral("trash"));
  ASSERT_TRUE(testing::runLoopUntil([&] { return paints.count > count; }));
}

}  // namespace
}  // namespace quillmere
