#include "orvanverb/hrtf/sdif_set_writer.h"

#include <bit>
#include <cassert>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "hrtf/sdif_reader.h"

namespace program {

namespace {

constexpr std::uint32_t float4 = 0x004;            // data type of coefficients
constexpr std::uint32_t textStream = 0xFFFFFFFDu;  // the stream of frames that hold texts
constexpr std::uint32_t predefinedTypesVersion = 1;
// Texts belong to no time.
constexpr double noTime = -std::numeric_limits<double>::max();

constexpr char const* types =
    "{\n"
    "1MTD XPOS {x, y, z}\n"
    "1MTD XITD {itd}\n"
    "1MTD XIIR {coefficients}\n"
    "1MTD XFIR {coefficients}\n"
    "1FTD HRTF { XPOS Position; XITD Delay; XIIR Sections; XFIR Response; }\n"
    "}\n";

/// Big-endian bytes, as the format wants them.
class Bytes {
public:
    void Put(std::string const& text) { bytes += text; }
    void Put4(std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFFu);
    }
    void Put8(double value) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        Put4(static_cast<std::uint32_t>(bits >> 32));
        Put4(static_cast<std::uint32_t>(bits));
    }
    void Pad() { bytes.append((Lume::SdifPaddingMultiple - bytes.size() % Lume::SdifPaddingMultiple) % 8, '\0'); }

    std::string bytes;
};

/// One frame: its matrices first, the header with their length around them at the end.
class Frame {
public:
    void BeginMatrix(char const* signature, std::uint32_t dataType, std::size_t rows, std::size_t columns) {
        matrices.Pad();
        matrices.Put(signature);
        matrices.Put4(dataType);
        matrices.Put4(static_cast<std::uint32_t>(rows));
        matrices.Put4(static_cast<std::uint32_t>(columns));
        ++numMatrices;
    }
    void AppendTo(Bytes& file, char const* signature, double time, std::uint32_t stream) {
        constexpr std::size_t headerBehindSize = Lume::SdifFrameHeaderSize - 8;
        matrices.Pad();
        file.Put(signature);
        file.Put4(static_cast<std::uint32_t>(headerBehindSize + matrices.bytes.size()));
        file.Put8(time);
        file.Put4(stream);
        file.Put4(numMatrices);
        file.Put(matrices.bytes);
    }

    Bytes matrices;

private:
    std::uint32_t numMatrices = 0;
};

void PutText(Bytes& file, char const* signature, std::string const& text) {
    Frame frame;
    frame.BeginMatrix(signature, Lume::SdifText, text.size(), 1);
    frame.matrices.Put(text);
    frame.AppendTo(file, signature, noTime, textStream);
}

std::string Table(Lume::HrtfHeaderInfos const& header, std::size_t numPoints, std::string const& author,
                  std::optional<unsigned int> blockLength) {
    std::vector<std::pair<char const*, std::string>> pairs{
        {"TableName", "HrtfInfos"},
        {"Owner", header.owner},
        {"Author", author},
        {"Subject", header.subject},
        {"Copyright", header.copyright},
        {"DataType", Lume::GetHrtfTypeName(header.hrtfType)},
        {"FiltersType", Lume::GetHrtfFilterTypeName(header.filterType)},
        {"ITDExtracted", std::to_string(header.flagItdExtracted)},
        {"SpatialInterpolation", std::to_string(header.flagInterpolated)},
        {"MeasurementSet", header.originalMeasurementSet},
        {"InterpolationSet", header.interpolationSet},
        {"FiltersLength", std::to_string(header.numCoefficients)},
        {"NumChannels", std::to_string(header.numChannels)},
        {"SamplingRate", std::to_string(header.samplingRate)},
        {"NumPoints", std::to_string(numPoints)},
        {"Generated", header.date},
    };
    if (blockLength) pairs.emplace_back(blockLengthKey, std::to_string(*blockLength));
    std::string text;
    for (auto const& [name, value] : pairs) {
        text.append(name).append("\t");
        // What parts names, values and tables must not stand in a value.
        for (const char letter : value)
            text += static_cast<unsigned char>(letter) < ' ' || letter == '{' || letter == '}' ? ' ' : letter;
        text += '\n';
    }
    return text;
}

void PutPoint(Bytes& file, Lume::HrtfHeaderInfos const& header, Lume::SdifSetPoint const& point, std::uint32_t number) {
    assert(point.coefficients.size() == std::size_t{header.numChannels} * header.numCoefficients);
    const bool isFir = header.filterType == Lume::hrtfFIR;
    Frame frame;
    frame.BeginMatrix("XPOS", Lume::SdifFloat8, point.positions.size(), 3);
    for (Lume::CartesianVector const& position : point.positions)
        for (const float coordinate : {position.x, position.y, position.z})
            frame.matrices.Put8(static_cast<double>(coordinate));
    if (!isFir) {
        frame.BeginMatrix("XITD", Lume::SdifFloat8, 1, 1);
        frame.matrices.Put8(static_cast<double>(point.itd));
    }
    frame.BeginMatrix(isFir ? "XFIR" : "XIIR", float4, header.numChannels, header.numCoefficients);
    for (const float coefficient : point.coefficients) frame.matrices.Put4(std::bit_cast<std::uint32_t>(coefficient));
    frame.AppendTo(file, "HRTF", 0.0, number);
}

}  // namespace

std::string SdifSetBytes(Lume::SdifSet const& set, std::string const& author, std::optional<unsigned int> blockLength) {
    Bytes file;
    file.Put("SDIF");
    file.Put4(8);  // bytes that follow in this header
    file.Put4(Lume::SdifFormatVersion);
    file.Put4(predefinedTypesVersion);
    PutText(file, "1NVT", Table(set.header, set.points.size(), author, blockLength));
    PutText(file, "1TYP", types);
    for (std::size_t i = 0; i < set.points.size(); ++i)
        PutPoint(file, set.header, set.points[i], static_cast<std::uint32_t>(i + 1));
    return file.bytes;
}

}  // namespace program
