#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillmere {

/// Seeks one run of bytes in many: two of its bytes, the rarest, are compared at sixteen places at once.
class ByteSearch {
 public:
  /// `sample`: some of the bytes that will be searched, by which it is judged how rare bytes are.
  ByteSearch(std::string sought, std::string_view sample);

  static constexpr size_t kNotFound = std::string_view::npos;
  /// Where it stands first at or behind `from`. Any thread may ask.
  size_t find(std::string_view bytes, size_t from = 0) const;
  size_t size() const { return sought_.size(); }
  const std::string& sought() const { return sought_; }

 private:
  size_t findPlainly(std::string_view bytes, size_t from) const { return bytes.find(sought_, from); }

  std::string sought_;
  size_t rarest_ = 0;
  size_t nextRarest_ = 0;
};

}  // namespace quillmere
