#include "host/manifest/sha256.h"

#include <array>
#include <openssl/evp.h>
#include <stdexcept>

namespace tavenhall {

namespace {

void require(int isDone) {
  if (isDone != 1) {
    throw std::runtime_error("OpenSSL cannot compute a digest");
  }
}

}  // namespace

Sha256::Sha256() : context_(EVP_MD_CTX_new(), EVP_MD_CTX_free) { require(context_ != nullptr ? 1 : 0); }

void Sha256::begin() { require(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr)); }

void Sha256::add(const char* bytes, std::size_t size) {
  require(EVP_DigestUpdate(context_.get(), bytes, size));
}

std::string Sha256::end() {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  require(EVP_DigestFinal_ex(context_.get(), digest.data(), &size));
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (unsigned i = 0; i < size; ++i) {
    text += kDigits[digest[i] >> 4U];
    text += kDigits[digest[i] & 15U];
  }
  return text;
}

}  // namespace tavenhall
