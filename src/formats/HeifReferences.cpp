#include "formats/HeifReferences.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace quillmere {
namespace {

/// 200 megapixels in parts of 512 by 512 are 768. Each part takes some milliseconds, however small it is.
constexpr size_t kMostDecodings = 2'048 + 1;
constexpr size_t kDeepest = 16;
constexpr size_t kEndless = std::numeric_limits<size_t>::max();

/// Takes numbers, most significant byte first, and ranges from the front.
class Bytes {
 public:
  explicit Bytes(std::string_view rest) : rest_(rest) {}
  bool isAtEnd() const { return rest_.empty(); }
  size_t left() const { return rest_.size(); }

  std::optional<uint64_t> number(size_t count) {
    const auto bytes = range(count);
    if (!bytes) return std::nullopt;
    uint64_t number = 0;
    for (const char byte : *bytes) number = number << 8 | static_cast<uint8_t>(byte);
    return number;
  }
  std::optional<std::string_view> range(uint64_t count) {
    if (count > rest_.size()) return std::nullopt;
    const std::string_view bytes = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return bytes;
  }

 private:
  std::string_view rest_;
};

/// ISO 14496-12, 4.2.
struct Box {
  std::string_view type;
  std::string_view content;
};

std::optional<Box> nextBox(Bytes& bytes) {
  const auto size = bytes.number(4);
  const auto type = bytes.range(4);
  if (!size || !type) return std::nullopt;
  uint64_t header = 8;
  uint64_t whole = *size;
  if (whole == 0) whole = header + bytes.left();  // to the end
  if (whole == 1) {
    const auto large = bytes.number(8);
    if (!large) return std::nullopt;
    header = 16;
    whole = *large;
  }
  if (whole < header) return std::nullopt;
  const auto content = bytes.range(whole - header);
  if (!content) return std::nullopt;
  return Box{*type, *content};
}

using Item = uint64_t;

/// Which items each needs to be decoded.
class Needs {
 public:
  /// Reads the references (ISO 14496-12, 8.11.12); false where they are no whole ones.
  bool add(std::string_view content) {
    Bytes bytes(content);
    const auto version = bytes.number(1);
    if (!version || !bytes.range(3)) return false;
    const size_t idBytes = *version == 0 ? 2 : 4;
    while (!bytes.isAtEnd()) {
      const auto box = nextBox(bytes);
      if (!box || !addReference(*box, idBytes)) return false;
    }
    return true;
  }

  /// Reads what kinds the items are of (8.11.6); what cannot be read is of none.
  void addKinds(std::string_view content) {
    Bytes bytes(content);
    const auto version = bytes.number(1);
    if (!version || !bytes.range(3) || !bytes.range(*version == 0 ? 2 : 4)) return;
    while (const auto box = nextBox(bytes)) addKind(*box);
  }

  HeifReferences judged() {
    const auto isPicture = [this](Item item) { return pictures_.contains(item); };
    // One that is put together of something else would end the process.
    if (!std::all_of(derivedFrom_.begin(), derivedFrom_.end(), isPicture)) return HeifReferences::endless;
    bool isCostly = false;
    for (const auto& [item, parts] : parts_) {
      const size_t needed = decodings(item, 0);
      if (needed == kEndless) return HeifReferences::endless;
      isCostly = isCostly || needed > kMostDecodings;
    }
    return isCostly ? HeifReferences::costly : HeifReferences::sound;
  }

 private:
  bool addReference(const Box& box, size_t idBytes) {
    Bytes bytes(box.content);
    const auto from = bytes.number(idBytes);
    const auto count = bytes.number(2);
    if (!from || !count) return false;
    for (uint64_t i = 0; i < *count; ++i) {
      const auto to = bytes.number(idBytes);
      if (!to) return false;
      // A derived picture names its parts; of alpha it is the other way round.
      if (box.type == "dimg") parts_[*from].push_back(*to), derivedFrom_.push_back(*to);
      if (box.type == "auxl") parts_[*to].push_back(*from);
    }
    return bytes.isAtEnd();
  }

  void addKind(const Box& box) {
    constexpr std::array<std::string_view, 5> kPictures{"hvc1", "av01", "grid", "iden", "iovl"};
    Bytes bytes(box.content);
    const auto version = bytes.number(1);
    if (box.type != "infe" || !version || !bytes.range(3)) return;
    const auto item = bytes.number(*version < 3 ? 2 : 4);
    bytes.range(2);  // how it is protected
    const auto kind = bytes.range(4);
    if (item && kind && std::find(kPictures.begin(), kPictures.end(), *kind) != kPictures.end())
      pictures_.insert(*item);
  }

  /// Of the item and all it needs, counted as often as they are needed. A circle is deeper than anything.
  size_t decodings(Item item, size_t depth) {
    if (depth > kDeepest) return kEndless;
    if (const auto known = known_.find(item); known != known_.end()) return known->second;
    size_t sum = 1;
    if (const auto parts = parts_.find(item); parts != parts_.end()) {
      for (const Item part : parts->second) {
        const size_t needed = decodings(part, depth + 1);
        sum = needed == kEndless ? kEndless : sum + needed;
        if (sum > kMostDecodings) break;
      }
    }
    known_[item] = sum;
    return sum;
  }

  std::set<Item> pictures_;
  std::vector<Item> derivedFrom_;
  std::map<Item, std::vector<Item>> parts_;
  std::map<Item, size_t> known_;
};

/// None where the boxes are no whole ones.
std::optional<Needs> needsIn(std::string_view file) {
  Needs needs;
  Bytes bytes(file);
  while (const auto box = nextBox(bytes)) {
    if (box->type != "meta") continue;
    Bytes inside(box->content);
    if (!inside.range(4)) return std::nullopt;  // version and flags
    while (!inside.isAtEnd()) {
      const auto child = nextBox(inside);
      if (!child || (child->type == "iref" && !needs.add(child->content))) return std::nullopt;
      if (child->type == "iinf") needs.addKinds(child->content);
    }
  }
  return needs;
}

}  // namespace

int64_t heifDescriptionBytes(std::string_view file) {
  size_t sum = 0;
  Bytes bytes(file);
  while (const auto box = nextBox(bytes)) {
    if (box->type == "meta") sum += box->content.size();
  }
  return static_cast<int64_t>(sum);
}

HeifReferences heifReferences(std::string_view file) {
  auto needs = needsIn(file);
  return needs ? needs->judged() : HeifReferences::endless;
}

}  // namespace quillmere
