#pragma once

#include <QtCore/QString>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "foundation/ByteSearch.h"
#include "foundation/SearchCollator.h"

struct UCollationElements;

namespace quillmere {

/// A text as the weights of its letters, so that seeking bytes answers what TextSearch would. The bytes of one weight
/// begin with a byte that none goes on with, and no byte is 0: one of these can part texts that are searched as one.
struct FoldedText {
  std::string bytes;
  /// One for each place in `bytes` where a hit may neither begin nor end for certain: inside a character that counts as
  /// several letters, between a letter and a mark with a weight. Empty where there is none.
  std::vector<bool> doubts;
};

/// Folds texts for one locale. Latin letters take one byte each, Greek, Cyrillic and kana two, Hangul two for each of
/// its letters, ideographs four or five.
class TextFolding {
 public:
  /// Takes some milliseconds: it asks ICU about every common letter.
  explicit TextFolding(const QString& locale);

  /// Any thread may fold.
  FoldedText fold(const QString& text) const;
  const SearchCollator& collator() const { return collator_; }

 private:
  /// A character that is one on both sides and has the same weights beside every other, but where one that `begins`
  /// something stands before one that `goesOn` with it.
  struct Letter {
    static constexpr size_t kMost = 12;
    bool isKnown = false;
    bool begins = false;
    bool goesOn = false;
    uint8_t length = 0;
    std::array<char, kMost> bytes{};
  };
  struct Pairs;

  void learn(char16_t first, char16_t last, const Pairs& pairs, UCollationElements& elements);
  void learnWeight(uint16_t weight);
  void append(uint16_t weight, std::string& bytes) const;
  const Letter* letter(char16_t unit) const;
  bool standApart(char16_t before, char16_t after) const;
  static void append(const Letter& letter, FoldedText& folded);
  void append(QStringView part, UCollationElements& elements, FoldedText& folded) const;

  SearchCollator collator_;
  std::vector<Letter> letters_;       // by UTF-16 unit
  std::vector<uint16_t> shortForms_;  // by weight; 0 where it has none
  uint16_t nextOneByte_ = 1;
  uint16_t nextTwoBytes_ = 0;
};

enum class Finding { none, doubtful, certain };
/// Seeks a folded text in another. Where it is doubtful, TextSearch has to tell.
Finding find(const ByteSearch& sought, std::string_view bytes, const std::vector<bool>& doubts);

}  // namespace quillmere
