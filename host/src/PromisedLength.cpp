#include "PromisedLength.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace qohost {

namespace {

// Where a file must end at the earliest, in bytes from its start; nothing when it doesn't tell.
using End = std::optional<std::uint64_t>;
constexpr End kNotTold = std::nullopt;
// Of a file that ends before it has told.
constexpr End kBeyond = std::numeric_limits<std::uint64_t>::max();

// A file's bytes at any place. What lies behind its end reads as 0 and is remembered.
class Bytes {
public:
    explicit Bytes(const std::filesystem::path& file) : fStream(file, std::ios::binary) {
        std::error_code error;
        fSize = std::filesystem::file_size(file, error);
        if (error) fSize = 0;
    }

    std::uint64_t Size() const { return fSize; }
    bool HasMissed() const { return fHasMissed; }

    std::string Text(std::uint64_t position, std::size_t length) {
        std::string text(length, '\0');
        fStream.clear();
        fStream.seekg(static_cast<std::streamoff>(std::min(position, fSize)));
        fStream.read(text.data(), static_cast<std::streamsize>(length));
        if (static_cast<std::size_t>(fStream.gcount()) < length) fHasMissed = true;
        return text;
    }
    // A number of up to 8 bytes.
    std::uint64_t Big(std::uint64_t position, std::size_t length) { return Number(Text(position, length)); }
    std::uint64_t Little(std::uint64_t position, std::size_t length) {
        std::string text = Text(position, length);
        std::reverse(text.begin(), text.end());
        return Number(text);
    }
    std::uint64_t Number(std::uint64_t position, std::size_t length, std::endian order) {
        return order == std::endian::big ? Big(position, length) : Little(position, length);
    }

private:
    static std::uint64_t Number(std::string_view text) {
        std::uint64_t number = 0;
        for (const char c : text)
            number = number << 8U | static_cast<unsigned char>(c);
        return number;
    }

    std::ifstream fStream;
    std::uint64_t fSize = 0;
    bool fHasMissed = false;
};

// RIFF, IFF: the length behind the first chunk's name. What was recorded to a pipe says 0 or one too large for a file.
End EndOfFirstChunk(std::uint64_t length) {
    constexpr std::uint64_t kUnknown = 0x7FFF0000;
    constexpr std::uint64_t kHeader = 8;
    return length > 0 && length < kUnknown ? End(kHeader + length) : kNotTold;
}

End EndOfBigChunk(Bytes& bytes) {
    return EndOfFirstChunk(bytes.Big(4, 4));
}

End EndOfLittleChunk(Bytes& bytes) {
    return EndOfFirstChunk(bytes.Little(4, 4));
}

// EBU Tech 3306: the chunk "ds64" begins with the length that the first one has no room for.
End EndOfRF64(Bytes& bytes) {
    if (bytes.Text(12, 4) != "ds64") return kNotTold;
    const std::uint64_t length = bytes.Little(20, 8);
    return length > 0 && length <= std::uint64_t(std::numeric_limits<std::int64_t>::max()) ? End(8 + length) : kNotTold;
}

End EndOfWave64(Bytes& bytes) {
    return bytes.Little(16, 8);
}

End EndOfAU(Bytes& bytes, std::endian order) {
    constexpr std::uint64_t kUnknown = 0xFFFFFFFF;
    const std::uint64_t length = bytes.Number(8, 4, order);
    return length == kUnknown ? kNotTold : End(bytes.Number(4, 4, order) + length);
}

End EndOfBigAU(Bytes& bytes) {
    return EndOfAU(bytes, std::endian::big);
}

End EndOfLittleAU(Bytes& bytes) {
    return EndOfAU(bytes, std::endian::little);
}

// Core Audio Format: chunks up to the end; the sound's may have an open length if it is the last.
End EndOfCAF(Bytes& bytes) {
    constexpr std::uint64_t kHeader = 12; // of a chunk
    bool hasSound = false;
    std::uint64_t position = 8;
    while (position < bytes.Size()) {
        const bool isSound = bytes.Text(position, 4) == "data";
        const auto length = static_cast<std::int64_t>(bytes.Big(position + 4, 8));
        if (length < 0) return isSound && length == -1 ? kNotTold : kBeyond;
        hasSound = hasSound || isSound;
        position += kHeader + static_cast<std::uint64_t>(length);
    }
    return hasSound ? End(position) : kBeyond;
}

// Blocks with lengths of 24 bits, the last without. Longer sounds are written with lengths that don't fit.
End EndOfVOC(Bytes& bytes) {
    constexpr std::uint64_t kLargestBlock = 0xFFFFFF;
    constexpr std::uint64_t kLastKnownKind = 9;
    if (bytes.Size() > kLargestBlock) return kNotTold;
    std::uint64_t position = bytes.Little(20, 2);
    while (position < bytes.Size()) {
        const std::uint64_t kind = bytes.Big(position, 1);
        if (kind == 0) return position + 1;
        if (kind > kLastKnownKind) return kNotTold;
        position += 4 + bytes.Little(position + 1, 3);
    }
    return position;
}

// The NIST SPHERE header is text: its own length in the second line, then "name -i number" in each.
End EndOfSPHERE(Bytes& bytes) {
    const std::string lengthText = bytes.Text(8, 8);
    const auto headerLength = static_cast<std::size_t>(std::strtoul(lengthText.c_str(), nullptr, 10));
    constexpr std::size_t kLongestHeader = 65536;
    if (headerLength > kLongestHeader) return kNotTold;
    const std::string header = bytes.Text(0, headerLength);
    const auto number = [&header](const std::string& name) -> std::uint64_t {
        const std::size_t found = header.find("\n" + name + " -i ");
        return found == std::string::npos ? 0 : std::strtoull(header.c_str() + found + name.size() + 5, nullptr, 10);
    };
    const std::uint64_t sampleBytes = std::max<std::uint64_t>(number("sample_n_bytes"), 1); // 1 goes without saying
    const std::uint64_t length = number("sample_count") * number("channel_count") * sampleBytes;
    return length > 0 ? End(headerLength + length) : kNotTold;
}

// Audio Visual Research: frames of one or two channels of 8 or 16 bits.
End EndOfAVR(Bytes& bytes) {
    const std::uint64_t channels = bytes.Big(12, 2) == 0 ? 1 : 2;
    return 128 + bytes.Big(26, 4) * channels * (bytes.Big(14, 2) / 8);
}

// Akai MPC 2000: frames of one or two channels of 16 bits.
End EndOfMPC2000(Bytes& bytes) {
    return 42 + bytes.Little(30, 4) * (bytes.Big(21, 1) + 1) * 2;
}

End EndOfPsionWave(Bytes& bytes) {
    return 32 + bytes.Big(18, 4);
}

// FastTracker 2 instrument; some programs leave the sample's length out.
End EndOfXI(Bytes& bytes) {
    constexpr std::uint64_t kSampleHeader = 0x12A;
    const std::uint64_t length = bytes.Little(kSampleHeader, 4);
    return length > 0 ? End(kSampleHeader + 40 + length) : kNotTold;
}

// MIDI Sample Dump Standard: packets of 120 bytes of sound, 7 bits in a byte.
End EndOfSDS(Bytes& bytes) {
    constexpr std::uint64_t kHeader = 21;
    constexpr std::uint64_t kPacket = 127;
    const std::uint64_t samples = bytes.Big(10, 1) | bytes.Big(11, 1) << 7U | bytes.Big(12, 1) << 14U;
    const std::uint64_t inPacket = 120 / std::max<std::uint64_t>((bytes.Big(6, 1) + 6) / 7, 1);
    return kHeader + (samples + inPacket - 1) / std::max<std::uint64_t>(inPacket, 1) * kPacket;
}

// MATLAB 4: matrices of rows and columns, each with a header of five numbers and a name. Kind: thousands the byte
// order, tens the kind of number.
End EndOfMatlab4(Bytes& bytes, std::endian order) {
    constexpr std::uint64_t kBytesOfKind[] = {8, 4, 4, 2, 2, 1};
    constexpr std::uint64_t kHeader = 20;
    std::uint64_t position = 0;
    for (int matrix = 0; matrix < 2 && !bytes.HasMissed(); ++matrix) { // the sample rate and the sound
        const std::uint64_t kind = bytes.Number(position, 4, order) / 10 % 10;
        const std::uint64_t values = bytes.Number(position + 4, 4, order) * bytes.Number(position + 8, 4, order);
        if (kind >= std::size(kBytesOfKind)) return kNotTold;
        position += kHeader + bytes.Number(position + 16, 4, order) + values * kBytesOfKind[kind];
    }
    return position;
}

End EndOfBigMatlab4(Bytes& bytes) {
    return EndOfMatlab4(bytes, std::endian::big);
}

End EndOfLittleMatlab4(Bytes& bytes) {
    return EndOfMatlab4(bytes, std::endian::little);
}

// MATLAB 5: behind a header of text, elements with their lengths.
End EndOfMatlab5(Bytes& bytes) {
    constexpr std::uint64_t kHeader = 128;
    const std::endian order = bytes.Text(126, 2) == "MI" ? std::endian::big : std::endian::little;
    std::uint64_t position = kHeader;
    for (int matrix = 0; matrix < 2 && !bytes.HasMissed(); ++matrix)
        position += 8 + bytes.Number(position + 4, 4, order);
    return position;
}

// RFC 3533: the last page of a stream is marked as such.
End EndOfOgg(Bytes& bytes) {
    constexpr std::uint64_t kLargestPage = 65307;
    constexpr std::size_t kFlags = 5; // of the page, from its start
    constexpr int kIsLast = 4;
    const std::uint64_t start = bytes.Size() - std::min(bytes.Size(), kLargestPage);
    const std::string end = bytes.Text(start, static_cast<std::size_t>(bytes.Size() - start));
    const std::size_t page = end.rfind("OggS");
    if (page == std::string::npos || page + kFlags >= end.size() || (end[page + kFlags] & kIsLast) == 0) return kBeyond;
    constexpr std::uint64_t kSegmentCount = 26;
    const std::uint64_t segments = bytes.Big(start + page + kSegmentCount, 1);
    std::uint64_t length = kSegmentCount + 1 + segments;
    for (const char size : bytes.Text(start + page + kSegmentCount + 1, segments))
        length += static_cast<unsigned char>(size);
    return start + page + length;
}

struct Kind {
    std::string_view magic; // at the start of the file
    End (*end)(Bytes&);
};

using namespace std::string_view_literals;
constexpr Kind kKinds[] = {
    {"RIFF"sv, EndOfLittleChunk},
    {"RIFX"sv, EndOfBigChunk},
    {"FORM"sv, EndOfBigChunk},
    {"RF64"sv, EndOfRF64},
    {"riff\x2E\x91\xCF\x11"sv, EndOfWave64},
    {".snd"sv, EndOfBigAU},
    {"dns."sv, EndOfLittleAU},
    {"caff"sv, EndOfCAF},
    {"OggS"sv, EndOfOgg},
    {"Creative Voice File\x1A"sv, EndOfVOC},
    {"NIST_1A\n"sv, EndOfSPHERE},
    {"2BIT"sv, EndOfAVR},
    {"\x01\x04"sv, EndOfMPC2000},
    {"ALawSoundFile**\0"sv, EndOfPsionWave},
    {"Extended Instrument: "sv, EndOfXI},
    {"\xF0\x7E"sv, EndOfSDS},
    {"\0\0\x03\xE8\0\0\0\x01"sv, EndOfBigMatlab4},
    {"\0\0\0\0\x01\0\0\0"sv, EndOfLittleMatlab4},
    {"MATLAB 5.0"sv, EndOfMatlab5},
};

} // namespace

bool IsCutOff(const std::filesystem::path& file) {
    constexpr std::size_t kLongestMagic = 32;
    Bytes bytes(file);
    const std::string start =
        bytes.Text(0, static_cast<std::size_t>(std::min<std::uint64_t>(kLongestMagic, bytes.Size())));
    const auto* const kind =
        std::ranges::find_if(kKinds, [&](const Kind& known) { return start.starts_with(known.magic); });
    if (kind == std::end(kKinds)) return false;
    const End end = kind->end(bytes);
    return bytes.HasMissed() || (end && *end > bytes.Size());
}

} // namespace qohost
