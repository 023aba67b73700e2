#include "platform/linux/capture/CaptureTool.h"

#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::readBytes;
using testing::writeFile;

class CaptureToolTest : public ::testing::Test {
 protected:
  FileURL folderOf(std::string_view name) {
    const FileURL url = folder.file(name);
    std::filesystem::create_directories(url.path());
    return url;
  }
  /// One that writes paths as they are and finds only folders that there are.
  FileCaptureTool plainTool(bool hasBareBytes = false) const {
    FolderNotation notation;
    notation.read = [](const QString& text, bool) {
      const FileURL url = FileURL::fromPath(text);
      return std::filesystem::exists(url.path()) ? std::optional(url) : std::nullopt;
    };
    notation.write = [](const FileURL& url) { return url.displayPath(); };
    notation.hasBareBytes = hasBareBytes;
    return FileCaptureTool(file, {"General", "folder"}, notation, {standard});
  }

  testing::TemporaryFolder folder;
  FileURL file = folder.file("toolrc");
  FileURL standard = folderOf("standard");
};

TEST_F(CaptureToolTest, OneWithoutConfigurationSavesInTheFirstFolderThatThereIs) {
  const CaptureTool tool({folder.file("missing"), standard, folderOf("other")});
  EXPECT_EQ(tool.folder(), standard);
  EXPECT_FALSE(tool.isConfigured());
  EXPECT_FALSE(tool.canChange());
  EXPECT_EQ(tool.rawValue(), std::nullopt);
  EXPECT_FALSE(tool.tryToSetRawValue(QStringLiteral("/somewhere")));
  EXPECT_EQ(CaptureTool({folder.file("missing")}).folder(), std::nullopt);
}

TEST_F(CaptureToolTest, AFileIsReadAndWrittenAtItsKeyAlone) {
  const FileURL chosen = folderOf("chosen");
  const auto tool = plainTool();
  EXPECT_FALSE(tool.isConfigured());
  EXPECT_EQ(tool.folder(), standard);
  writeFile(file, "# mine\n[General]\nother=1\nfolder=" + chosen.path() + "\n");
  EXPECT_TRUE(tool.isConfigured());
  EXPECT_EQ(tool.rawValue(), chosen.displayPath());
  EXPECT_EQ(tool.folder(), chosen);
  EXPECT_TRUE(tool.tryToSetRawValue(tool.rawValueOf(standard)));
  EXPECT_EQ(readBytes(file), "# mine\n[General]\nother=1\nfolder=" + standard.path() + "\n");
  EXPECT_TRUE(tool.tryToSetRawValue(std::nullopt));
  EXPECT_EQ(readBytes(file), "# mine\n[General]\nother=1\n");
}

TEST_F(CaptureToolTest, AFolderThatIsNotThereMeansTheToolsDefault) {
  writeFile(file, "[General]\nfolder=" + folder.file("gone").path() + "\n");
  const auto tool = plainTool();
  EXPECT_EQ(tool.rawValue(), folder.file("gone").displayPath()) << "what stands there can be put back all the same";
  EXPECT_EQ(tool.folder(), standard);
}

TEST_F(CaptureToolTest, BytesThatAreNoTextAreEscapedWhereTheToolReadsThemSo) {
  writeFile(file, "[General]\nfolder=file:///a\xFF/\xC3\xBC\n");
  EXPECT_EQ(plainTool(true).rawValue(), QStringLiteral("file:///a%FF/%C3%BC"));
  writeFile(file, "[General]\nfolder=file:///\xC3\xBC\n");
  EXPECT_EQ(plainTool(true).rawValue(), QStringLiteral("file:///ü")) << "text stays as it is";
}

}  // namespace
}  // namespace quillmere
