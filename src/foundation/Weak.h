#pragma once

#include <memory>

namespace quillmere {

/// A pointer that turns to null when the object that made it goes. Main thread only.
template <typename T>
class Weak {
 public:
  Weak() = default;
  Weak(T* object, std::weak_ptr<void> life) : object_(object), life_(std::move(life)) {}
  T* get() const { return life_.expired() ? nullptr : object_; }
  T* operator->() const { return get(); }
  explicit operator bool() const { return get() != nullptr; }

 private:
  T* object_ = nullptr;
  std::weak_ptr<void> life_;
};

/// A member that lets its owner hand out weak pointers to itself.
class Lifetime {
 public:
  Lifetime() = default;
  Lifetime(const Lifetime&) = delete;
  Lifetime& operator=(const Lifetime&) = delete;

  template <typename T>
  Weak<T> weak(T* owner) const {
    return Weak<T>(owner, life_);
  }

 private:
  std::shared_ptr<void> life_ = std::make_shared<char>();
};

}  // namespace quillmere
