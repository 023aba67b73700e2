#include "platform/linux/capture/CaptureWords.h"

#include <gtest/gtest.h>
#include <QtCore/QString>
#include <algorithm>

namespace quillmere {
namespace {

TEST(CaptureWords, AreInOrderEachOnce) {
  const auto words = captureWords();
  EXPECT_TRUE(std::adjacent_find(words.begin(), words.end(), std::greater_equal<>()) == words.end());
}

TEST(CaptureWords, AreFoldedAsNamesAre) {
  for (const auto word : captureWords()) {
    const QString text = QString::fromUtf16(word.data(), static_cast<qsizetype>(word.size()));
    EXPECT_EQ(text.normalized(QString::NormalizationForm_C).toLower().simplified(), text) << text.toStdString();
  }
}

TEST(CaptureWords, SayMoreThanADate) {
  for (const auto word : captureWords()) {
    QString text = QString::fromUtf16(word.data(), static_cast<qsizetype>(word.size()));
    EXPECT_LE(text.count(QStringLiteral("%s")), 1) << text.toStdString();
    EXPECT_GT(text.remove(QStringLiteral("%s")).trimmed().size(), 1) << text.toStdString();
  }
}

}  // namespace
}  // namespace quillmere
