#include "platform/linux/informing/LinkedLibraries.h"

#include <gtest/gtest.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

namespace quillmere {
namespace {

/// What another reader of such files says.
QStringList neededBy(const QString& program) {
  QProcess reader;
  reader.setEnvironment({QStringLiteral("LC_ALL=C"), QStringLiteral("PATH=") + qEnvironmentVariable("PATH")});
  reader.start(QStringLiteral("readelf"), {QStringLiteral("-d"), program});
  EXPECT_TRUE(reader.waitForFinished());
  QStringList found;
  const QRegularExpression line(QStringLiteral(R"(\(NEEDED\).*\[(.+)\])"));
  auto matches = line.globalMatch(QString::fromUtf8(reader.readAllStandardOutput()));
  while (matches.hasNext()) found.append(matches.next().captured(1));
  EXPECT_FALSE(found.isEmpty()) << program.toStdString();
  return found;
}

QStringList names(const QStringList& sonames) {
  QStringList found;
  for (const LinkedLibrary& library : LinkedLibraries::describe(sonames)) found.append(library.name);
  return found;
}

TEST(LinkedLibrariesTest, TheRunningProgramTellsWhatItNeeds) {
  EXPECT_EQ(LinkedLibraries::sonames(),
            neededBy(QStringLiteral("/proc/self/exe")
                         .replace(QStringLiteral("self"), QString::number(QCoreApplication::applicationPid()))));
}

TEST(LinkedLibrariesTest, EachLibraryOfTheProgramHasANameAndALicence) {
  const QStringList needed = neededBy(QStringLiteral(QUILLMERE_PROGRAM));
  for (const LinkedLibrary& library : LinkedLibraries::describe(needed)) {
    EXPECT_FALSE(library.licence.isEmpty())
        << library.name.toStdString() << " is to be described in LinkedLibraries.cpp";
    EXPECT_FALSE(needed.contains(library.name));
  }
}

TEST(LinkedLibrariesTest, WhatReadsPicturesNeedsNoOtherThanAreTold) {
  const QStringList program = neededBy(QStringLiteral(QUILLMERE_PROGRAM));
  const auto told = LinkedLibraries::describe(program + LinkedLibraries::sonamesOfReader());
  EXPECT_EQ(LinkedLibraries::describe(program + neededBy(QStringLiteral(QUILLMERE_READER))), told);
}

TEST(LinkedLibrariesTest, NoDecoderIsInTheProgramItself) {
  for (const QString& soname : neededBy(QStringLiteral(QUILLMERE_PROGRAM))) {
    for (const char* decoder : {"libheif", "libopencv", "libtesseract", "libleptonica"}) {
      EXPECT_FALSE(soname.startsWith(QLatin1String(decoder))) << soname.toStdString();
    }
  }
}

TEST(LinkedLibrariesTest, SeveralOfOneMakeAreToldOnceAndAllByName) {
  EXPECT_EQ(names({QStringLiteral("libxcb.so.1"), QStringLiteral("libQt6Gui.so.6"), QStringLiteral("libQt6Core.so.6"),
                   QStringLiteral("libxcb-shape.so.0"), QStringLiteral("libQt6Svg.so.6")}),
            QStringList(
                {QStringLiteral("Qt"), QStringLiteral("Qt SVG"), QStringLiteral("RapidJSON"), QStringLiteral("XCB")}));
}

TEST(LinkedLibrariesTest, WhichVersionItIsMakesNoDifference) {
  EXPECT_EQ(names({QStringLiteral("libicuuc.so.72")}), names({QStringLiteral("libicuuc.so.74")}));
  EXPECT_EQ(names({QStringLiteral("libplist-2.0.so.3")}), names({QStringLiteral("libplist-2.0.so.4")}));
}

TEST(LinkedLibrariesTest, WhatIsCompiledInIsToldToo) {
  EXPECT_EQ(LinkedLibraries::describe({}),
            std::vector({LinkedLibrary{QStringLiteral("RapidJSON"), QStringLiteral("MIT")}}));
}

TEST(LinkedLibrariesTest, OneThatNobodyDescribedGoesByItsSoname) {
  const auto libraries = LinkedLibraries::describe({QStringLiteral("libcurious.so.3"), QStringLiteral("libcc.so.1")});
  EXPECT_EQ(libraries, std::vector({LinkedLibrary{QStringLiteral("libcc.so.1"), {}},
                                    LinkedLibrary{QStringLiteral("libcurious.so.3"), {}},
                                    LinkedLibrary{QStringLiteral("RapidJSON"), QStringLiteral("MIT")}}));
}

}  // namespace
}  // namespace quillmere
