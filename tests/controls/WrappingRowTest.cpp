#include "controls/WrappingRow.h"

#include <gtest/gtest.h>
#include <QtWidgets/QWidget>

namespace quillmere {
namespace {

class WrappingRowTest : public ::testing::Test {
 protected:
  QWidget* box(int width) {
    auto* box = new QWidget(&pane);
    box->setFixedSize(width, 20);
    row->addWidget(box);
    return box;
  }
  void layOut(int width) {
    pane.resize(width, 200);
    row->setGeometry(QRect(0, 0, width, 200));
  }
  QWidget pane;
  WrappingRow* row = nullptr;
  WrappingRowTest() { align(Qt::AlignLeading); }
  void align(Qt::Alignment alignment) {
    delete row;
    row = new WrappingRow(8, alignment);
    pane.setLayout(row);
  }
};

TEST_F(WrappingRowTest, GoesOnInAFurtherLineWhereThereIsNoRoom) {
  const QWidget* first = box(100);
  const QWidget* second = box(100);
  const QWidget* third = box(60);
  EXPECT_EQ(row->heightForWidth(300), 20);
  EXPECT_EQ(row->heightForWidth(208), 48);
  EXPECT_EQ(row->heightForWidth(110), 76);
  EXPECT_EQ(row->minimumSize().width(), 100);
  layOut(208);
  EXPECT_EQ(first->pos(), QPoint(0, 0));
  EXPECT_EQ(second->pos(), QPoint(108, 0));
  EXPECT_EQ(third->pos(), QPoint(0, 28));
}

TEST_F(WrappingRowTest, WhatIsHiddenTakesNoRoom) {
  QWidget* first = box(100);
  const QWidget* second = box(100);
  first->hide();
  EXPECT_EQ(row->sizeHint(), QSize(100, 20));
  layOut(120);
  EXPECT_EQ(second->pos(), QPoint(0, 0));
}

TEST_F(WrappingRowTest, BeginsAtTheRightWhereLinesDo) {
  const QWidget* first = box(100);
  pane.setLayoutDirection(Qt::RightToLeft);
  layOut(300);
  EXPECT_EQ(first->x(), 200);
}

TEST_F(WrappingRowTest, EndsAtTheTrailingEdgeWhereItIsToldTo) {
  align(Qt::AlignTrailing);
  const QWidget* first = box(100);
  const QWidget* second = box(100);
  const QWidget* third = box(60);
  layOut(220);
  EXPECT_EQ(first->x(), 12);
  EXPECT_EQ(second->x(), 120);
  EXPECT_EQ(third->x(), 160);
  pane.setLayoutDirection(Qt::RightToLeft);
  layOut(220);
  EXPECT_EQ(third->x(), 0);
}

TEST_F(WrappingRowTest, JustifiedTheLastStandsAtTheTrailingEdgeInWhicheverLine) {
  align(Qt::AlignJustify);
  const QWidget* first = box(100);
  const QWidget* last = box(60);
  layOut(300);
  EXPECT_EQ(first->pos(), QPoint(0, 0));
  EXPECT_EQ(last->pos(), QPoint(240, 0));
  layOut(150);
  EXPECT_EQ(first->pos(), QPoint(0, 0));
  EXPECT_EQ(last->pos(), QPoint(90, 28));
}

}  // namespace
}  // namespace quillmere
