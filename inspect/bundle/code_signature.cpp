#include "inspect/bundle/code_signature.h"

#include "inspect/bundle/bytes.h"

namespace rcp::inspect {
namespace {

constexpr std::uint32_t kSuperBlob = 0xFADE0CC0;
constexpr std::uint32_t kCodeDirectory = 0xFADE0C02;
constexpr std::uint32_t kEntitlements = 0xFADE7171;
constexpr std::uint32_t kAdHoc = 0x2;
constexpr std::uint32_t kHardened = 0x10000;
constexpr std::uint32_t kMostBlobs = 64;  // there are about a dozen kinds

}  // namespace

std::optional<CodeSignature> readCodeSignature(std::string_view blob) {
    Bytes all(blob, ByteOrder::kBig);
    const std::uint32_t count = all.word(8);
    if (all.word(0) != kSuperBlob || count > kMostBlobs) {
        return std::nullopt;
    }
    CodeSignature signature;
    bool hasDirectory = false;
    bool hasEntitlements = false;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t at = all.word(12 + std::uint64_t{8} * i + 4);
        const std::uint32_t magic = all.word(at);
        const std::uint32_t size = all.word(std::uint64_t{at} + 4);
        Bytes part(all.part(at, size), ByteOrder::kBig);
        if (magic == kCodeDirectory && !hasDirectory) {
            hasDirectory = true;
            const std::uint32_t flags = part.word(12);
            signature.isAdHoc = (flags & kAdHoc) != 0;
            signature.isHardened = (flags & kHardened) != 0;
            signature.identifier = part.text(part.word(20));
        } else if (magic == kEntitlements && size >= 8) {
            if (hasEntitlements) {
                return std::nullopt;
            }
            hasEntitlements = true;
            signature.entitlements = part.part(8, size - 8);
        }
        if (part.isDamaged()) {
            return std::nullopt;
        }
    }
    return all.isDamaged() || !hasDirectory ? std::nullopt : std::optional(signature);
}

}  // namespace rcp::inspect
