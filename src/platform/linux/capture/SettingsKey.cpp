#include "platform/linux/capture/SettingsKey.h"

#include <gio/gio.h>
#include <cstring>
#include <memory>

namespace quillmere {
namespace {

struct Release {
  void operator()(GSettings* settings) const { g_object_unref(settings); }
  void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
  void operator()(GVariant* value) const { g_variant_unref(value); }
  void operator()(gchar* text) const { g_free(text); }
};
using Settings = std::unique_ptr<GSettings, Release>;
using Schema = std::unique_ptr<GSettingsSchema, Release>;
using Value = std::unique_ptr<GVariant, Release>;

Schema installedSchema(const std::string& name) {
  GSettingsSchemaSource* source = g_settings_schema_source_get_default();
  return Schema(source ? g_settings_schema_source_lookup(source, name.c_str(), TRUE) : nullptr);
}

/// Null unless the key is there and holds a text.
Settings open(const std::string& schemaName, const std::string& name) {
  const Schema schema = installedSchema(schemaName);
  if (!schema || !g_settings_schema_has_key(schema.get(), name.c_str())) return nullptr;
  GSettingsSchemaKey* key = g_settings_schema_get_key(schema.get(), name.c_str());
  const bool isText = g_variant_type_equal(g_settings_schema_key_get_value_type(key), G_VARIANT_TYPE_STRING);
  g_settings_schema_key_unref(key);
  return Settings(isText ? g_settings_new_full(schema.get(), nullptr, nullptr) : nullptr);
}

bool set(GSettings* settings, const std::string& name, const std::optional<std::string>& value) {
  bool isAccepted = true;
  if (value) {
    isAccepted = g_settings_set_string(settings, name.c_str(), value->c_str());
  } else {
    g_settings_reset(settings, name.c_str());
  }
  // Writing happens in the background; a value that the store could not keep is gone from it afterwards.
  g_settings_sync();
  return isAccepted;
}

}  // namespace

std::optional<std::string> SettingsKey::value() const {
  const Settings settings = open(schema_, name_);
  const Value value(settings ? g_settings_get_user_value(settings.get(), name_.c_str()) : nullptr);
  return value ? std::optional(std::string(g_variant_get_string(value.get(), nullptr))) : std::nullopt;
}

std::optional<std::string> SettingsKey::effectiveValue() const {
  const Settings settings = open(schema_, name_);
  if (!settings) return std::nullopt;
  const std::unique_ptr<gchar, Release> text(g_settings_get_string(settings.get(), name_.c_str()));
  return std::string(text.get());
}

bool SettingsKey::canWrite() const {
  const Settings settings = open(schema_, name_);
  return settings && g_settings_is_writable(settings.get(), name_.c_str());
}

bool SettingsKey::write(const std::optional<std::string>& value) const {
  const Settings settings = open(schema_, name_);
  if (!settings || !g_settings_is_writable(settings.get(), name_.c_str())) return false;
  const auto before = this->value();
  if (set(settings.get(), name_, value) && this->value() == value) return true;
  set(settings.get(), name_, before);
  return false;
}

bool SettingsKey::isSchemaUsed() const {
  const Schema schema = installedSchema(schema_);
  if (!schema) return false;
  const Settings settings(g_settings_new_full(schema.get(), nullptr, nullptr));
  gchar** keys = g_settings_schema_list_keys(schema.get());
  bool isUsed = false;
  for (gchar** key = keys; *key; ++key) {
    isUsed = isUsed || Value(g_settings_get_user_value(settings.get(), *key)) != nullptr;
  }
  g_strfreev(keys);
  return isUsed;
}

}  // namespace quillmere
