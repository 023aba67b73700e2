#pragma once

#include <optional>
#include <string>

namespace quillmere {

/// A text in the desktop's settings store. Without its schema installed it has no value and cannot be written; the
/// store's own library would end the process.
class SettingsKey {
 public:
  SettingsKey(std::string schema, std::string name) : schema_(std::move(schema)), name_(std::move(name)) {}

  /// What the person set.
  std::optional<std::string> value() const;
  /// What counts: the person's value, else the installation's.
  std::optional<std::string> effectiveValue() const;
  bool canWrite() const;
  /// None resets it. False when that was refused; the old value then stands.
  bool write(const std::optional<std::string>& value) const;
  /// Whether the person set anything in this schema.
  bool isSchemaUsed() const;

 private:
  std::string schema_;
  std::string name_;
};

}  // namespace quillmere
