#include "platform/linux/appearance/GnomeAppearance.h"

#include <gio/gio.h>
#include <QtCore/QStringList>
#include <utility>

namespace quillmere {

/// One of the settings' groups. Asked for a key that its installed version has not, GSettings would end the process.
class GnomeAppearance::Schema {
 public:
  Schema(const char* name, GnomeAppearance& follower) {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    schema_ = source ? g_settings_schema_source_lookup(source, name, TRUE) : nullptr;
    if (!schema_) return;
    settings_ = g_settings_new_full(schema_, nullptr, nullptr);
    const auto changed = +[](GSettings*, const gchar*, gpointer to) { static_cast<GnomeAppearance*>(to)->tell(); };
    handler_ = g_signal_connect(settings_, "changed", G_CALLBACK(changed), &follower);
  }
  ~Schema() {
    if (!schema_) return;
    // Something of the store's own may hold the settings a while longer.
    g_signal_handler_disconnect(settings_, handler_);
    g_object_unref(settings_);
    g_settings_schema_unref(schema_);
  }
  Schema(const Schema&) = delete;
  Schema& operator=(const Schema&) = delete;

  bool flag(const char* key, bool otherwise) const {
    if (!has(key, G_VARIANT_TYPE_BOOLEAN)) return otherwise;
    return g_settings_get_boolean(settings_, key);
  }
  /// Of a text or of a choice, which is told by its name.
  QString text(const char* key) const {
    if (!has(key, G_VARIANT_TYPE_STRING)) return {};
    gchar* value = g_settings_get_string(settings_, key);
    const QString text = QString::fromUtf8(value);
    g_free(value);
    return text;
  }
  /// Whether somebody chose the value.
  bool isSet(const char* key) const {
    GVariant* value = has(key, G_VARIANT_TYPE_ANY) ? g_settings_get_user_value(settings_, key) : nullptr;
    if (value) g_variant_unref(value);
    return value;
  }

 private:
  bool has(const char* key, const GVariantType* type) const {
    if (!schema_ || !g_settings_schema_has_key(schema_, key)) return false;
    GSettingsSchemaKey* described = g_settings_schema_get_key(schema_, key);
    const bool isOfType = g_variant_type_is_subtype_of(g_settings_schema_key_get_value_type(described), type);
    g_settings_schema_key_unref(described);
    return isOfType;
  }

  GSettingsSchema* schema_ = nullptr;
  GSettings* settings_ = nullptr;
  gulong handler_ = 0;
};

namespace {

Appearance::Scheme schemeOf(const QString& value) {
  if (value == QLatin1String("prefer-dark")) return Appearance::Scheme::dark;
  if (value == QLatin1String("prefer-light")) return Appearance::Scheme::light;
  return Appearance::Scheme::unknown;
}

bool setStyle(QFont& font, const QString& word) {
  static const std::pair<const char*, QFont::Weight> kWeights[]{
      {"thin", QFont::Thin},     {"light", QFont::Light},        {"regular", QFont::Normal},
      {"medium", QFont::Medium}, {"semi-bold", QFont::DemiBold}, {"semibold", QFont::DemiBold},
      {"bold", QFont::Bold},     {"black", QFont::Black}};
  for (const auto& [name, weight] : kWeights) {
    if (word.compare(QLatin1String(name), Qt::CaseInsensitive) == 0) {
      font.setWeight(weight);
      return true;
    }
  }
  for (const char* slanted : {"italic", "oblique"}) {
    if (word.compare(QLatin1String(slanted), Qt::CaseInsensitive) == 0) {
      font.setItalic(true);
      return true;
    }
  }
  return false;
}

}  // namespace

std::optional<QFont> fontOf(const QString& description) {
  QStringList words = description.simplified().split(QLatin1Char(' '));
  bool isNumber = false;
  const double size = words.takeLast().toDouble(&isNumber);
  if (!isNumber || !(size > 0 && size < 200)) return std::nullopt;
  QFont font;
  font.setPointSizeF(size);
  while (words.size() > 1 && setStyle(font, words.last())) words.removeLast();
  QString family = words.join(QLatin1Char(' '));
  if (family.endsWith(QLatin1Char(','))) family.chop(1);  // ends a list of one
  if (family.isEmpty()) return std::nullopt;
  font.setFamily(family);
  return font;
}

GnomeAppearance::GnomeAppearance(std::function<void(const Appearance&)> told)
    : told_(std::move(told)),
      interface_(std::make_unique<Schema>("org.gnome.desktop.interface", *this)),
      accessibility_(std::make_unique<Schema>("org.gnome.desktop.a11y.interface", *this)) {
  tell();
}

GnomeAppearance::~GnomeAppearance() = default;

void GnomeAppearance::tell() const {
  Appearance appearance;
  appearance.scheme = schemeOf(interface_->text("color-scheme"));
  appearance.isHighContrast = accessibility_->flag("high-contrast", false);
  appearance.isMotionReduced = !interface_->flag("enable-animations", true);
  // The schema's own font says nothing of a desktop that merely has the schema installed.
  if (interface_->isSet("font-name")) appearance.font = fontOf(interface_->text("font-name"));
  told_(appearance);
}

}  // namespace quillmere
