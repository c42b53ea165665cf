#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

/// A matrix for SdifWriter, row by row.
struct SdifMatrix {
    std::string signature;
    std::uint32_t dataType = 8;  // 4 and 8 are floats of so many bytes, 0x101 to 0x108 and 0x201 to 0x208 integers
    std::uint32_t numRows = 1;
    std::uint32_t numColumns = 1;
    std::vector<double> values;
};

/// Puts SDIF files together for tests, in memory, and wrong ones as well as right ones.
class SdifWriter {
public:
    explicit SdifWriter(std::uint32_t version = 3) {
        bytes = "SDIF";
        Put4(8);
        Put4(version);
        Put4(1);
    }

    /// A text as a chunk without a frame around it.
    void BareChunk(std::string const& signature, std::string const& text) {
        bytes += signature;
        Put4(static_cast<std::uint32_t>(text.size()));
        bytes += text;
    }

    /// A text as the only matrix of a frame.
    void TextFrame(std::string const& signature, std::string const& text) {
        SdifMatrix matrix{signature, 0x301, static_cast<std::uint32_t>(text.size()), 1, {}};
        for (const char character : text) matrix.values.push_back(static_cast<unsigned char>(character));
        Frame(signature, 0xfffffffd, {matrix});
    }

    void Frame(std::string const& signature, std::uint32_t id, std::vector<SdifMatrix> const& matrices) {
        bytes += signature;
        const std::size_t sizeField = bytes.size();
        Put4(0);
        Put8(0);  // time
        Put4(id);
        Put4(static_cast<std::uint32_t>(matrices.size()));
        for (SdifMatrix const& matrix : matrices) Put(matrix);
        std::string rest = bytes.substr(sizeField + 4);
        bytes.resize(sizeField);
        Put4(static_cast<std::uint32_t>(rest.size()));
        bytes += rest;
    }

    std::string bytes;

private:
    void Put4(std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xffu);
    }
    void Put8(std::uint64_t value) {
        Put4(static_cast<std::uint32_t>(value >> 32));
        Put4(static_cast<std::uint32_t>(value));
    }
    void Put(SdifMatrix const& matrix) {
        bytes += matrix.signature;
        Put4(matrix.dataType);
        Put4(matrix.numRows);
        Put4(matrix.numColumns);
        const std::size_t begin = bytes.size();
        for (const double value : matrix.values) {
            if (matrix.dataType == 8)
                Put8(std::bit_cast<std::uint64_t>(value));
            else if (matrix.dataType == 4)
                Put4(std::bit_cast<std::uint32_t>(static_cast<float>(value)));
            else  // integers and text
                for (std::uint32_t left = matrix.dataType & 0xffu; left-- > 0;)
                    bytes += static_cast<char>(static_cast<std::int64_t>(value) >> 8 * left & 0xff);
        }
        while ((bytes.size() - begin) % 8 != 0) bytes += '\0';
    }
};
