#include "platform/linux/shortcuts/GnomeShortcuts.h"

#include <gio/gio.h>
#include <memory>

namespace quillmere {
namespace {

struct Unreference {
  void operator()(GSettings* settings) const { g_object_unref(settings); }
  void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
  void operator()(GVariant* value) const { g_variant_unref(value); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Unreference>;

Owned<GSettingsSchema> schemaOf(const char* name) {
  GSettingsSchemaSource* source = g_settings_schema_source_get_default();
  return Owned<GSettingsSchema>(source ? g_settings_schema_source_lookup(source, name, TRUE) : nullptr);
}

QStringList textsOf(GVariant* value) {
  if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) {
    return {QString::fromUtf8(g_variant_get_string(value, nullptr))};
  }
  if (!g_variant_is_of_type(value, G_VARIANT_TYPE_STRING_ARRAY)) return {};
  QStringList texts;
  for (gsize i = 0; i < g_variant_n_children(value); ++i) {
    const Owned<GVariant> child(g_variant_get_child_value(value, i));
    texts << QString::fromUtf8(g_variant_get_string(child.get(), nullptr));
  }
  return texts;
}

/// `path`: of a schema that has none of its own. Asked for a key that the installed version has not, GSettings would
/// end the process.
QStringList textsOf(const char* name, const char* path, const char* onlyKey) {
  const auto schema = schemaOf(name);
  if (!schema) return {};
  const Owned<GSettings> settings(g_settings_new_full(schema.get(), nullptr, path));
  QStringList texts;
  gchar** keys = g_settings_schema_list_keys(schema.get());
  for (gchar** key = keys; *key; ++key) {
    if (onlyKey && g_strcmp0(onlyKey, *key) != 0) continue;
    const Owned<GVariant> value(g_settings_get_value(settings.get(), *key));
    texts << textsOf(value.get());
  }
  g_strfreev(keys);
  return texts;
}

}  // namespace

QStringList gnomeShortcuts() {
  constexpr const char* kMediaKeys = "org.gnome.settings-daemon.plugins.media-keys";
  constexpr const char* kOwnCommand = "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";
  QStringList found;
  for (const char* name : {"org.gnome.desktop.wm.keybindings", "org.gnome.mutter.keybindings",
                           "org.gnome.mutter.wayland.keybindings", "org.gnome.shell.keybindings", kMediaKeys}) {
    found << textsOf(name, nullptr, nullptr);
  }
  for (const QString& path : textsOf(kMediaKeys, nullptr, "custom-keybindings")) {
    // Of another form it would end the process.
    if (!path.startsWith(QLatin1Char('/')) || !path.endsWith(QLatin1Char('/'))) continue;
    if (path.contains(QLatin1String("//"))) continue;
    found << textsOf(kOwnCommand, path.toUtf8().constData(), "binding");
  }
  found.removeAll(QString());
  return found;
}

}  // namespace quillmere
