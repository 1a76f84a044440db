#include "login/secret.h"

#include <openssl/crypto.h>
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace oam::console {

std::string NewSecret() {
    std::array<unsigned char, 32> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw std::system_error(errno, std::generic_category(), "getrandom");
    std::string text;
    for (const unsigned char byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

bool IsSameSecret(std::string_view given, std::string_view right) {
    return given.size() == right.size() &&
           CRYPTO_memcmp(given.data(), right.data(), right.size()) == 0;
}

}  // namespace oam::console
