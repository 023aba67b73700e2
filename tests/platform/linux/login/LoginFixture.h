#pragma once

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>

#include "platform/linux/login/InstalledProgram.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// A computer with a program that can be installed or not, and the folders of its entries.
class LoginFixture : public ::testing::Test {
 protected:
  static constexpr auto kEntry = "com.quillmere.app.desktop";

  LoginFixture() {
    for (const char* folder : {"usr/bin", "usr/applications", "build", "own/applications"}) {
      std::filesystem::create_directories(home.file(folder).path());
    }
    programs.launchers = {home.file("own/applications"), home.file("usr/applications")};
    programs.searched = {home.file("usr/bin").path()};
  }
  static void write(const FileURL& file, const std::string& text) {
    std::filesystem::create_directories(file.parent().path());
    std::ofstream(file.path(), std::ios::binary) << text;
  }
  static std::string read(const FileURL& file) {
    std::ifstream in(file.path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  std::string makeProgram(const char* place) {
    const FileURL file = home.file(place);
    write(file, "#!/bin/sh\n");
    std::filesystem::permissions(file.path(), std::filesystem::perms::owner_all);
    return file.path();
  }
  void makeLauncher(const std::string& exec, const char* folder = "usr/applications") {
    write(home.file(folder).appending(kEntry), "[Desktop Entry]\nType=Application\nExec=" + exec + "\n");
  }
  /// As a package does, and this process runs it.
  void install() {
    program = programs.running = makeProgram("usr/bin/quillmere");
    makeLauncher(program);
  }

  TemporaryFolder home;
  ProgramPlaces programs;
  std::string program;
};

}  // namespace quillmere::testing
