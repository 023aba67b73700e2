#include "popup/AdaptiveActionRow.h"

#include <gtest/gtest.h>
#include <QtWidgets/QWidget>

namespace quillmere {
namespace {

using Distribution = AdaptiveActionRow::Distribution;

/// A control as wide and high as it says.
class Control final : public QWidget {
 public:
  explicit Control(int width) : width_(width) {}
  QSize sizeHint() const override { return {width_, 30}; }
  QSize minimumSizeHint() const override { return sizeHint(); }

 private:
  int width_;
};

struct Row {
  Row(Distribution distribution, const std::vector<int>& widths) : layout(new AdaptiveActionRow(distribution)) {
    layout->setContentsMargins(0, 0, 0, 0);
    parent.setLayout(layout);
    for (const int width : widths) layout->addWidget(new Control(width));
  }
  std::vector<QRect> placed(int width) {
    layout->setGeometry(QRect(0, 0, width, layout->heightForWidth(width)));
    std::vector<QRect> places;
    for (int i = 0; i < layout->count(); ++i) places.push_back(layout->itemAt(i)->geometry());
    return places;
  }
  QWidget parent;
  AdaptiveActionRow* layout;
};

TEST(AdaptiveActionRow, GivesAllTheSameWidthWhereTheWidestFits) {
  Row row(Distribution::equalWidths, {100, 60, 60});
  EXPECT_EQ(row.layout->heightForWidth(408), 30);
  EXPECT_EQ(row.placed(408),
            (std::vector<QRect>{QRect(0, 0, 130, 30), QRect(138, 0, 131, 30), QRect(277, 0, 131, 30)}));
}

TEST(AdaptiveActionRow, SharesWhatIsLeftWhereOneTextIsTooLongForThat) {
  Row row(Distribution::equalWidths, {200, 60, 60});
  const auto places = row.placed(408);
  EXPECT_EQ(places.front().left(), 0);
  EXPECT_EQ(places.back().right(), 407);
  EXPECT_GE(places[0].width(), 200);
  EXPECT_GE(places[1].width(), 60);
  EXPECT_EQ(places[1].left(), places[0].right() + 1 + 8);
}

TEST(AdaptiveActionRow, PutsTwoColumnsBelowTheFirstOfThreeThatDoNotFitSideBySide) {
  Row row(Distribution::equalWidths, {200, 120, 120});
  EXPECT_EQ(row.layout->heightForWidth(408), 2 * 30 + 8);
  EXPECT_EQ(row.placed(408),
            (std::vector<QRect>{QRect(0, 0, 408, 30), QRect(0, 38, 200, 30), QRect(208, 38, 200, 30)}));
}

TEST(AdaptiveActionRow, PutsFourIntoTwoColumns) {
  Row row(Distribution::equalWidths, {120, 120, 120, 120});
  EXPECT_EQ(row.placed(408), (std::vector<QRect>{QRect(0, 0, 200, 30), QRect(208, 0, 200, 30), QRect(0, 38, 200, 30),
                                                 QRect(208, 38, 200, 30)}));
}

TEST(AdaptiveActionRow, StacksWhatFitsIntoNoColumns) {
  Row row(Distribution::equalWidths, {100, 250, 250});
  EXPECT_EQ(row.layout->heightForWidth(408), 3 * 30 + 2 * 8);
  EXPECT_EQ(row.placed(408), (std::vector<QRect>{QRect(0, 0, 408, 30), QRect(0, 38, 408, 30), QRect(0, 76, 408, 30)}));
}

TEST(AdaptiveActionRow, FitsToThePoint) {
  Row row(Distribution::equalWidths, {200, 200});
  EXPECT_EQ(row.layout->heightForWidth(408), 30);
  EXPECT_EQ(row.layout->heightForWidth(407), 68);
}

TEST(AdaptiveActionRow, WouldLikeToBeAsWideAsAllSideBySide) {
  EXPECT_EQ(Row(Distribution::equalWidths, {200, 60, 60}).layout->sizeHint(), QSize(336, 30));
  EXPECT_EQ(Row(Distribution::leadingAndTrailing, {150}).layout->sizeHint(), QSize(150, 30));
}

TEST(AdaptiveActionRow, PutsTheFirstAtOneEdgeAndTheLastAtTheOther) {
  Row row(Distribution::leadingAndTrailing, {150, 100});
  EXPECT_EQ(row.placed(408), (std::vector<QRect>{QRect(0, 0, 150, 30), QRect(308, 0, 100, 30)}));
}

TEST(AdaptiveActionRow, MirrorsWhereLanguageRunsFromTheRight) {
  Row row(Distribution::leadingAndTrailing, {150, 100});
  row.parent.setLayoutDirection(Qt::RightToLeft);
  EXPECT_EQ(row.placed(408), (std::vector<QRect>{QRect(258, 0, 150, 30), QRect(0, 0, 100, 30)}));
}

TEST(AdaptiveActionRow, StacksTheEdgesToo) {
  Row row(Distribution::leadingAndTrailing, {300, 150});
  EXPECT_EQ(row.placed(408), (std::vector<QRect>{QRect(0, 0, 408, 30), QRect(0, 38, 408, 30)}));
}

}  // namespace
}  // namespace quillmere
