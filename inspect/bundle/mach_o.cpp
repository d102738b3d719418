#include "inspect/bundle/mach_o.h"

#include "inspect/bundle/bytes.h"
#include "inspect/bundle/code_signature.h"

#include <algorithm>
#include <charconv>

namespace rcp::inspect {
namespace {

constexpr std::uint32_t kUniversal = 0xCAFEBABE;  // and that of Java's classes
constexpr std::uint32_t kUniversal64 = 0xCAFEBABF;
constexpr std::uint32_t kMachO = 0xFEEDFACF;
constexpr std::uint32_t kMachO32 = 0xFEEDFACE;
// The number behind a class's magic is its version, 45 and more.
constexpr std::uint32_t kMostImages = 44;

// Load commands. Whoever must not miss one has the highest bit set.
constexpr std::uint32_t kLoadLibrary = 0xC;
constexpr std::uint32_t kOwnName = 0xD;
constexpr std::uint32_t kSignature = 0x1D;
constexpr std::uint32_t kOldestMacos = 0x24;
constexpr std::uint32_t kBuildVersion = 0x32;
constexpr std::uint32_t kWeakLibrary = 0x80000018;
constexpr std::uint32_t kSearchPath = 0x8000001C;
constexpr std::uint32_t kReexportedLibrary = 0x8000001F;
constexpr std::uint32_t kUpwardLibrary = 0x80000023;
constexpr std::uint32_t kPlatformMacos = 1;

std::string processorName(std::uint32_t processor) {
    switch (processor) {
        case 0x01000007:
            return "x86_64";
        case 0x0100000C:
            return "arm64";
        case 0x00000007:
            return "i386";
        default:
            return "processor " + std::to_string(processor);
    }
}

CodeKind kindOf(std::uint32_t type) {
    constexpr std::uint32_t kProgram = 2;
    constexpr std::uint32_t kLibrary = 6;
    constexpr std::uint32_t kPlugin = 8;
    return type == kProgram   ? CodeKind::kProgram
           : type == kLibrary ? CodeKind::kLibrary
           : type == kPlugin  ? CodeKind::kPlugin
                              : CodeKind::kOther;
}

SystemVersion unpacked(std::uint32_t version) {
    return {version >> 16U, version >> 8U & 0xFFU};
}

// The signature alone lies outside of its command.
void readCommand(std::uint32_t kind, std::string_view command, Bytes& file, CodeImage& image) {
    Bytes bytes(command, ByteOrder::kLittle);
    switch (kind) {
        case kLoadLibrary:
        case kWeakLibrary:
        case kReexportedLibrary:
        case kUpwardLibrary:
            image.libraries.push_back({bytes.text(bytes.word(8)), kind == kWeakLibrary});
            break;
        case kOwnName:
            image.ownName = bytes.text(bytes.word(8));
            break;
        case kSearchPath:
            image.searchPaths.push_back(bytes.text(bytes.word(8)));
            break;
        case kOldestMacos:
            image.oldestSystem = unpacked(bytes.word(8));
            break;
        case kBuildVersion:
            if (bytes.word(8) == kPlatformMacos) {
                image.oldestSystem = unpacked(bytes.word(12));
            }
            break;
        case kSignature: {
            // A second one is no signature either: no linker writes it, and each of many could
            // lead to the same large bytes.
            const bool isFirst = !image.signature;
            if (isFirst) {
                image.signature = readCodeSignature(file.part(bytes.word(8), bytes.word(12)));
            }
            if (!isFirst || !image.signature) {
                file.refuse();
            }
            break;
        }
        default:
            break;
    }
    if (bytes.isDamaged()) {
        file.refuse();
    }
}

std::optional<CodeImage> readImage(std::string_view file) {
    Bytes bytes(file, ByteOrder::kLittle);
    const std::uint32_t magic = bytes.word(0);
    if (magic != kMachO && magic != kMachO32) {
        return std::nullopt;
    }
    CodeImage image;
    image.processor = processorName(bytes.word(4));
    image.kind = kindOf(bytes.word(12));
    const std::uint32_t count = bytes.word(16);
    std::uint64_t at = magic == kMachO ? 32 : 28;
    for (std::uint32_t i = 0; i < count && !bytes.isDamaged(); ++i) {
        const std::uint32_t size = bytes.word(at + 4);
        if (size < 8) {
            return std::nullopt;
        }
        readCommand(bytes.word(at), bytes.part(at, size), bytes, image);
        at += size;
    }
    return bytes.isDamaged() ? std::nullopt : std::optional(image);
}

// Many parts that share their bytes would have them read as often.
bool doOverlap(std::vector<std::string_view> parts) {
    std::sort(parts.begin(), parts.end(), [](std::string_view left, std::string_view right) {
        return left.data() < right.data();
    });
    const auto reachesInto = [](std::string_view left, std::string_view right) {
        return left.data() + left.size() > right.data();
    };
    return std::adjacent_find(parts.begin(), parts.end(), reachesInto) != parts.end();
}

}  // namespace

std::optional<SystemVersion> versionOf(std::string_view text) {
    SystemVersion version;
    const char* const end = text.data() + text.size();
    const auto major = std::from_chars(text.data(), end, version.major);
    if (major.ec != std::errc() || (major.ptr != end && *major.ptr != '.')) {
        return std::nullopt;
    }
    if (major.ptr != end) {
        const auto minor = std::from_chars(major.ptr + 1, end, version.minor);
        if (minor.ec != std::errc() || (minor.ptr != end && *minor.ptr != '.')) {
            return std::nullopt;
        }
    }
    return version;
}

std::string textOf(SystemVersion version) {
    return std::to_string(version.major) + "." + std::to_string(version.minor);
}

bool looksLikeMachO(std::string_view start) {
    Bytes little(start, ByteOrder::kLittle);
    Bytes big(start, ByteOrder::kBig);
    const std::uint32_t magic = little.word(0);
    const bool isUniversal = big.word(0) == kUniversal || big.word(0) == kUniversal64;
    return magic == kMachO || magic == kMachO32 || (isUniversal && big.word(4) <= kMostImages);
}

std::optional<std::vector<CodeImage>> readMachO(std::string_view file) {
    Bytes bytes(file, ByteOrder::kBig);
    const std::uint32_t magic = bytes.word(0);
    std::vector<std::string_view> parts{file};
    if (magic == kUniversal || magic == kUniversal64) {
        parts.clear();
        const std::size_t width = magic == kUniversal64 ? 8 : 4;
        const std::uint64_t step = 12 + 2 * width + (magic == kUniversal64 ? 4 : 0);
        const std::uint32_t count = bytes.word(4);
        for (std::uint32_t i = 0; i < count && !bytes.isDamaged(); ++i) {
            const std::uint64_t entry = 8 + i * step + 8;
            parts.push_back(
                bytes.part(bytes.number(entry, width), bytes.number(entry + width, width)));
        }
    }
    if (bytes.isDamaged() || doOverlap(parts)) {
        return std::nullopt;
    }
    std::vector<CodeImage> images;
    for (const std::string_view part : parts) {
        const std::optional<CodeImage> image = readImage(part);
        if (!image) {
            return std::nullopt;
        }
        images.push_back(*image);
    }
    return images.empty() ? std::nullopt : std::optional(images);
}

}  // namespace rcp::inspect
