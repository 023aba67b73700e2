#include "recognition/LineText.h"

#include <gtest/gtest.h>

#include "recognition/DrawnText.h"

namespace quillmere {
namespace {

using testing::DrawnText;

constexpr int kCell = 10;
constexpr int kHeight = 20;

/// A line of letters that stand in cells, where the text has any. The ink of signs is drawn by the tests.
class Typed {
 public:
  explicit Typed(const QString& text) {
    for (int i = 0; i < text.size(); ++i) {
      if (text[i] == u' ') continue;
      if (text[i].isLetter()) drawn.fill({left(i), 20, 6, kHeight});
      symbols.push_back({text[i], 1.0 * left(i), left(i) + 6.0, i > 0 && text[i - 1] == u' '});
    }
  }
  static int left(int cell) { return 20 + kCell * cell; }
  LineText text() const {
    const auto lines = drawn.lines();
    EXPECT_EQ(lines.size(), 1u);
    return lines.empty() ? LineText() : lineText(lines[0], textMarks(lines[0]), symbols);
  }
  DrawnText drawn{{600, 100}};
  std::vector<ReadSymbol> symbols;
};

TEST(LineText, OfCellsKnowsHowFarTheyAreApart) {
  const LineText text = Typed("return window").text();
  EXPECT_EQ(text.text, "return window");
  EXPECT_NEAR(text.advance, kCell, 0.1);
}

TEST(LineText, OfCellsHasSpacesWhereNoInkIs) {
  Typed typed("import stdmap");
  typed.symbols[8].beginsWord = true;
  EXPECT_EQ(typed.text().text, "import stdmap") << "the engine saw one that is not there";
  Typed apart("column  other");
  EXPECT_EQ(apart.text().text, "column  other");
}

TEST(LineText, UnderscoresThatTouchAreCounted) {
  Typed typed("if  name  equals");
  typed.drawn.fill({Typed::left(2) + 8, 42, 10, 1});
  EXPECT_EQ(typed.text().text, "if _name  equals");
  Typed two("if    name equals");
  two.drawn.fill({Typed::left(4) - 2, 42, 20, 1});
  EXPECT_EQ(two.text().text, "if  __name equals");
}

TEST(LineText, ALongRowIsAsLongAsItsInk) {
  Typed typed("heading and more");
  for (int i = 17; i < 40; ++i) typed.drawn.fill({Typed::left(i), 30, 6, 1});
  EXPECT_EQ(typed.text().text, "heading and more " + QString(23, '-'));
}

TEST(LineText, OfCellsHasQuotesAsTheyAreTyped) {
  Typed typed("window x keyboard");
  typed.symbols[6].text = QStringLiteral("‘");
  EXPECT_EQ(typed.text().text, "window ' keyboard");
}

TEST(LineText, OfCellsHasASignAsOftenAsItsInk) {
  Typed typed("mobile && table");
  for (int cell : {7, 8})
    typed.drawn.fill({Typed::left(cell), 20, 6, kHeight}).fill({Typed::left(cell) + 2, 24, 2, 3}, qRgb(255, 255, 255));
  typed.symbols.erase(typed.symbols.begin() + 7);
  EXPECT_EQ(typed.text().text, "mobile && table");
}

TEST(LineText, OfOtherTextIsWhatTheEngineRead) {
  DrawnText drawn({600, 100});
  std::vector<ReadSymbol> symbols;
  int x = 20, width = 4;
  for (const QChar letter : QString("Proportional")) {
    drawn.fill({x, 20, width, 12});
    symbols.push_back({letter, 1.0 * x, 1.0 * x + width, false});
    x += width + 2;
    width = 3 + width * 5 % 11;
  }
  symbols[3].beginsWord = true;
  symbols[5].text = QStringLiteral("’");
  const auto lines = drawn.lines();
  ASSERT_EQ(lines.size(), 1u);
  const LineText text = lineText(lines[0], textMarks(lines[0]), symbols);
  EXPECT_EQ(text.advance, 0);
  EXPECT_EQ(text.text, "Pro po’tional");
}

TEST(LineText, OfNothingIsEmpty) {
  EXPECT_EQ(lineText(TextLine(), {}, {}).text, QString());
}

}  // namespace
}  // namespace quillmere
