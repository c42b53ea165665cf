#include "hrtf/sdif_reader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>

#include "hrtf/sdif_text.h"

namespace Lume {

/// The whole file in memory: the sets are small, and no size in the file can then ask for more than there is.
struct SdifFileT {
    std::vector<unsigned char> data;
    std::size_t position = 0;
    std::optional<SdifErrorT> error;
    SdifNameValuesLT nameValues;
    std::set<SdifSignature> types;

    SdifSignature frameSignature = 0;
    std::size_t frameEnd = 0;
    double time = 0.0;
    std::uint32_t id = 0;
    std::uint32_t numMatrices = 0;

    SdifSignature matrixSignature = 0;
    std::uint32_t dataType = 0;
    std::uint32_t numRows = 0;
    std::uint32_t numColumns = 0;
    std::size_t row = 0;  // where the current row begins; 0 if there is none

    std::size_t Left() const noexcept { return data.size() - position; }
};

namespace {

constexpr SdifSignature fileSignature = SdifSignatureOf("SDIF");
constexpr SdifSignature nameValueSignature = SdifSignatureOf("1NVT");
constexpr SdifSignature typeSignature = SdifSignatureOf("1TYP");
constexpr SdifSignature streamSignature = SdifSignatureOf("1IDS");
constexpr std::size_t sizeFieldEnd = 8;  // signature and size

constexpr std::string_view builtInTypes =
    "1TYP { "
    "1MTD 1NVT { NVTText } 1FTD 1NVT { 1NVT NameValueTable; } "
    "1MTD 1TYP { TYPText } 1FTD 1TYP { 1TYP Types; } "
    "1MTD 1IDS { IDSText } 1FTD 1IDS { 1IDS StreamIDs; } "
    "}";

/// The reader's process-wide state, filled by SdifGenInitCond.
std::set<SdifSignature> predefinedTypes;

std::uint32_t Unsigned4(unsigned char const* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

std::uint64_t Unsigned8(unsigned char const* bytes) {
    return std::uint64_t{Unsigned4(bytes)} << 32 | Unsigned4(bytes + 4);
}

/// One element of a matrix. The low byte of a data type is the size of an element, the byte above it its kind.
std::optional<double> Element(unsigned char const* bytes, std::uint32_t dataType) {
    switch (dataType) {
        case 0x004:
            return static_cast<double>(std::bit_cast<float>(Unsigned4(bytes)));
        case 0x008:
            return std::bit_cast<double>(Unsigned8(bytes));
        case 0x101:
            return static_cast<signed char>(bytes[0]);
        case 0x102:
            return static_cast<std::int16_t>(bytes[0] << 8 | bytes[1]);
        case 0x104:
            return static_cast<std::int32_t>(Unsigned4(bytes));
        case 0x108:
            return static_cast<double>(static_cast<std::int64_t>(Unsigned8(bytes)));
        case 0x201:
        case SdifText:
            return bytes[0];
        case 0x202:
            return bytes[0] << 8 | bytes[1];
        case 0x204:
            return Unsigned4(bytes);
        case 0x208:
            return static_cast<double>(Unsigned8(bytes));
        default:
            return std::nullopt;
    }
}

std::size_t ElementSize(std::uint32_t dataType) {
    return dataType & 0xffu;
}

/// Steps over so many bytes, or sets the error if the file ends before.
/// @return where they are, null with an error
unsigned char const* Take(SdifFileT* file, std::size_t numBytes) {
    if (file->error) return nullptr;
    if (file->Left() < numBytes) {
        file->error = SdifErrorT{"unexpected end of file"};
        return nullptr;
    }
    unsigned char const* const bytes = file->data.data() + file->position;
    file->position += numBytes;
    return bytes;
}

void AddText(SdifFileT* file, SdifSignature signature, std::string_view text) {
    if (signature == nameValueSignature) ParseNameValueText(text, file->nameValues.list);
    if (signature == typeSignature) ParseTypeText(text, file->types);
}

/// Takes the text matrices of a frame, or the whole chunk if it isn't a frame.
void ReadAsciiChunk(SdifFileT* file, SdifSignature signature, std::string_view chunk) {
    constexpr std::size_t frameHeader = SdifFrameHeaderSize - sizeFieldEnd;
    auto const* const bytes = reinterpret_cast<unsigned char const*>(chunk.data());
    std::size_t position = frameHeader;
    const auto isTextMatrix = [&] {
        return chunk.size() >= position + SdifMatrixHeaderSize && Unsigned4(bytes + position) == signature &&
               Unsigned4(bytes + position + 4) == SdifText;
    };
    if (!isTextMatrix()) {
        AddText(file, signature, chunk);
        return;
    }
    while (isTextMatrix()) {
        const std::uint64_t length = std::uint64_t{Unsigned4(bytes + position + 8)} * Unsigned4(bytes + position + 12);
        position += SdifMatrixHeaderSize;
        const std::size_t size = static_cast<std::size_t>(std::min<std::uint64_t>(length, chunk.size() - position));
        AddText(file, signature, chunk.substr(position, size));
        position += size + SdifFPaddingCalculate(file, size);
    }
}

/// Reads a file of text or nothing; a megabyte of types is more than anybody has defined.
std::string ReadTypesFile(char const* fileName) {
    std::ifstream stream(fileName, std::ios::binary);
    std::string text(std::size_t{1} << 20, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

}  // namespace

std::string SdifSignatureToString(SdifSignature signature) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(signature >> shift & 0xffu);
    return text;
}

void SdifGenInitCond(char const* typesFileName) {
    if (!predefinedTypes.empty()) return;
    const bool named = typesFileName != nullptr && *typesFileName != '\0';
    ParseTypeText(ReadTypesFile(named ? typesFileName : "SdifTypes.STYP"), predefinedTypes);
    if (predefinedTypes.empty()) ParseTypeText(builtInTypes, predefinedTypes);
}

bool SdifCheckFileFormat(char const* fileName) {
    std::ifstream stream(fileName, std::ios::binary);
    unsigned char bytes[4];
    return stream.read(reinterpret_cast<char*>(bytes), 4) && Unsigned4(bytes) == fileSignature;
}

SdifFileT* SdifFOpen(char const* fileName, int mode) {
    if (mode != SdifReadFile) return nullptr;
    std::ifstream stream(fileName, std::ios::binary);
    if (!stream) return nullptr;
    auto file = std::make_unique<SdifFileT>();
    // Read piece by piece: what isn't a regular file has no length that could be believed.
    char piece[65536];
    while (stream.read(piece, sizeof piece), stream.gcount() > 0)
        file->data.insert(file->data.end(), piece, piece + stream.gcount());
    file->types = predefinedTypes;
    return file.release();
}

void SdifFClose(SdifFileT* file) {
    delete file;
}

SdifErrorT const* SdifFLastError(SdifFileT const* file) {
    return file->error ? &*file->error : nullptr;
}

std::size_t SdifFGetSize(SdifFileT const* file) {
    return file->data.size();
}

std::size_t SdifFReadGeneralHeader(SdifFileT* file) {
    constexpr std::uint32_t versionsSize = 8;  // of the format and of the predefined types
    unsigned char const* const bytes = Take(file, sizeFieldEnd + versionsSize);
    if (bytes == nullptr) return 0;
    const std::uint32_t size = Unsigned4(bytes + 4);
    if (Unsigned4(bytes) != fileSignature || size < versionsSize)
        file->error = SdifErrorT{"not an SDIF file"};
    else if (Unsigned4(bytes + sizeFieldEnd) != SdifFormatVersion)
        file->error = SdifErrorT{"another version of the format than 3"};
    if (Take(file, size - versionsSize) == nullptr) return 0;
    return sizeFieldEnd + size;
}

std::size_t SdifFReadAllASCIIChunks(SdifFileT* file) {
    const std::size_t begin = file->position;
    std::size_t numBytes = 0;
    while (!file->error && SdifFGetSignature(file, &numBytes) != SdifEndOfFile) {
        const SdifSignature signature = file->frameSignature;
        if (signature != nameValueSignature && signature != typeSignature && signature != streamSignature) break;
        unsigned char const* const sizeField = Take(file, 4);
        if (sizeField == nullptr) break;
        const std::uint32_t size = Unsigned4(sizeField);
        unsigned char const* const chunk = Take(file, size);
        if (chunk == nullptr) break;
        ReadAsciiChunk(file, signature, {reinterpret_cast<char const*>(chunk), size});
    }
    return file->position - begin;
}

bool SdifFIsTypeKnown(SdifFileT const* file, SdifSignature signature) {
    return file->types.count(signature) != 0;
}

int SdifFGetSignature(SdifFileT* file, std::size_t* numBytes) {
    if (file->Left() == 0) return SdifEndOfFile;
    if (unsigned char const* const bytes = Take(file, 4)) {
        file->frameSignature = Unsigned4(bytes);
        *numBytes += 4;
    }
    return 0;
}

std::size_t SdifFReadFrameHeader(SdifFileT* file) {
    constexpr std::size_t headerSize = SdifFrameHeaderSize - 4;
    unsigned char const* const bytes = Take(file, headerSize);
    if (bytes == nullptr) return 0;
    // No further than the file goes, and not back into the header.
    const std::size_t dataBegin = file->position - headerSize + 4;
    file->frameEnd = std::clamp(dataBegin + Unsigned4(bytes), file->position, file->data.size());
    file->time = std::bit_cast<double>(Unsigned8(bytes + 4));
    file->id = Unsigned4(bytes + 12);
    file->numMatrices = Unsigned4(bytes + 16);
    return headerSize;
}

double SdifFCurrTime(SdifFileT const* file) {
    return file->time;
}

SdifSignature SdifFCurrFrameSignature(SdifFileT const* file) {
    return file->frameSignature;
}

std::uint32_t SdifFCurrID(SdifFileT const* file) {
    return file->id;
}

std::uint32_t SdifFCurrNbMatrix(SdifFileT const* file) {
    return file->numMatrices;
}

std::size_t SdifFSkipFrameData(SdifFileT* file) {
    if (file->error || file->frameEnd < file->position) return 0;
    const std::size_t skipped = file->frameEnd - file->position;
    file->position = file->frameEnd;
    return skipped;
}

std::size_t SdifFReadMatrixHeader(SdifFileT* file) {
    unsigned char const* const bytes = Take(file, SdifMatrixHeaderSize);
    if (bytes == nullptr) return 0;
    file->matrixSignature = Unsigned4(bytes);
    file->dataType = Unsigned4(bytes + 4);
    file->numRows = Unsigned4(bytes + 8);
    file->numColumns = Unsigned4(bytes + 12);
    file->row = 0;
    return SdifMatrixHeaderSize;
}

SdifSignature SdifFCurrMatrixSignature(SdifFileT const* file) {
    return file->matrixSignature;
}

std::uint32_t SdifFCurrNbRow(SdifFileT const* file) {
    return file->numRows;
}

std::uint32_t SdifFCurrNbCol(SdifFileT const* file) {
    return file->numColumns;
}

std::uint32_t SdifFCurrDataType(SdifFileT const* file) {
    return file->dataType;
}

std::size_t SdifFReadOneRow(SdifFileT* file) {
    const std::size_t begin = file->position;
    const std::size_t size = std::size_t{file->numColumns} * ElementSize(file->dataType);
    unsigned char const* const bytes = Take(file, size);
    if (bytes == nullptr) return 0;
    if (file->numColumns != 0 && (size == 0 || !Element(bytes, file->dataType))) {
        file->error = SdifErrorT{"unknown data type"};
        return 0;
    }
    file->row = begin;
    return size;
}

double SdifFCurrOneRowCol(SdifFileT const* file, std::uint32_t column) {
    if (file->row == 0 || column < 1 || column > file->numColumns) return 0.0;
    const std::size_t offset = (std::size_t{column} - 1) * ElementSize(file->dataType);
    return Element(file->data.data() + file->row + offset, file->dataType).value_or(0.0);
}

std::size_t SdifFSkipMatrixData(SdifFileT* file) {
    if (file->error) return 0;
    const std::uint64_t numElements = std::uint64_t{file->numRows} * file->numColumns;
    const std::size_t elementSize = ElementSize(file->dataType);
    // Divided, as the product of all three can exceed 64 bits.
    if (elementSize != 0 && numElements > file->Left() / elementSize) {
        file->error = SdifErrorT{"a matrix exceeds the file"};
        return 0;
    }
    const auto size = static_cast<std::size_t>(numElements) * elementSize;
    file->position += size;
    return size;
}

std::size_t SdifFPaddingCalculate(SdifFileT const* /*file*/, std::size_t numBytes) {
    return (SdifPaddingMultiple - numBytes % SdifPaddingMultiple) % SdifPaddingMultiple;
}

std::size_t SdifFReadPadding(SdifFileT* file, std::size_t padding) {
    return Take(file, padding) != nullptr ? padding : 0;
}

SdifNameValuesLT* SdifFNameValueList(SdifFileT* file) {
    return &file->nameValues;
}

SdifListT* SdifNameValueTableList(SdifNameValuesLT* values) {
    return &values->list;
}

void SdifListInitLoop(SdifListT* list) {
    list->next = 0;
}

bool SdifListIsNext(SdifListT const* list) {
    return list->next < list->tables.size();
}

SdifNameValueTableT* SdifListGetNext(SdifListT* list) {
    return &list->tables[list->next++];
}

SdifHashTableT const* SdifNameValueTableGetHashTable(SdifNameValueTableT const* table) {
    return &table->pairs;
}

unsigned int SdifNameValueTableGetNumTable(SdifNameValueTableT const* table) {
    return table->number;
}

SdifHashTableIteratorT SdifCreateHashTableIterator(SdifHashTableT const* table) {
    return {table, 0};
}

void SdifHashTableIteratorInitLoop(SdifHashTableIteratorT* iterator, SdifHashTableT const* table) {
    *iterator = {table, 0};
}

bool SdifHashTableIteratorIsNext(SdifHashTableIteratorT const* iterator) {
    return iterator->next < iterator->table->size();
}

SdifNameValueT const* SdifHashTableIteratorGetNext(SdifHashTableIteratorT* iterator) {
    return &(*iterator->table)[iterator->next++];
}

char const* SdifNameValueGetName(SdifNameValueT const* pair) {
    return pair->name.c_str();
}

char const* SdifNameValueGetValue(SdifNameValueT const* pair) {
    return pair->value.c_str();
}

}  // namespace Lume
