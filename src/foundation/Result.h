#pragma once

#include <utility>
#include <variant>

namespace quillmere {

/// What came of something that can fail: a value or the reason why there is none.
template <typename Value, typename Reason>
class [[nodiscard]] Result {
 public:
  Result(Value value) : outcome_(std::in_place_index<0>, std::move(value)) {}
  Result(Reason reason) : outcome_(std::in_place_index<1>, std::move(reason)) {}

  bool isDone() const { return outcome_.index() == 0; }
  explicit operator bool() const { return isDone(); }

  // Each only where the result is of its kind.
  const Value& value() const& { return std::get<0>(outcome_); }
  Value& value() & { return std::get<0>(outcome_); }
  Value value() && { return std::get<0>(std::move(outcome_)); }
  const Reason& reason() const { return std::get<1>(outcome_); }

  const Value& operator*() const& { return value(); }
  Value operator*() && { return std::move(*this).value(); }
  const Value* operator->() const { return &value(); }

 private:
  std::variant<Value, Reason> outcome_;
};

}  // namespace quillmere
