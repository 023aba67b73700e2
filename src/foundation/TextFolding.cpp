#include "foundation/TextFolding.h"

#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/uset.h>
#include <algorithm>
#include <memory>
#include <optional>

#include "foundation/Graphemes.h"

namespace quillmere {
namespace {

// Weights have forms as code points have in UTF-8: the most frequent one byte, the next two, all others three. The
// first of the forms of two bytes are those of the weights that are multiples of 256, as most second halves of long
// ones are.
constexpr uint16_t kOneByteForms = 0x80;
constexpr uint16_t kTwoByteForms = 0x800;
constexpr uint16_t kRoundWeights = 0x100;
constexpr size_t kWeights = 0x10000;
constexpr size_t kUnits = 0x10000;
// Characters from here on are not learned: ICU is asked each time.
constexpr char16_t kLetters = 0x2100;

using CollationElements = std::unique_ptr<UCollationElements, decltype(&ucol_closeElements)>;

CollationElements openElements(const SearchCollator& collator) {
  static constexpr UChar kNothing[] = {u' '};
  UErrorCode status = U_ZERO_ERROR;
  return {ucol_openElements(collator.get(), kNothing, 1, &status), &ucol_closeElements};
}

/// One weight, with the units of the text that it stands for. Of a character with several, the first has the units and
/// the others stand at their end.
struct Weight {
  uint16_t weight;
  int32_t begin;
  int32_t end;
};

/// The next weight that is one; none at the end.
std::optional<Weight> nextWeight(UCollationElements* elements) {
  UErrorCode status = U_ZERO_ERROR;
  while (true) {
    const int32_t begin = ucol_getOffset(elements);
    const int32_t element = ucol_next(elements, &status);
    if (element == UCOL_NULLORDER || U_FAILURE(status)) return std::nullopt;
    const auto weight = static_cast<uint16_t>(ucol_primaryOrder(element));
    if (weight != 0) return Weight{weight, begin, ucol_getOffset(elements)};
  }
}

void setText(UCollationElements* elements, QStringView text) {
  UErrorCode status = U_ZERO_ERROR;
  ucol_setText(elements, reinterpret_cast<const UChar*>(text.utf16()), static_cast<int32_t>(text.size()), &status);
}

/// A character that is one on both sides, beside all others that are.
bool isCharacterOfItsOwn(char16_t unit) {
  if (u_getCombiningClass(unit) != 0 || unit == u'\r') return false;
  const int32_t kind = u_getIntPropertyValue(unit, UCHAR_GRAPHEME_CLUSTER_BREAK);
  return kind == U_GCB_OTHER || kind == U_GCB_CONTROL || kind == U_GCB_LF;
}

/// With the character itself, for what is only listed as a whole.
QString decomposed(char16_t unit) {
  return QString(QChar(unit)) + QString(QChar(unit)).normalized(QString::NormalizationForm_D);
}

bool beginsWeight(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

void setDoubt(FoldedText& folded) {
  folded.doubts.resize(folded.bytes.size() + 1);
  folded.doubts.back() = true;
}

}  // namespace

/// The units of characters that count as something else together than alone.
struct TextFolding::Pairs {
  explicit Pairs(const SearchCollator& collator) : begin(kUnits), goOn(kUnits) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<USet, decltype(&uset_close)> all(uset_openEmpty(), &uset_close);
    ucol_getContractionsAndExpansions(collator.get(), all.get(), nullptr, true, &status);
    for (int32_t item = 0; item < uset_getItemCount(all.get()); ++item) {
      std::array<UChar, 64> units{};
      UChar32 first = 0;
      UChar32 last = 0;
      const int32_t length =
          uset_getItem(all.get(), item, &first, &last, units.data(), static_cast<int32_t>(units.size()), &status);
      for (int32_t i = 1; i < length; ++i) {
        begin[units[static_cast<size_t>(i) - 1]] = true;
        goOn[units[static_cast<size_t>(i)]] = true;
      }
    }
    isKnown = U_SUCCESS(status);
  }

  bool isKnown = false;
  std::vector<bool> begin;
  std::vector<bool> goOn;
};

TextFolding::TextFolding(const QString& locale)
    : collator_(searchCollator(locale)), letters_(kLetters), shortForms_(kWeights) {
  if (!collator_) return;
  nextTwoBytes_ = kOneByteForms;
  for (size_t high = 0; high < kRoundWeights; ++high) shortForms_[high << 8] = nextTwoBytes_++;
  const Pairs pairs(collator_);
  const CollationElements elements = openElements(collator_);
  if (!elements) return;
  const std::pair<char16_t, char16_t> frequentFirst[] = {
      {0x0000, 0x00FF},       {0x2010, 0x203A}, {0x0100, 0x05FF}, {0x1E00, 0x200F},
      {0x203B, kLetters - 1}, {0x3040, 0x30FF}, {0x1100, 0x11FF},
  };
  for (const auto& [first, last] : frequentFirst) learn(first, last, pairs, *elements);
}

void TextFolding::learn(char16_t first, char16_t last, const Pairs& pairs, UCollationElements& elements) {
  for (size_t unit = first; unit <= last; ++unit) {
    const auto character = static_cast<char16_t>(unit);
    setText(&elements, QStringView(&character, 1));
    std::string bytes;
    while (const auto weight = nextWeight(&elements)) {
      learnWeight(weight->weight);
      append(weight->weight, bytes);
    }
    if (unit >= kLetters || !pairs.isKnown || !isCharacterOfItsOwn(character) || bytes.size() > Letter::kMost) continue;
    Letter& letter = letters_[unit];
    letter.isKnown = true;
    letter.length = static_cast<uint8_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), letter.bytes.begin());
    const QString parts = decomposed(character);
    letter.begins = std::any_of(parts.begin(), parts.end(), [&](QChar part) { return pairs.begin[part.unicode()]; });
    letter.goesOn = pairs.goOn[parts[0].unicode()] || pairs.goOn[parts[1].unicode()];
  }
}

void TextFolding::learnWeight(uint16_t weight) {
  uint16_t& form = shortForms_[weight];
  if (nextOneByte_ < kOneByteForms) {
    if (form == 0 || form >= kOneByteForms) form = nextOneByte_++;
  } else if (form == 0 && nextTwoBytes_ < kTwoByteForms) {
    form = nextTwoBytes_++;
  }
}

void TextFolding::append(uint16_t weight, std::string& bytes) const {
  const auto following = [](int bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
  const uint16_t form = shortForms_[weight];
  if (form == 0) {
    bytes += {static_cast<char>(0xE0 | weight >> 12), following(weight >> 6), following(weight)};
  } else if (form < kOneByteForms) {
    bytes += static_cast<char>(form);
  } else {
    bytes += {static_cast<char>(0xC0 | form >> 6), following(form)};
  }
}

const TextFolding::Letter* TextFolding::letter(char16_t unit) const {
  return unit < kLetters && letters_[unit].isKnown ? &letters_[unit] : nullptr;
}

bool TextFolding::standApart(char16_t before, char16_t after) const {
  const Letter* first = letter(before);
  const Letter* second = letter(after);
  return first && second && !(first->begins && second->goesOn);
}

FoldedText TextFolding::fold(const QString& text) const {
  FoldedText folded;
  if (!collator_) return folded;
  folded.bytes.reserve(static_cast<size_t>(text.size()) + Letter::kMost);
  const QStringView all(text);
  const auto endsPart = [&](qsizetype end) {
    return end == all.size() || standApart(all[end - 1].unicode(), all[end].unicode());
  };
  CollationElements elements{nullptr, &ucol_closeElements};
  for (qsizetype begin = 0, end = 1; begin < all.size(); begin = end++) {
    while (!endsPart(end)) ++end;
    const Letter* known = end == begin + 1 ? letter(all[begin].unicode()) : nullptr;
    if (known) {
      append(*known, folded);
      continue;
    }
    if (!elements) elements = openElements(collator_);
    if (elements) append(all.sliced(begin, end - begin), *elements, folded);
  }
  folded.bytes.shrink_to_fit();
  return folded;
}

void TextFolding::append(const Letter& letter, FoldedText& folded) {
  for (size_t i = 0; i < letter.length; ++i) {
    if (i > 0 && beginsWeight(letter.bytes[i])) setDoubt(folded);
    folded.bytes += letter.bytes[i];
  }
}

void TextFolding::append(QStringView part, UCollationElements& elements, FoldedText& folded) const {
  const std::vector<qsizetype> ends = graphemeEnds(part);
  setText(&elements, part);
  while (const auto weight = nextWeight(&elements)) {
    const bool isWhole = weight->begin != weight->end &&
                         (weight->begin == 0 || std::binary_search(ends.begin(), ends.end(), weight->begin));
    if (!isWhole) setDoubt(folded);
    append(weight->weight, folded.bytes);
  }
}

Finding find(const ByteSearch& sought, std::string_view bytes, const std::vector<bool>& doubts) {
  const auto isDoubtful = [&](size_t place) { return place < doubts.size() && doubts[place]; };
  Finding found = Finding::none;
  for (size_t place = sought.find(bytes); place != ByteSearch::kNotFound; place = sought.find(bytes, place + 1)) {
    if (!isDoubtful(place) && !isDoubtful(place + sought.size())) return Finding::certain;
    found = Finding::doubtful;
  }
  return found;
}

}  // namespace quillmere
