#include "foundation/Localized.h"

#include <unicode/plurrule.h>
#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLocale>

static void loadCatalogueResource() {
  Q_INIT_RESOURCE(catalogues);
}

namespace quillmere {
namespace {

/// A key's forms by plural category; a text without plural forms has only "other".
using Forms = QHash<QString, QString>;

class Catalogue {
 public:
  Catalogue() {
    loadCatalogueResource();
    read(QStringLiteral(":/catalogues/en.json"));
    // Last, so that its words hold: names of another desktop's facilities would be untrue here.
    read(QStringLiteral(":/catalogues/linux.json"));
    // A translation, where a folder of catalogues was named before the first text.
    read(QStringLiteral("catalogues:language.json"));
    UErrorCode status = U_ZERO_ERROR;
    rules_.reset(icu::PluralRules::forLocale(icu::Locale::getEnglish(), status));
  }

  QString form(const QString& key, const std::vector<LocalizedArgument>& arguments) const {
    const auto entry = entries_.constFind(key);
    if (entry == entries_.constEnd()) return key;
    for (const auto& argument : arguments) {
      if (!argument.isNumber()) continue;
      const auto form = entry->constFind(category(argument.number()));
      if (form != entry->constEnd()) return *form;
      break;
    }
    return entry->value(QStringLiteral("other"), key);
  }

 private:
  void read(const QString& resource) {
    QFile file(resource);
    if (!file.open(QIODevice::ReadOnly)) return;
    const QJsonObject texts = QJsonDocument::fromJson(file.readAll()).object();
    for (auto text = texts.begin(); text != texts.end(); ++text) {
      Forms forms;
      if (text->isString()) {
        forms.insert(QStringLiteral("other"), text->toString());
      } else {
        const QJsonObject plurals = text->toObject();
        for (auto plural = plurals.begin(); plural != plurals.end(); ++plural) {
          forms.insert(plural.key(), plural->toString());
        }
      }
      entries_.insert(text.key(), forms);
    }
  }

  QString category(qint64 number) const {
    if (!rules_) return QStringLiteral("other");
    const icu::UnicodeString keyword = rules_->select(static_cast<double>(number));
    return QString(reinterpret_cast<const QChar*>(keyword.getBuffer()), keyword.length());
  }

  QHash<QString, Forms> entries_;
  std::unique_ptr<icu::PluralRules> rules_;
};

/// Replaces the placeholders of `format` in one pass, so that a "%@" inside an argument stays as it is.
QString fill(const QString& format, const std::vector<LocalizedArgument>& arguments) {
  QString result;
  result.reserve(format.size() + 32);
  size_t next = 0;
  for (qsizetype i = 0; i < format.size(); ++i) {
    if (format[i] != QLatin1Char('%')) {
      result += format[i];
      continue;
    }
    qsizetype at = i + 1;
    size_t position = 0;
    while (at < format.size() && format[at].isDigit()) position = position * 10 + format[at++].digitValue();
    const bool isPositional = position > 0 && at < format.size() && format[at] == QLatin1Char('$');
    if (isPositional) ++at;
    const QStringView rest = QStringView(format).mid(at);
    const qsizetype length = rest.startsWith(QLatin1String("lld")) ? 3 : rest.startsWith(QLatin1Char('@')) ? 1 : 0;
    if (length == 0 || (position > 0 && !isPositional)) {
      result += format[i];
      continue;
    }
    const size_t index = isPositional ? position - 1 : next++;
    if (index < arguments.size()) result += arguments[index].display();
    i = at + length - 1;
  }
  return result;
}

}  // namespace

QString LocalizedArgument::display() const {
  return isNumber_ ? QLocale().toString(number_) : text_;
}

QString localized(const QString& key, const std::vector<LocalizedArgument>& arguments) {
  static const Catalogue catalogue;
  return fill(catalogue.form(key, arguments), arguments);
}

QString localized(const char* key, const std::vector<LocalizedArgument>& arguments) {
  return localized(QString::fromUtf8(key), arguments);
}

}  // namespace quillmere
