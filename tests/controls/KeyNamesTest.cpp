#include "controls/KeyNames.h"

#include <gtest/gtest.h>
#include <QtGui/QKeySequence>
#include <QtWidgets/QApplication>

#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(KeyNames, TheSuperKeyIsCalledSuper) {
  const QKeySequence keys(Qt::META | Qt::CTRL | Qt::Key_B);
  ASSERT_TRUE(keys.toString(QKeySequence::NativeText).contains(QStringLiteral("Meta")));
  KeyNames names;
  QCoreApplication::installTranslator(&names);
  const QString text = keys.toString(QKeySequence::NativeText);
  const QString stored = keys.toString(QKeySequence::PortableText);
  QCoreApplication::removeTranslator(&names);
  EXPECT_TRUE(text.contains(QStringLiteral("Super+"))) << text.toStdString();
  EXPECT_FALSE(text.contains(QStringLiteral("Meta")));
  EXPECT_TRUE(stored.contains(QStringLiteral("Meta"))) << "what is read again stays as it is";
}

TEST(KeyNames, NothingElseIsTranslated) {
  const KeyNames names;
  EXPECT_FALSE(names.isEmpty());
  EXPECT_TRUE(names.translate("QShortcut", "Ctrl", nullptr, -1).isNull());
  EXPECT_TRUE(names.translate("Another", "Meta", nullptr, -1).isNull());
}

}  // namespace
}  // namespace quillmere
