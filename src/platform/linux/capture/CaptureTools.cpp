#include "platform/linux/capture/CaptureTools.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "foundation/FileStatus.h"
#include "platform/linux/capture/CaptureFolders.h"
#include "platform/linux/capture/ConfigurationEscapes.h"

namespace quillmere {
namespace {

using Tool = std::unique_ptr<CaptureTool>;

std::optional<FileURL> existing(const std::optional<FileURL>& url) {
  return url && CaptureFolders::isFolder(*url) ? url : std::nullopt;
}

/// The Qt tools know paths as text only, even where their URLs could hold any bytes. For a name that is no text they
/// get the replacement character, which is never written.
bool isText(const FileURL& folder) {
  return FileURL::fromPath(folder.displayPath()) == folder;
}

/// QSettings and a bare path.
FolderNotation pathNotation(const FileURL& home) {
  return {[home](const QString& text, bool) {
            return existing(CaptureFolders::named(ConfigurationEscapes::readQt(text).value_or(""), home));
          },
          [](const FileURL& folder) {
            const QString path = folder.displayPath();
            return isText(folder) ? ConfigurationEscapes::writeQt(path) : path;
          }};
}

/// KConfig and a URL.
FolderNotation urlNotation(const FileURL& home) {
  return {[home](const QString& text, bool expandsVariables) {
            std::string value = ConfigurationEscapes::readBackslashes(text);
            if (expandsVariables) value = ConfigurationEscapes::expandVariables(value, home);
            return existing(CaptureFolders::named(value, home));
          },
          [](const FileURL& folder) {
            if (!isText(folder)) return folder.displayPath();
            QString coded = QString::fromStdString(folder.coded());
            if (!coded.endsWith(QLatin1Char('/'))) coded += QLatin1Char('/');
            // Nothing may look like a variable, in case the key's options ask for expanding those.
            return coded.replace(QLatin1Char('$'), QStringLiteral("%24"));
          }};
}

/// Xfce's resource file and a URL, after some captures that of the image itself.
FolderNotation lastUrlNotation(const FileURL& home) {
  return {[home](const QString& text, bool) {
            const auto url = CaptureFolders::named(ConfigurationEscapes::readBackslashes(text), home);
            return url ? CaptureFolders::holding(*url) : std::nullopt;
          },
          [](const FileURL& folder) { return QString::fromStdString(folder.coded()); }, true};
}

/// Whether the installed Spectacle is the one that renamed its settings; none when it does not tell its version.
std::optional<bool> hasRenamedSettings(const CaptureEnvironment& environment) {
  constexpr int64_t kLargestDescription = 1 << 20;
  for (const FileURL& folder : environment.dataFolders) {
    for (const char* name : {"metainfo/org.kde.spectacle.appdata.xml", "metainfo/org.kde.spectacle.metainfo.xml"}) {
      const std::string text = readFile(folder.appending(name), kLargestDescription).value_or("");
      const auto release = text.find("<release ");
      const auto version = text.find("version=\"", release);  // the newest one comes first
      int year = 0;
      int month = 0;
      if (release == std::string::npos || version == std::string::npos) continue;
      if (std::sscanf(text.c_str() + version, "version=\"%d.%d", &year, &month) != 2) continue;
      return year > 24 || (year == 24 && month >= 2);
    }
  }
  return std::nullopt;
}

Tool spectacle(const CaptureEnvironment& environment) {
  const FileURL file = environment.configHome.appending("spectaclerc");
  const ConfigurationKey current{"ImageSave", "imageSaveLocation"};
  const ConfigurationKey former{"Save", "defaultSaveLocation"};
  const std::string text = ConfigurationFile(file).text().value_or("");
  const bool usesFormer = !configurationValue(text, current) && configurationValue(text, former);
  const bool isCurrent = hasRenamedSettings(environment).value_or(!usesFormer);
  const auto pictures = CaptureFolders::pictures(environment);
  return std::make_unique<FileCaptureTool>(file, isCurrent ? current : former, urlNotation(environment.home),
                                           isCurrent ? CaptureFolders::withScreenshots(pictures) : pictures);
}

Tool flameshot(const CaptureEnvironment& environment) {
  return std::make_unique<FileCaptureTool>(environment.configHome.appending("flameshot/flameshot.ini"),
                                           ConfigurationKey{"General", "savePath"}, pathNotation(environment.home),
                                           CaptureFolders::pictures(environment));
}

Tool gnomeScreenshot(const CaptureEnvironment& environment) {
  return std::make_unique<SettingsCaptureTool>(SettingsKey("org.gnome.gnome-screenshot", "auto-save-directory"),
                                               SettingsCaptureTool::Use::setByPerson, environment.home,
                                               CaptureFolders::homePictures(environment));
}

Tool xfceScreenshooter(const CaptureEnvironment& environment) {
  return std::make_unique<FileCaptureTool>(environment.configHome.appending("xfce4/xfce4-screenshooter"),
                                           ConfigurationKey{"", "screenshot_dir"}, lastUrlNotation(environment.home),
                                           CaptureFolders::homePictures(environment));
}

Tool ksnip(const CaptureEnvironment& environment) {
  return std::make_unique<FileCaptureTool>(environment.configHome.appending("ksnip/ksnip.conf"),
                                           ConfigurationKey{"Application", "SaveDirectory"},
                                           pathNotation(environment.home), std::vector{environment.home});
}

Tool mateScreenshot(const CaptureEnvironment& environment) {
  std::vector<FileURL> folders = CaptureFolders::homePictures(environment);
  folders.insert(folders.begin(), environment.userFolder("DESKTOP").value_or(environment.home.appending("Desktop")));
  return std::make_unique<SettingsCaptureTool>(SettingsKey("org.mate.screenshot", "last-save-directory"),
                                               SettingsCaptureTool::Use::rewrittenByTool, environment.home, folders);
}

struct Row {
  const char* program;
  const char* desktop;  ///< whose own tool it is
  const char* options;  ///< what has it show them, as one word
  Tool (*make)(const CaptureEnvironment&);
};
constexpr std::array kTools{
    Row{"spectacle", "KDE", "--launchonly", &spectacle},
    Row{"flameshot", "", "config", &flameshot},
    Row{"gnome-screenshot", "", "--interactive", &gnomeScreenshot},
    Row{"xfce4-screenshooter", "XFCE", "", &xfceScreenshooter},
    Row{"ksnip", "", "", &ksnip},
    Row{"mate-screenshot", "MATE", "--interactive", &mateScreenshot},
};

/// Desktops that are built on GNOME call themselves so too, but have another shell.
bool hasGnomeShell(const CaptureEnvironment& environment) {
  if (!environment.isDesktop("GNOME")) return false;
  constexpr std::array kOthers{"GNOME-Flashback", "Budgie", "Unity"};
  return std::none_of(kOthers.begin(), kOthers.end(), [&](const char* name) { return environment.isDesktop(name); });
}

/// With no row where it is none of those above.
struct InUse {
  Tool tool;
  const Row* row = nullptr;
};

InUse inUse(const CaptureEnvironment& environment) {
  if (hasGnomeShell(environment)) {
    return {std::make_unique<CaptureTool>(CaptureFolders::withScreenshots(CaptureFolders::homePictures(environment)))};
  }
  InUse first;
  InUse firstConfigured;
  for (const Row& row : kTools) {
    if (!environment.isInstalled(row.program)) continue;
    Tool tool = row.make(environment);
    if (*row.desktop && environment.isDesktop(row.desktop)) return {std::move(tool), &row};
    if (!firstConfigured.row && tool->isConfigured()) {
      firstConfigured = {std::move(tool), &row};
    } else if (!first.row) {
      first = {std::move(tool), &row};
    }
  }
  if (firstConfigured.row) return firstConfigured;
  if (first.row) return first;
  return {std::make_unique<CaptureTool>(CaptureFolders::withScreenshots(CaptureFolders::pictures(environment)))};
}

}  // namespace

std::unique_ptr<CaptureTool> captureToolInUse(const CaptureEnvironment& environment) {
  return inUse(environment).tool;
}

std::vector<std::string> optionsCommandInUse(const CaptureEnvironment& environment) {
  const Row* row = inUse(environment).row;
  const auto program = row ? environment.installed(row->program) : std::nullopt;
  if (!program) return {};
  std::vector<std::string> words{program->path()};
  if (*row->options) words.emplace_back(row->options);
  return words;
}

}  // namespace quillmere
