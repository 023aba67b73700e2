#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <vector>

namespace quillmere {

/// An argument of a localized text: a whole number or a text.
class LocalizedArgument {
 public:
  LocalizedArgument(int number) : number_(number), isNumber_(true) {}
  LocalizedArgument(qsizetype number) : number_(number), isNumber_(true) {}
  LocalizedArgument(QString text) : text_(std::move(text)) {}

  bool isNumber() const { return isNumber_; }
  qint64 number() const { return number_; }
  QString display() const;

 private:
  qint64 number_ = 0;
  QString text_;
  bool isNumber_ = false;
};

/// The text that stands for an English key, in the person's language and in the words of this desktop. `%lld` takes the
/// next number, `%@` the next text, `%1$lld` and `%2$@` the argument at that place. Where the catalogue gives plural
/// forms, the first number chooses among them by the language's rules. An unknown key stands for itself.
QString localized(const char* key, const std::vector<LocalizedArgument>& arguments = {});
QString localized(const QString& key, const std::vector<LocalizedArgument>& arguments = {});

}  // namespace quillmere
