#include "mach_o_fixture.h"

namespace rcp::inspect {
namespace {

std::string little(std::uint32_t value) {
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(value >> shift & 0xFFU);
    }
    return bytes;
}

std::string big(std::size_t value) {
    const std::string bytes = little(static_cast<std::uint32_t>(value));
    return {bytes.rbegin(), bytes.rend()};
}

std::string command(std::uint32_t kind, std::string content) {
    content.resize((content.size() + 7) / 8 * 8);
    return little(kind) + little(static_cast<std::uint32_t>(8 + content.size())) + content;
}

// The position of the text, its time and two versions, then the text.
std::string library(std::uint32_t kind, const std::string& name) {
    return command(kind, little(24) + std::string(12, '\0') + name + '\0');
}

std::string blob(std::size_t magic, const std::string& content) {
    return big(magic) + big(8 + content.size()) + content;
}

std::string signature(const MachO& file) {
    // Version, flags, positions of the hashes and of the identifier, and what is of no interest here.
    const std::string directory =
        blob(0xFADE0C02, big(0x20400) + big(file.signatureFlags) + big(44) + big(44) +
                             std::string(20, '\0') + "com.example" + '\0');
    const std::string entitlements = blob(0xFADE7171, file.entitlements);
    const std::size_t count = 1 + std::size_t{file.entitlementsBlobs};
    const std::size_t first = 12 + count * 8;
    std::string index = big(0) + big(first);
    for (std::uint32_t i = 0; i < file.entitlementsBlobs; ++i) {
        index += big(5) + big(first + directory.size());
    }
    return big(0xFADE0CC0) + big(first + directory.size() + entitlements.size()) + big(count) +
           index + directory + entitlements;
}

}  // namespace

std::string MachO::bytes() const {
    std::vector<std::string> commands{
        command(0x32, little(1) + little(oldestSystem) + little(oldestSystem) + little(0))};
    for (const std::string& name : libraries) {
        commands.push_back(library(0xC, name));
    }
    for (const std::string& name : weakLibraries) {
        commands.push_back(library(0x80000018, name));
    }
    for (const std::string& name : upwardLibraries) {
        commands.push_back(library(0x80000023, name));
    }
    for (const std::string& path : searchPaths) {
        commands.push_back(command(0x8000001C, little(12) + path + '\0'));
    }
    if (!ownName.empty()) {
        commands.push_back(library(0xD, ownName));
    }
    std::string all;
    for (const std::string& one : commands) {
        all += one;
    }
    const std::string blobs = isSigned ? signature(*this) : std::string();
    const std::uint32_t signatures = isSigned ? signatureCommands : 0;
    const std::size_t end = 32 + all.size() + std::size_t{16} * signatures;
    for (std::uint32_t i = 0; i < signatures; ++i) {
        all += command(0x1D, little(static_cast<std::uint32_t>(end)) +
                                 little(static_cast<std::uint32_t>(blobs.size())));
    }
    const auto count = static_cast<std::uint32_t>(commands.size() + signatures);
    return little(0xFEEDFACF) + little(processor) + little(3) + little(type) + little(count) +
           little(static_cast<std::uint32_t>(all.size())) + little(0x200085) + little(0) + all +
           blobs;
}

std::string universal(const std::vector<MachO>& images) {
    std::string head = big(0xCAFEBABE) + big(images.size());
    std::string content;
    const std::size_t first = head.size() + 20 * images.size();
    for (const MachO& image : images) {
        const std::string bytes = image.bytes();
        head += big(image.processor) + big(3) + big(first + content.size()) + big(bytes.size()) +
                big(0);
        content += bytes;
    }
    return head + content;
}

}  // namespace rcp::inspect
