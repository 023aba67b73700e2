#pragma once

#include <filesystem>
#include <string>

#include "platform/linux/capture/CaptureEnvironment.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// Gives the process a settings store in its private home, with the settings of two capture tools. What the library has
/// read once stays; so this must come before its first use.
void useOwnSettingsStore();

/// A home with capture tools of our choice, of which only the names are there.
class CaptureFixture : public ::testing::Test {
 protected:
  CaptureFixture() {
    for (const char* name : {"home/Pictures", "home/Desktop", "config", "bin", "share"}) makeFolder(name);
    environment.home = folder.file("home");
    environment.configHome = folder.file("config");
    environment.dataFolders = {folder.file("nowhere"), folder.file("share")};
    environment.searchPath = folder.file("nowhere").path() + ":" + folder.file("bin").path();
  }

  FileURL makeFolder(std::string_view name) const {
    std::filesystem::create_directories(folder.file(name).path());
    return folder.file(name);
  }
  void install(std::string_view program) const {
    const FileURL file = folder.file("bin").appending(program);
    writeFile(file, "");
    ASSERT_EQ(::chmod(file.c_str(), 0755), 0);
  }
  void configure(std::string_view name, std::string_view text) const {
    const FileURL file = environment.configHome.appending(name);
    std::filesystem::create_directories(file.parent().path());
    writeFile(file, text);
  }
  std::string configuration(std::string_view name) const { return readBytes(environment.configHome.appending(name)); }
  /// Of the Spectacle that is installed.
  void describeSpectacle(const std::string& version) const {
    makeFolder("share/metainfo");
    writeFile(folder.file("share/metainfo/org.kde.spectacle.appdata.xml"),
              "<component>\n <releases>\n  <release version=\"" + version +
                  "\" date=\"2024-01-01\"/>\n  <release version=\"1.0\"/>\n </releases>\n</component>\n");
  }

  TemporaryFolder folder;
  CaptureEnvironment environment;
  FileURL home = folder.file("home");
  FileURL pictures = folder.file("home/Pictures");
};

}  // namespace quillmere::testing
