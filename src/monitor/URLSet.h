#pragma once

#include <deque>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "foundation/FileURL.h"

namespace quillmere {

/// A set of URLs that remembers the order in which they came. A folder is listed in the same order each time, so the
/// next URL asked for is nearly always the one after the last: that is tried before anything is hashed.
class URLSet {
 public:
  using value_type = FileURL;
  using const_iterator = std::deque<FileURL>::const_iterator;

  URLSet() = default;
  URLSet(std::initializer_list<FileURL> urls) {
    for (const FileURL& url : urls) insert(url);
  }
  URLSet(const URLSet& other) {
    for (const FileURL& url : other) insert(url);
  }
  URLSet(URLSet&&) = default;
  URLSet& operator=(URLSet other) {
    urls_.swap(other.urls_);
    indices_.swap(other.indices_);
    return *this;
  }

  size_t size() const { return urls_.size(); }
  bool empty() const { return urls_.empty(); }
  const_iterator begin() const { return urls_.begin(); }
  const_iterator end() const { return urls_.end(); }
  const FileURL& operator[](size_t index) const { return urls_[index]; }
  bool contains(const FileURL& url) const { return indices_.contains(url.path()); }
  bool operator==(const URLSet& other) const;

  /// The place of a path; `guess` is looked at first.
  std::optional<size_t> indexOf(std::string_view path, size_t guess = 0) const;
  void insert(const FileURL& url);
  /// The last URL takes the place of the one that goes.
  void erase(const FileURL& url);

 private:
  // A deque does not move what it holds, so the views into it stay valid.
  std::deque<FileURL> urls_;
  std::unordered_map<std::string_view, size_t> indices_;
};

}  // namespace quillmere
