#pragma once

#include <functional>
#include <memory>

#include "foundation/Date.h"

namespace quillmere::testing {

/// A wall clock that moves only when told.
class SettableClock {
 public:
  explicit SettableClock(Date start) : date_(std::make_shared<Date>(start)) {}
  Date now() const { return *date_; }
  void set(Date date) { *date_ = date; }
  void advance(double bySeconds) { *date_ = *date_ + bySeconds; }
  /// For injection; may outlive the clock.
  std::function<Date()> reader() const {
    return [date = date_] { return *date; };
  }

 private:
  std::shared_ptr<Date> date_;
};

}  // namespace quillmere::testing
