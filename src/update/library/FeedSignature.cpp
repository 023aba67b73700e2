#include "update/library/FeedSignature.h"

#include <openssl/evp.h>
#include <memory>

namespace quillmere {
namespace {

const unsigned char* bytesOf(QByteArrayView view) {
  return reinterpret_cast<const unsigned char*>(view.data());
}

}  // namespace

bool FeedSignature::isGenuine(QByteArrayView message, QByteArrayView signature) const {
  if (key_.size() != kKeyBytes || signature.size() != kSignatureBytes) return false;
  const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
      EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytesOf(key_), static_cast<size_t>(kKeyBytes)),
      &EVP_PKEY_free);
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
  if (!key || !context) return false;
  if (EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) != 1) return false;
  // Neither 0, not genuine, nor a negative number, an error, is a yes.
  return EVP_DigestVerify(context.get(), bytesOf(signature), static_cast<size_t>(signature.size()), bytesOf(message),
                          static_cast<size_t>(message.size())) == 1;
}

}  // namespace quillmere
