#include "inspect/handoff/elf.h"

#include "inspect/bundle/bytes.h"

#include <map>

namespace rcp::inspect {
namespace {

constexpr std::string_view kMagic =
    "\x7f"
    "ELF";
constexpr std::uint64_t kHeader = 64;
constexpr std::uint64_t kSegment = 56;
constexpr std::uint64_t kSection = 64;
constexpr std::uint64_t kSymbol = 24;
constexpr std::size_t kMostLibraries = 512;

// Types of files, segments, sections and entries of the dynamic section.
constexpr std::uint64_t kShared = 3;
constexpr std::uint32_t kLoad = 1;
constexpr std::uint32_t kDynamic = 2;
constexpr std::uint32_t kInterpreter = 3;
constexpr std::uint32_t kDynamicSymbols = 11;
constexpr std::uint64_t kNeeded = 1;
constexpr std::uint64_t kTexts = 5;
constexpr std::uint64_t kOldPath = 15;
constexpr std::uint64_t kPath = 29;

std::string machineName(std::uint64_t machine) {
    switch (machine) {
        case 3:
            return "i686";
        case 40:
            return "arm";
        case 62:
            return "x86_64";
        case 183:
            return "aarch64";
        case 243:
            return "riscv64";
        default:
            return "machine " + std::to_string(machine);
    }
}

class Reader {
  public:
    explicit Reader(std::string_view file) : bytes_(file, ByteOrder::kLittle), size_(file.size()) {}

    std::optional<ElfImage> read() {
        ElfImage image;
        const bool isBig = bytes_.byte(5) == 2;
        image.machine = isBig ? "machine of the other byte order" : machineName(half(18));
        if (bytes_.isDamaged() || isBig || bytes_.byte(4) != 2) {
            return bytes_.isDamaged() ? std::nullopt : std::optional(image);
        }
        image.isShared = half(16) == kShared;
        readSegments(image);
        readSymbols(image);
        return bytes_.isDamaged() ? std::nullopt : std::optional(image);
    }

  private:
    struct Segment {
        std::uint64_t offset;
        std::uint64_t address;
        std::uint64_t size;
    };

    std::uint64_t half(std::uint64_t at) { return bytes_.number(at, 2); }
    std::uint64_t wide(std::uint64_t at) { return bytes_.number(at, 8); }

    void readSegments(ElfImage& image) {
        const std::uint64_t table = wide(32);
        const std::uint64_t count = half(56);
        if (half(54) != kSegment) {
            bytes_.refuse();  // as the system and the loader do
        }
        std::optional<Segment> dynamic;
        for (std::uint64_t i = 0; i < count && !bytes_.isDamaged(); ++i) {
            const std::uint64_t at = table + i * kSegment;
            const Segment segment{wide(at + 8), wide(at + 16), wide(at + 32)};
            const std::uint32_t kind = bytes_.word(at);
            if (kind == kLoad) {
                (void)bytes_.part(segment.offset, segment.size);  // a file that was cut is none
                loaded_.push_back(segment);
            } else if (kind == kDynamic) {
                dynamic = segment;
            } else if (kind == kInterpreter) {
                image.interpreter = bytes_.text(segment.offset);
            }
        }
        if (dynamic && !bytes_.isDamaged()) {
            readDynamic(*dynamic, image);
        }
    }

    // Where the bytes for an address lie in the file; its end for an address that has none.
    [[nodiscard]] std::uint64_t placeOf(std::uint64_t address) const {
        for (const Segment& segment : loaded_) {
            if (address >= segment.address && address - segment.address < segment.size) {
                return segment.offset + (address - segment.address);
            }
        }
        return size_;
    }

    void readDynamic(const Segment& dynamic, ElfImage& image) {
        std::multimap<std::uint64_t, std::uint64_t> entries;
        const std::uint64_t end = dynamic.offset + dynamic.size;
        for (std::uint64_t at = dynamic.offset; at + 16 <= end && !bytes_.isDamaged(); at += 16) {
            if (wide(at) == 0) {
                break;
            }
            entries.emplace(wide(at), wide(at + 8));
        }
        const auto texts = entries.find(kTexts);
        const std::uint64_t place = texts == entries.end() ? size_ : placeOf(texts->second);
        for (const auto& [tag, value] : entries) {
            if (tag == kNeeded && image.libraries.size() < kMostLibraries) {
                image.libraries.push_back(bytes_.text(place + value));
            } else if (tag == kPath || tag == kOldPath) {
                image.searchPaths = {bytes_.text(place + value)};  // the newer kind comes last
            }
        }
    }

    void readSymbols(ElfImage& image) {
        const std::uint64_t table = wide(40);
        const std::uint64_t count = half(60);
        if (half(58) != kSection || table > size_ || count * kSection > size_ - table) {
            return;  // nobody needs it to load the file
        }
        for (std::uint64_t i = 0; i < count && !bytes_.isDamaged(); ++i) {
            const std::uint64_t at = table + i * kSection;
            if (bytes_.word(at + 4) == kDynamicSymbols) {
                const std::uint64_t texts = wide(table + bytes_.word(at + 40) * kSection + 24);
                addSymbols(wide(at + 24), wide(at + 32), texts, image);
                return;
            }
        }
    }

    void addSymbols(std::uint64_t begin, std::uint64_t size, std::uint64_t texts, ElfImage& image) {
        (void)bytes_.part(begin, size);
        image.symbols.emplace();
        for (std::uint64_t at = begin; !bytes_.isDamaged() && at + kSymbol <= begin + size;
             at += kSymbol) {
            const bool isDefined = half(at + 6) != 0;
            const bool isForOthers = bytes_.byte(at + 4) >> 4U != 0;
            if (isDefined && isForOthers) {
                image.symbols->push_back(bytes_.textView(texts + bytes_.word(at)));
            }
        }
    }

    Bytes bytes_;
    std::uint64_t size_;
    std::vector<Segment> loaded_;
};

}  // namespace

bool looksLikeElf(std::string_view start) {
    return start.starts_with(kMagic);
}

std::optional<ElfImage> readElf(std::string_view file) {
    return looksLikeElf(file) && file.size() >= kHeader ? Reader(file).read() : std::nullopt;
}

}  // namespace rcp::inspect
