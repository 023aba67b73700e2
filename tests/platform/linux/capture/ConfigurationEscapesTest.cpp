#include "platform/linux/capture/ConfigurationEscapes.h"

#include <gtest/gtest.h>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>

namespace quillmere {
namespace {

using ConfigurationEscapes::expandVariables;
using ConfigurationEscapes::readBackslashes;
using ConfigurationEscapes::readQt;
using ConfigurationEscapes::writeQt;

const QStringList kHardPaths{
    QStringLiteral("/plain"),
    QStringLiteral("/with blanks/ and more "),
    QStringLiteral("/a, b; c = d # e"),
    QStringLiteral("/100%/%20/$HOME"),
    QStringLiteral("/\"quoted\"/it's/back\\slash\\n"),
    QStringLiteral("/Übergrößen/1ä2äbc/漢字/😀f"),
    QStringLiteral("/tab\there/line\nbreak/\x7f"),
};

class HardPathTest : public ::testing::TestWithParam<QString> {
 protected:
  QTemporaryDir folder;
  QString file = folder.filePath(QStringLiteral("test.ini"));
};
INSTANTIATE_TEST_SUITE_P(All, HardPathTest, ::testing::ValuesIn(kHardPaths));

TEST_P(HardPathTest, WhatIsWrittenTheLibraryReads) {
  QFile ini(file);
  ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
  ini.write("[General]\nsavePath=" + writeQt(GetParam()).toUtf8() + "\n");
  ini.close();
  EXPECT_EQ(QSettings(file, QSettings::IniFormat).value(QStringLiteral("savePath")).toString(), GetParam());
}

TEST_P(HardPathTest, WhatTheLibraryWritesIsRead) {
  {
    QSettings settings(file, QSettings::IniFormat);
    settings.setValue(QStringLiteral("savePath"), GetParam());
  }
  QFile ini(file);
  ASSERT_TRUE(ini.open(QIODevice::ReadOnly));
  const QString text = QString::fromUtf8(ini.readAll());
  const QString start = QStringLiteral("[General]\nsavePath=");
  ASSERT_TRUE(text.startsWith(start)) << text.toStdString();
  EXPECT_EQ(readQt(text.mid(start.size()).chopped(1)), GetParam().toStdString());
}

TEST_P(HardPathTest, WhatIsWrittenIsOneLineOfASCIIAndIsReadAgain) {
  const QString text = writeQt(GetParam());
  for (const QChar c : text) EXPECT_TRUE(c.unicode() >= 0x20 && c.unicode() < 0x7f);
  EXPECT_EQ(text.trimmed(), text);
  EXPECT_EQ(readQt(text), GetParam().toStdString());
}

TEST(ReadQtTest, AListOfTextsIsNoFolder) {
  EXPECT_EQ(readQt(QStringLiteral("/a, /b")), std::nullopt);
  EXPECT_EQ(readQt(QStringLiteral("\"/a, /b\"")), "/a, /b");
}

TEST(ReadQtTest, BothNumberFormsAreUnderstood) {
  EXPECT_EQ(readQt(QStringLiteral("/\\xe4\\344")), "/ää");
}

TEST(ReadQtTest, BrokenEscapesAreLeftOut) {
  EXPECT_EQ(readQt(QStringLiteral("/a\\")), "/a");
  EXPECT_EQ(readQt(QStringLiteral("/a\\q")), "/a");
  EXPECT_EQ(readQt(QString()), "");
}

TEST(ReadBackslashesTest, BlanksLineBreaksAndBytes) {
  EXPECT_EQ(readBackslashes(QStringLiteral("\\sa\\tb\\nc\\r\\\\")), " a\tb\nc\r\\");
  EXPECT_EQ(readBackslashes(QStringLiteral("/\\xc3\\xa4b")), "/äb");
  EXPECT_EQ(readBackslashes(QStringLiteral("/ä\\q\\")), "/ä\\q\\");
}

TEST(ExpandVariablesTest, TheHomeIsTheOneGiven) {
  const FileURL home = FileURL::fromPath("/home/a");
  EXPECT_EQ(expandVariables("$HOME/b", home), "/home/a/b");
  EXPECT_EQ(expandVariables("file://${HOME}/b", home), "file:///home/a/b");
}

TEST(ExpandVariablesTest, OthersComeFromTheEnvironment) {
  ::setenv("QUILLMERE_TEST_FOLDER", "/c", 1);
  EXPECT_EQ(expandVariables("$QUILLMERE_TEST_FOLDER/d", {}), "/c/d");
  ::unsetenv("QUILLMERE_TEST_FOLDER");
  EXPECT_EQ(expandVariables("$QUILLMERE_TEST_FOLDER/d", {}), "/d");
}

TEST(ExpandVariablesTest, ADollarSignStandsForItselfWhenDoubledOrAlone) {
  EXPECT_EQ(expandVariables("/a$$HOME/$ b/$", {}), "/a$HOME/$ b/$");
}

}  // namespace
}  // namespace quillmere
