#include "inbox/SymbolRow.h"

#include <gtest/gtest.h>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLayout>

#include "controls/SymbolLabel.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(SymbolRow, WithoutASymbolTheTextBeginsInItsPlace) {
  SymbolRow row(Ink::secondary, SymbolRow::Wrapping::words, nullptr);
  row.show(QStringLiteral("clock"), QStringLiteral("<b>Temporary</b>"));
  row.resize(300, 40);
  EXPECT_EQ(row.text(), QStringLiteral("<b>Temporary</b>"));
  const auto* text = row.findChild<QLabel*>();
  EXPECT_EQ(text->textFormat(), Qt::PlainText);
  row.grab();
  EXPECT_GT(text->x(), 16);
  row.show({}, QStringLiteral("Unavailable."));
  row.layout()->activate();
  EXPECT_EQ(text->x(), 0);
}

TEST(SymbolRow, TheSymbolStandsInTheMiddleOfTheFirstLine) {
  SymbolRow row(Ink::secondary, SymbolRow::Wrapping::words, nullptr);
  QFont large = row.font();
  large.setPointSize(30);
  row.setFont(large);
  row.show(QStringLiteral("clock"), QStringLiteral("Several words in lines"));
  const auto* symbol = dynamic_cast<SymbolLabel*>(row.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)[0]);
  ASSERT_TRUE(symbol);
  EXPECT_NEAR(symbol->contentsRect().center().y(), QFontMetrics(large).height() / 2.0, 2);
}

}  // namespace
}  // namespace quillmere
