#include "platform/linux/sharing/ShareablePrograms.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstdlib>

#include "support/EventLoop.h"
#include "support/Files.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

using testing::runLoopUntil;
using testing::writeFile;

/// Programs for a type of picture that nothing else on this computer takes.
class ShareableProgramsTest : public ::testing::Test {
 protected:
  ShareableProgramsTest() { std::filesystem::create_directories(applications.path()); }
  ~ShareableProgramsTest() override {
    for (const std::string& id : ids) std::filesystem::remove(applications.appending(id).path());
    std::filesystem::remove(list().path());
  }
  FileURL list() const { return applications.appending("mimeapps.list"); }
  void install(const std::string& id, const std::string& entry) {
    ids.push_back(id);
    writeFile(applications.appending(id), "[Desktop Entry]\nType=Application\nMimeType=image/x-quillmere;\n" + entry);
  }
  /// Once the last one is known, all are; those of the test before may be known for a while too.
  std::vector<ShareTarget> found() {
    static int count = 0;
    const std::string last = "last-" + std::to_string(++count) + ".desktop";
    install(last, "Name=Last\nIcon=last\nExec=true last %f\n");
    std::string associations;
    for (const std::string& id : ids) associations += id + ";";
    writeFile(list(), "[Added Associations]\nimage/x-quillmere=" + associations + "\n" + alsoTakes + "\n");
    std::vector<ShareTarget> targets;
    EXPECT_TRUE(runLoopUntil([&] {
      targets = ShareablePrograms::find({QStringLiteral("image/x-quillmere")});
      return !targets.empty() && targets.back().id.toStdString() == last;
    }));
    if (!targets.empty()) targets.pop_back();
    return targets;
  }
  QStringList names() {
    QStringList all;
    for (const ShareTarget& target : found()) all += target.name;
    return all;
  }

  FileURL applications = FileURL::fromPath(std::getenv("XDG_DATA_HOME")).appending("applications");
  std::vector<std::string> ids;
  std::string alsoTakes;  ///< a line of associations
};

TEST_F(ShareableProgramsTest, OffersProgramsAsTheirMakersCallThem) {
  install("photos.desktop", "Name=Photos\nIcon=photos\nExec=true photos %f\n");
  install("writer.desktop", "Name=Letters\nIcon=/icons/writer.png\nCategories=Network;Email;\nExec=true letters %f\n");
  const auto targets = found();
  ASSERT_EQ(targets.size(), 2u);
  EXPECT_EQ(targets[0].id, QStringLiteral("photos.desktop"));
  EXPECT_EQ(targets[0].name, QStringLiteral("Photos"));
  EXPECT_EQ(targets[0].icon, QStringLiteral("photos"));
  EXPECT_EQ(targets[0].group, ShareTarget::Group::program);
  EXPECT_EQ(targets[1].icon, QStringLiteral("/icons/writer.png"));
  EXPECT_EQ(targets[1].group, ShareTarget::Group::mail);
}

TEST_F(ShareableProgramsTest, LeavesOutWhatNoPersonWouldChoose) {
  install("no-icon.desktop", "Name=No Icon\nExec=true 1 %f\n");
  install("hidden.desktop", "Name=Hidden\nIcon=x\nNoDisplay=true\nExec=true 2 %f\n");
  install("removed.desktop", "Name=Removed\nIcon=x\nHidden=true\nExec=true 3 %f\n");
  install("terminal.desktop", "Name=Terminal\nIcon=x\nTerminal=true\nExec=true 4 %f\n");
  install("elsewhere.desktop", "Name=Elsewhere\nIcon=x\nOnlyShowIn=OtherDesktop;\nExec=true 5 %f\n");
  install("options.desktop", "Name=Tool (color depth=16)\nIcon=x\nExec=true 6 %f\n");
  install("path.desktop", "Name=/usr/bin/tool\nIcon=x\nExec=true 7 %f\n");
  install("identifier.desktop", "Name=org.example.Tool\nIcon=x\nExec=true 8 %f\n");
  install("com.quillmere.app.desktop", "Name=Ourselves\nIcon=x\nExec=true 9 %f\n");
  EXPECT_EQ(names(), QStringList());
}

TEST_F(ShareableProgramsTest, OffersEachOnce) {
  install("one.desktop", "Name=Viewer\nIcon=x\nExec=true viewer %f\n");
  install("namesake.desktop", "Name= VIEWER \nIcon=x\nExec=true other %f\n");
  install("other-name.desktop", "Name=Other Name\nIcon=x\nExec=true viewer %f\n");
  EXPECT_EQ(names(), QStringList(QStringLiteral("Viewer")));
}

TEST_F(ShareableProgramsTest, OfNoTypeNobodyTakesAnything) {
  EXPECT_TRUE(ShareablePrograms::find({}).empty());
}

TEST_F(ShareableProgramsTest, ANamesakeThatTakesLessHidesNobody) {
  install("less.desktop", "Name=Viewer\nIcon=x\nExec=true less %f\n");
  install("more.desktop", "Name=Viewer\nIcon=x\nExec=true more %f\n");
  alsoTakes = "image/x-other=more.desktop;";
  ASSERT_EQ(found().size(), 1u);
  const auto both = ShareablePrograms::find({QStringLiteral("image/x-quillmere"), QStringLiteral("image/x-other")});
  ASSERT_EQ(both.size(), 1u);
  EXPECT_EQ(both[0].id, QStringLiteral("more.desktop"));
}

TEST_F(ShareableProgramsTest, BadFilesDoNoHarm) {
  install("markup.desktop", "Name=<b>A</b> & <i>B</i>\nIcon=x\nExec=true a %f\n");
  install("lines.desktop", "Name=Two\\nlines\\tand a tab\nIcon=x\nExec=true b %f\n");
  install("huge.desktop", "Name=" + std::string(1 << 20, 'n') + "\nIcon=x\nExec=true c %f\n");
  install("broken.desktop", "Name=Broken\nIcon=x\nExec=true \"unclosed %f\n");
  install("nothing.desktop", "Name=Nothing\nIcon=x\nExec=/no/such/program %f\n");
  install("no-command.desktop", "Name=No Command\nIcon=x\n");
  install("bytes.desktop", "Name=\xFF\xFE\nIcon=\xFF\nExec=true d %f\n");
  ids.push_back("no-file.desktop");
  const QStringList all = names();
  ASSERT_GE(all.size(), 3);
  EXPECT_EQ(all[0], QStringLiteral("<b>A</b> & <i>B</i>"));
  EXPECT_EQ(all[1], QStringLiteral("Two lines and a tab"));
  EXPECT_EQ(all[2].size(), 200);
  for (const char* name : {"Broken", "Nothing", "No Command"}) EXPECT_FALSE(all.contains(QLatin1String(name))) << name;
}

TEST_F(ShareableProgramsTest, KnowsWhichAreNotInstalledAnyMore) {
  install("there.desktop", "Name=There\nIcon=x\nExec=true there %f\n");
  found();
  EXPECT_EQ(ShareablePrograms::missing({QStringLiteral("gone.desktop"), QStringLiteral("there.desktop"), QString(),
                                        QStringLiteral("../../etc/passwd")}),
            QStringList({QStringLiteral("gone.desktop"), QString(), QStringLiteral("../../etc/passwd")}));
}

}  // namespace
}  // namespace quillmere
