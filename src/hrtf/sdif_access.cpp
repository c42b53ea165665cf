#include "hrtf/sdif_access.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "dsp/console.h"
#include "dsp/orvan_dsp_exception.h"
#include "geometry/azimuth.h"
#include "geometry/azimuth_distance_elevation.h"
#include "hrtf/hrtf_point.h"

namespace Lume {

namespace {

constexpr char infoTable[] = "HrtfInfos";

/// The value of a key in a table's pairs, null if it isn't there.
char const* FindValue(SdifHashTableT const* pairs, char const* key) {
    SdifHashTableIteratorT iterator = SdifCreateHashTableIterator(pairs);
    while (SdifHashTableIteratorIsNext(&iterator)) {
        SdifNameValueT const* const pair = SdifHashTableIteratorGetNext(&iterator);
        if (std::strcmp(SdifNameValueGetName(pair), key) == 0) return SdifNameValueGetValue(pair);
    }
    return nullptr;
}

/// Calls a function with each table until it returns true.
template <typename Function>
void ForEachTable(SdifFileT* file, Function&& function) {
    SdifListT* const tables = SdifNameValueTableList(SdifFNameValueList(file));
    SdifListInitLoop(tables);
    while (SdifListIsNext(tables))
        if (function(SdifListGetNext(tables))) return;
}

bool GetText(SdifFileT* file, char const* key, std::string& text) {
    return GetValueFromNVT(text, file, infoTable, key);
}

/// Reads an integer as far as a text begins with one, else 0; beyond its range, the nearest one.
int ToInt(std::string const& text) {
    constexpr long lowest = std::numeric_limits<int>::min();
    constexpr long highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::strtol(text.c_str(), nullptr, 10), lowest, highest));
}

bool GetInt(SdifFileT* file, char const* key, int& value) {
    std::string text;
    if (!GetText(file, key, text)) return false;
    value = ToInt(text);
    return true;
}

bool GetCount(SdifFileT* file, char const* key, unsigned int& value) {
    int number = 0;
    if (!GetInt(file, key, number) || number < 0) return false;
    value = static_cast<unsigned int>(number);
    return true;
}

/// One value of the current row in single precision. Neither filters nor positions can live with infinities.
float FiniteValue(SdifFileT const* file, std::uint32_t column, char const* message) {
    const double value = SdifFCurrOneRowCol(file, column);
    if (!(std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max())))
        throw orvandsp::OrvanDspException(message, __FILE__, __LINE__);
    return static_cast<float>(value);
}

/// Beyond this, single-precision angles are noise, and wrapping them takes its time [degrees].
constexpr float maxAngle = 1.0e6f;

/// Reads rows of three 8-byte floats and makes a position of each.
template <typename MakePosition>
std::size_t ReadPositions(SdifFileT* file, std::vector<CartesianVector>& positions, char const* message,
                          MakePosition&& makePosition) {
    if (SdifFCurrNbCol(file) != 3 || SdifFCurrDataType(file) != SdifFloat8)
        throw orvandsp::OrvanDspException(message, __FILE__, __LINE__);
    positions.clear();  // grows with what is read: the number of rows isn't to be trusted
    std::size_t numBytes = 0;
    for (std::uint32_t row = 0; row < SdifFCurrNbRow(file); ++row) {
        const std::size_t rowSize = SdifFReadOneRow(file);
        if (rowSize == 0) break;  // the file's last error says why
        numBytes += rowSize;
        positions.push_back(
            makePosition(FiniteValue(file, 1, message), FiniteValue(file, 2, message), FiniteValue(file, 3, message)));
    }
    return numBytes;
}

std::size_t ReadCoefficients(SdifFileT* file, std::vector<float>& coefficients) {
    constexpr char message[] = "Invalid Filter matrix ! ";
    const std::uint64_t numValues = std::uint64_t{SdifFCurrNbRow(file)} * SdifFCurrNbCol(file);
    if (numValues != coefficients.size()) throw orvandsp::OrvanDspException(message, __FILE__, __LINE__);
    if (numValues == 0) return 0;
    std::size_t numBytes = 0;
    auto next = coefficients.begin();
    for (std::uint32_t row = 0; row < SdifFCurrNbRow(file); ++row) {
        const std::size_t rowSize = SdifFReadOneRow(file);
        if (rowSize == 0) break;  // the file's last error says why
        numBytes += rowSize;
        for (std::uint32_t column = 1; column <= SdifFCurrNbCol(file); ++column)
            *next++ = FiniteValue(file, column, message);
    }
    return numBytes;
}

}  // namespace

bool IsValidSdifFile(std::string const& fileName) {
    SdifGenInitCond("");
    return SdifCheckFileFormat(fileName.c_str());
}

unsigned int GetIndexOfNVTByName(SdifFileT* file, std::string const& tableName) {
    unsigned int number = 0;
    ForEachTable(file, [&](SdifNameValueTableT const* table) {
        char const* const name = FindValue(SdifNameValueTableGetHashTable(table), "TableName");
        if (name == nullptr || name != tableName) return false;
        number = SdifNameValueTableGetNumTable(table);
        return true;
    });
    return number;
}

void GetListOfNVTTableNames(SdifFileT* file, std::vector<std::string>& names) {
    ForEachTable(file, [&](SdifNameValueTableT const* table) {
        if (char const* const name = FindValue(SdifNameValueTableGetHashTable(table), "TableName"))
            names.emplace_back(name);
        return false;
    });
}

bool GetValueFromNVT(std::string& text, SdifFileT* file, std::string const& tableName, std::string const& key) {
    const unsigned int number = GetIndexOfNVTByName(file, tableName);
    if (number == 0) return false;
    char const* value = nullptr;
    ForEachTable(file, [&](SdifNameValueTableT const* table) {
        if (SdifNameValueTableGetNumTable(table) != number) return false;
        value = FindValue(SdifNameValueTableGetHashTable(table), key.c_str());
        return true;
    });
    if (value == nullptr) {
        orvandsp::WriteToConsole(orvandsp::Console::error, "No field " + key + " in NVT " + tableName + " " + __FILE__ +
                                                               " " + std::to_string(__LINE__));
        return false;
    }
    text = value;
    return true;
}

std::size_t ReadXPOSMatrix(SdifFileT* file, std::vector<CartesianVector>& positions) {
    return ReadPositions(file, positions, "Invalid XPOS matrix", [](float x, float y, float z) {
        return CartesianVector{x, y, z};
    });
}

std::size_t ReadXAEDMatrix(SdifFileT* file, std::vector<CartesianVector>& positions, bool normalise) {
    constexpr char message[] = "Invalid XAED matrix";
    return ReadPositions(file, positions, message, [&](float azimuth, float elevation, float distance) {
        if (std::abs(azimuth) > maxAngle || std::abs(elevation) > maxAngle)
            throw orvandsp::OrvanDspException(message, __FILE__, __LINE__);
        if (normalise) {
            FoldElevation(azimuth, elevation);
            if (distance < 0.0f) {
                distance = -distance;
                elevation = -elevation;
                azimuth += 180.0f;
            }
            azimuth = Wrap(azimuth + 180.0f, 360.0f) - 180.0f;
        }
        return FromAzimuthDistanceElevation(azimuth, distance, elevation);
    });
}

std::size_t ReadXITDMatrix(SdifFileT* file, float& itd) {
    constexpr char message[] = "Invalid ITD matrix";
    if (SdifFCurrNbRow(file) != 1 || SdifFCurrNbCol(file) != 1 || SdifFCurrDataType(file) != SdifFloat8)
        throw orvandsp::OrvanDspException(message, __FILE__, __LINE__);
    const std::size_t numBytes = SdifFReadOneRow(file);
    itd = FiniteValue(file, 1, message);
    if (!IsInterauralDelay(itd)) throw orvandsp::OrvanDspException(message, __FILE__, __LINE__);
    return numBytes;
}

std::size_t ReadXIIRMatrix(SdifFileT* file, std::vector<float>& coefficients) {
    return ReadCoefficients(file, coefficients);
}

std::size_t ReadXFIRMatrix(SdifFileT* file, std::vector<float>& coefficients) {
    return ReadCoefficients(file, coefficients);
}

bool GetOwner(SdifFileT* file, std::string& text) {
    return GetText(file, "Owner", text);
}

bool GetAuthor(SdifFileT* file, std::string& text) {
    return GetText(file, "Author", text);
}

bool GetCopyright(SdifFileT* file, std::string& text) {
    return GetText(file, "Copyright", text);
}

bool GetSubject(SdifFileT* file, std::string& text) {
    return GetText(file, "Subject", text);
}

bool GetDate(SdifFileT* file, std::string& text) {
    return GetText(file, "Generated", text);
}

bool GetOriginalMeasurementSet(SdifFileT* file, std::string& text) {
    return GetText(file, "MeasurementSet", text);
}

bool GetInterpolatedSet(SdifFileT* file, std::string& text) {
    return GetText(file, "InterpolationSet", text);
}

bool GetSampleRate(SdifFileT* file, unsigned int& value) {
    return GetCount(file, "SamplingRate", value);
}

bool GetNumChannels(SdifFileT* file, unsigned int& value) {
    return GetCount(file, "NumChannels", value);
}

bool GetNumPoints(SdifFileT* file, unsigned int& value) {
    return GetCount(file, "NumPoints", value);
}

bool GetNumCoefficients(SdifFileT* file, unsigned int& value) {
    return GetCount(file, "FiltersLength", value);
}

bool GetHrtfType(SdifFileT* file, HrtfType& type) {
    std::string text;
    if (!GetText(file, "DataType", text)) return false;
    type = GetHrtfType(text);
    return true;
}

bool GetHrtfFilterType(SdifFileT* file, HrtfFilterType& type) {
    std::string text;
    if (!GetText(file, "FiltersType", text)) return false;
    type = GetHrtfFilterType(text);
    return true;
}

bool GetFlagItdExtracted(SdifFileT* file, FlagItdExtracted& flag) {
    int number = 0;
    if (!GetInt(file, "ITDExtracted", number)) return false;
    flag = static_cast<FlagItdExtracted>(number);
    return true;
}

bool GetFlagDataIterpolated(SdifFileT* file, FlagDataIterpolated& flag) {
    int number = 0;
    if (!GetInt(file, "SpatialInterpolation", number)) return false;
    flag = static_cast<FlagDataIterpolated>(number);
    return true;
}

bool GetHrtfHeaderInfos(SdifFileT* file, HrtfHeaderInfos& header) {
    std::string author;  // must be there, isn't kept
    // All of them, also after a failure, so that each missing key gets its line.
    const bool found[] = {
        GetOwner(file, header.owner),
        GetAuthor(file, author),
        GetSubject(file, header.subject),
        GetCopyright(file, header.copyright),
        GetHrtfType(file, header.hrtfType),
        GetHrtfFilterType(file, header.filterType),
        GetFlagItdExtracted(file, header.flagItdExtracted),
        GetFlagDataIterpolated(file, header.flagInterpolated),
        GetOriginalMeasurementSet(file, header.originalMeasurementSet),
        GetInterpolatedSet(file, header.interpolationSet),
        GetNumCoefficients(file, header.numCoefficients),
        GetNumChannels(file, header.numChannels),
        GetSampleRate(file, header.samplingRate),
        GetNumPoints(file, header.numPoints),
        GetDate(file, header.date),
    };
    return std::all_of(std::begin(found), std::end(found), [](bool each) { return each; });
}

bool GetHrtfHeaderInfos(std::string const& fileName, HrtfHeaderInfos& header) {
    SdifGenInitCond("");
    const SdifFilePointer file(SdifFOpen(fileName.c_str(), SdifReadFile));
    if (file == nullptr) {
        orvandsp::WriteToConsole(orvandsp::Console::error, "error reading " + fileName);
        return false;
    }
    SdifFReadGeneralHeader(file.get());
    SdifFReadAllASCIIChunks(file.get());
    return GetHrtfHeaderInfos(file.get(), header);
}

bool ContainsHrtfInfosHeader(std::string const& fileName) {
    SdifGenInitCond("");
    const SdifFilePointer file(SdifFOpen(fileName.c_str(), SdifReadFile));
    if (file == nullptr) return false;
    SdifFReadGeneralHeader(file.get());
    SdifFReadAllASCIIChunks(file.get());
    return GetIndexOfNVTByName(file.get(), infoTable) != 0;
}

}  // namespace Lume
