#pragma once

#include <cstddef>
#include <memory>
#include <string>

struct evp_md_ctx_st;

namespace tavenhall {

// A SHA-256 digest of bytes that come in pieces. One thread. Throws std::runtime_error if the library has none.
class Sha256 {
 public:
  Sha256();

  void begin();
  void add(const char* bytes, std::size_t size);

  // 64 lower-case hexadecimal digits.
  [[nodiscard]] std::string end();

 private:
  const std::unique_ptr<evp_md_ctx_st, void (*)(evp_md_ctx_st*)> context_;
};

}  // namespace tavenhall
