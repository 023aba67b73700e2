#include "controls/StyleIcons.h"

#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

class StyleIconsTest : public testing::DesktopLook {
 protected:
  static QImage drawn(QStyle::StandardPixmap which, Qt::LayoutDirection direction = Qt::LeftToRight,
                      QIcon::Mode mode = QIcon::Normal) {
    return styleIcon(which, direction, QApplication::palette()).pixmap(QSize(16, 16), mode).toImage();
  }
};

TEST_F(StyleIconsTest, WhatAFileDialogShowsHasASymbol) {
  for (const auto which :
       {QStyle::SP_ArrowBack, QStyle::SP_ArrowForward, QStyle::SP_FileDialogToParent, QStyle::SP_FileDialogNewFolder,
        QStyle::SP_FileDialogListView, QStyle::SP_FileDialogDetailedView, QStyle::SP_DirIcon, QStyle::SP_FileIcon,
        QStyle::SP_ComputerIcon}) {
    EXPECT_FALSE(drawn(which).isNull()) << which;
    EXPECT_FALSE(QApplication::style()->standardIcon(which).isNull());
  }
  EXPECT_TRUE(styleIcon(QStyle::SP_TrashIcon, Qt::LeftToRight, QApplication::palette()).isNull());
}

TEST_F(StyleIconsTest, BackIsWhereTheLanguageComesFrom) {
  EXPECT_EQ(drawn(QStyle::SP_ArrowBack, Qt::RightToLeft), drawn(QStyle::SP_ArrowForward));
  EXPECT_NE(drawn(QStyle::SP_ArrowBack), drawn(QStyle::SP_ArrowForward));
}

TEST_F(StyleIconsTest, EachStateHasItsColour) {
  const QImage plain = drawn(QStyle::SP_DirIcon);
  EXPECT_NE(plain, drawn(QStyle::SP_DirIcon, Qt::LeftToRight, QIcon::Selected));
  EXPECT_NE(plain, drawn(QStyle::SP_DirIcon, Qt::LeftToRight, QIcon::Disabled));
  show(of(Scheme::dark));
  EXPECT_NE(plain, drawn(QStyle::SP_DirIcon));
}

}  // namespace
}  // namespace quillmere
