#include "inspect/redaction/salted_digest.h"

#include <unistd.h>

#include <bit>
#include <stdexcept>
#ifdef __APPLE__
#include <sys/random.h>
#endif

namespace rcp::inspect {
namespace {

constexpr std::size_t kWord = 8;
constexpr int kRoundsOfWord = 2;
constexpr int kRoundsAtEnd = 4;

using State = std::array<std::uint64_t, 4>;

void mix(State& v, int rounds) {
    for (int i = 0; i < rounds; ++i) {
        v[0] += v[1];
        v[1] = std::rotl(v[1], 13) ^ v[0];
        v[0] = std::rotl(v[0], 32);
        v[2] += v[3];
        v[3] = std::rotl(v[3], 16) ^ v[2];
        v[0] += v[3];
        v[3] = std::rotl(v[3], 21) ^ v[0];
        v[2] += v[1];
        v[1] = std::rotl(v[1], 17) ^ v[2];
        v[2] = std::rotl(v[2], 32);
    }
}

void absorb(State& v, std::uint64_t word) {
    v[3] ^= word;
    mix(v, kRoundsOfWord);
    v[0] ^= word;
}

// The least significant byte first.
std::uint64_t wordOf(std::string_view bytes) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        word |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    }
    return word;
}

}  // namespace

Salt freshSalt() {
    Salt salt{};
    if (getentropy(salt.data(), sizeof salt) != 0) {
        throw std::runtime_error("the system gives no random numbers");
    }
    return salt;
}

std::uint64_t sipHash(const Salt& salt, std::string_view text) {
    State v{salt[0] ^ 0x736f6d6570736575U, salt[1] ^ 0x646f72616e646f6dU,
            salt[0] ^ 0x6c7967656e657261U, salt[1] ^ 0x7465646279746573U};
    const std::uint64_t length = std::uint64_t{text.size()} << 56U;
    for (; text.size() >= kWord; text.remove_prefix(kWord)) {
        absorb(v, wordOf(text.substr(0, kWord)));
    }
    absorb(v, length | wordOf(text));
    v[2] ^= 0xffU;
    mix(v, kRoundsAtEnd);
    return v[0] ^ v[1] ^ v[2] ^ v[3];
}

std::string saltedDigest(const Salt& salt, std::string_view text) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::uint64_t hash = sipHash(salt, text);
    std::string digest(6, '0');
    for (char& digit : digest) {
        digit = kDigits[hash & 15U];
        hash >>= 4U;
    }
    return digest;
}

}  // namespace rcp::inspect
