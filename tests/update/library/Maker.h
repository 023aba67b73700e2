#pragma once

#include <openssl/evp.h>
#include <QtCore/QByteArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <array>
#include <memory>

#include "update/library/FeedSignature.h"

namespace quillmere::testing {

/// Who makes the program, with a pair of keys of a test's own.
class Maker {
 public:
  Maker() {
    for (size_t i = 0; i < secret_.size(); ++i) secret_[i] = static_cast<unsigned char>(i * 7 + 1);
    key_.reset(EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, secret_.data(), secret_.size()));
  }

  QByteArray publicKey() const {
    std::array<unsigned char, 32> bytes{};
    size_t size = bytes.size();
    EVP_PKEY_get_raw_public_key(key_.get(), bytes.data(), &size);
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(size)};
  }
  FeedSignature check() const { return FeedSignature(publicKey()); }

  QByteArray sign(const QByteArray& message) const {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_.get());
    std::array<unsigned char, 64> bytes{};
    size_t size = bytes.size();
    EVP_DigestSign(context.get(), bytes.data(), &size, reinterpret_cast<const unsigned char*>(message.constData()),
                   static_cast<size_t>(message.size()));
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(size)};
  }

  /// A feed's file of this object.
  QByteArray signedFeed(const QByteArray& object) const {
    return "quillmere-update-feed ed25519 " + sign("quillmere-update-feed\n" + object).toBase64() + "\n" + object;
  }
  /// What a good feed says of a package.
  QJsonObject feedOf(const QByteArray& package) const {
    return {{QStringLiteral("format"), 1},
            {QStringLiteral("version"), QStringLiteral("0.2.0")},
            {QStringLiteral("minimumVersion"), QStringLiteral("0.1")},
            {QStringLiteral("expires"), QStringLiteral("2030-01-31T12:00:00Z")},
            {QStringLiteral("package"), QStringLiteral("https://updates.example/quillmere_0.2.0_amd64.deb")},
            {QStringLiteral("size"), package.size()},
            {QStringLiteral("signature"), QString::fromLatin1(sign(package).toBase64())},
            {QStringLiteral("notes"), QStringLiteral("Faster.")}};
  }
  static QByteArray json(const QJsonObject& object) { return QJsonDocument(object).toJson(); }

 private:
  std::array<unsigned char, 32> secret_{};
  std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_{nullptr, &EVP_PKEY_free};
};

}  // namespace quillmere::testing
