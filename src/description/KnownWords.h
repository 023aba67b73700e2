#pragma once

#include <QtCore/QString>
#include <QtCore/QStringView>
#include <map>
#include <vector>

namespace quillmere {

/// A word by its characters as a person sees them: each is a number, equal for equal characters.
using CharacterCodes = std::vector<uint32_t>;

/// The words that text recognition saw in a picture, to check a model's spelling against. A word is a run of letters,
/// digits and apostrophes.
class KnownWords {
 public:
  explicit KnownWords(const QString& text);

  bool isEmpty() const { return words_.empty(); }
  size_t size() const { return words_.size(); }
  bool contains(const QString& lowercased) const { return words_.contains(lowercased); }

  /// The one known spelling that is near enough to be meant, or the word as it is.
  QString spellCheck(const QString& word) const;

 private:
  struct Word {
    QString key;
    CharacterCodes codes;
    uint32_t letters;  ///< which of 32 kinds of characters it holds
  };
  /// Within a group all keys have one first character and one length: what is far off is never looked at.
  using Group = std::pair<uint32_t, size_t>;

  CharacterCodes codesOf(const QString& word, const std::vector<qsizetype>& ends) const;

  std::map<QString, QString> words_;              // key, the lowercased word, to its spelling
  mutable std::map<QString, uint32_t> composed_;  // characters of several code points
  std::map<Group, std::vector<Word>> groups_;
};

constexpr size_t kLargestEditLimit = 15;
/// The number of characters to insert, delete or replace to make one word of another; `limit` + 1 if it is more.
size_t editDistance(const CharacterCodes& a, const CharacterCodes& b, size_t limit);

// Of a character as a person sees it: its first code point tells its kind.
bool isLetterOrDigit(QStringView character);
bool isDigit(QStringView character);
bool isUppercase(QStringView character);
bool isLowercase(QStringView character);
bool holdsUppercase(const QString& text);

}  // namespace quillmere
