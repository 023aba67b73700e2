#include "foundation/ByteSearch.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quillmere {

ByteSearch::ByteSearch(std::string sought, std::string_view sample) : sought_(std::move(sought)) {
  constexpr size_t kEnough = 8192;
  std::array<uint32_t, 256> counts{};
  for (const char byte : sample.substr(0, kEnough)) ++counts[static_cast<unsigned char>(byte)];
  // The same byte twice says less than two bytes do.
  const auto count = [&](size_t place) { return counts[static_cast<unsigned char>(sought_[place])]; };
  for (size_t place = 1; place < sought_.size(); ++place) {
    if (count(place) < count(rarest_)) rarest_ = place;
  }
  nextRarest_ = rarest_ == 0 && sought_.size() > 1 ? 1 : 0;
  for (size_t place = 0; place < sought_.size(); ++place) {
    if (sought_[place] == sought_[rarest_]) continue;
    if (sought_[nextRarest_] == sought_[rarest_] || count(place) < count(nextRarest_)) nextRarest_ = place;
  }
}

#if defined(__SSE2__)

size_t ByteSearch::find(std::string_view bytes, size_t from) const {
  constexpr size_t kPlaces = 16;
  const size_t length = sought_.size();
  if (length < 2 || bytes.size() < length || from > bytes.size() - length) return findPlainly(bytes, from);
  const size_t end = bytes.size() - length + 1;  // of the places where it may begin
  const __m128i first = _mm_set1_epi8(sought_[rarest_]);
  const __m128i second = _mm_set1_epi8(sought_[nextRarest_]);
  const auto load = [](const char* place) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place)); };
  // All ones where both bytes stand.
  const auto compare = [&](size_t place) {
    const char* at = bytes.data() + place;
    return _mm_and_si128(_mm_cmpeq_epi8(load(at + rarest_), first), _mm_cmpeq_epi8(load(at + nextRarest_), second));
  };
  const auto placeIn = [&](size_t place, __m128i both) {
    for (auto mask = static_cast<unsigned>(_mm_movemask_epi8(both)); mask != 0; mask &= mask - 1) {
      const size_t candidate = place + static_cast<size_t>(__builtin_ctz(mask));
      if (std::memcmp(bytes.data() + candidate, sought_.data(), length) == 0) return candidate;
    }
    return kNotFound;
  };
  size_t place = from;
  // Four at a time, which mostly hold nothing.
  for (; place + 4 * kPlaces <= end; place += 4 * kPlaces) {
    const __m128i all[] = {compare(place), compare(place + kPlaces), compare(place + 2 * kPlaces),
                           compare(place + 3 * kPlaces)};
    const __m128i any = _mm_or_si128(_mm_or_si128(all[0], all[1]), _mm_or_si128(all[2], all[3]));
    if (_mm_movemask_epi8(any) == 0) continue;
    for (size_t i = 0; i < 4; ++i) {
      if (const size_t found = placeIn(place + i * kPlaces, all[i]); found != kNotFound) return found;
    }
  }
  for (; place + kPlaces <= end; place += kPlaces) {
    if (const size_t found = placeIn(place, compare(place)); found != kNotFound) return found;
  }
  return findPlainly(bytes, place);
}

#else

size_t ByteSearch::find(std::string_view bytes, size_t from) const {
  return findPlainly(bytes, from);
}

#endif

}  // namespace quillmere
