#pragma once

#include <QtCore/QByteArray>

namespace quillmere {

/// The maker's public key, and what it can tell. Any thread.
class FeedSignature {
 public:
  static constexpr qsizetype kKeyBytes = 32;
  static constexpr qsizetype kSignatureBytes = 64;

  explicit FeedSignature(QByteArray key) : key_(std::move(key)) {}
  /// Whether the owner of the private key signed exactly this.
  bool isGenuine(QByteArrayView message, QByteArrayView signature) const;

 private:
  QByteArray key_;
};

}  // namespace quillmere
