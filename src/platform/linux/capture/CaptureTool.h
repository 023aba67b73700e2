#pragma once

#include <QtCore/QString>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "platform/linux/capture/ConfigurationFile.h"
#include "platform/linux/capture/SettingsKey.h"

namespace quillmere {

/// One capture tool's idea of where screenshots go. This one has nothing to configure: its folder is fixed.
class CaptureTool {
 public:
  /// The first of `folders` that exists is where the tool saves when it is told nothing else.
  explicit CaptureTool(std::vector<FileURL> folders) : folders_(std::move(folders)) {}
  CaptureTool(const CaptureTool&) = delete;
  CaptureTool& operator=(const CaptureTool&) = delete;
  virtual ~CaptureTool() = default;

  /// Whether the person has used or configured it.
  virtual bool isConfigured() const { return false; }
  virtual bool canChange() const { return false; }
  virtual std::optional<QString> rawValue() const { return std::nullopt; }
  virtual QString rawValueOf(const FileURL& folder) const { return folder.displayPath(); }
  /// True when it was done.
  virtual bool tryToSetRawValue(const std::optional<QString>&) const { return false; }
  std::optional<FileURL> folder() const;

 protected:
  /// The folder that its configuration names, if that is one.
  virtual std::optional<FileURL> configuredFolder() const { return std::nullopt; }

 private:
  std::vector<FileURL> folders_;
};

/// How a tool's library writes a folder into its file, and reads it.
struct FolderNotation {
  std::function<std::optional<FileURL>(const QString& text, bool expandsVariables)> read;
  std::function<QString(const FileURL& folder)> write;
  /// The tool itself writes URLs with bytes that are no text, and would as well read them as "%XX".
  bool hasBareBytes = false;
};

/// A tool with a configuration file. Its raw value is the text in the file, escapes and all, so that what is put back
/// is what was there.
class FileCaptureTool final : public CaptureTool {
 public:
  FileCaptureTool(FileURL file, ConfigurationKey key, FolderNotation notation, std::vector<FileURL> folders);

  bool isConfigured() const override { return file_.exists(); }
  bool canChange() const override { return true; }
  std::optional<QString> rawValue() const override;
  QString rawValueOf(const FileURL& folder) const override { return notation_.write(folder); }
  bool tryToSetRawValue(const std::optional<QString>& value) const override;

 private:
  std::optional<FileURL> configuredFolder() const override;
  std::optional<QString> textIn(const std::string& configuration) const;
  ConfigurationFile file_;
  ConfigurationKey key_;
  FolderNotation notation_;
};

/// A tool that keeps its folder in the desktop's settings store.
class SettingsCaptureTool final : public CaptureTool {
 public:
  enum class Use { setByPerson, rewrittenByTool };
  SettingsCaptureTool(SettingsKey key, Use use, FileURL home, std::vector<FileURL> folders);

  bool isConfigured() const override { return key_.isSchemaUsed(); }
  bool canChange() const override { return use_ == Use::setByPerson && key_.canWrite(); }
  std::optional<QString> rawValue() const override;
  QString rawValueOf(const FileURL& folder) const override { return QString::fromStdString(folder.coded()); }
  bool tryToSetRawValue(const std::optional<QString>& value) const override;

 private:
  std::optional<FileURL> configuredFolder() const override;
  SettingsKey key_;
  Use use_;
  FileURL home_;
};

}  // namespace quillmere
