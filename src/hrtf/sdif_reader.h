#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// A reader for the Sound Description Interchange Format, version 3: typed frames of typed matrices and text tables of
/// names and values, all big-endian (M. Wright et al., "New applications of the Sound Description Interchange Format",
/// Proc. Int. Computer Music Conf., 1998).
///
/// The operations have the shape that SDIF programs are used to: an open file is a handle with a current frame, matrix
/// and row. None of them throws for what a file holds. The first thing that goes wrong is kept as the handle's last
/// error; from then on every reading operation does nothing and returns 0. A file counts as hostile: sizes are checked
/// against what is left of it. Not thread-safe; control side only.
namespace Lume {

/// The four characters of a type, the first in the highest byte.
using SdifSignature = std::uint32_t;

constexpr SdifSignature SdifSignatureOf(char const (&text)[5]) {
    SdifSignature signature = 0;
    for (int i = 0; i < 4; ++i) signature = signature << 8 | static_cast<unsigned char>(text[i]);
    return signature;
}

/// The four characters as text.
std::string SdifSignatureToString(SdifSignature signature);

constexpr int SdifReadFile = 2;                   ///< the mode of SdifFOpen
constexpr int SdifEndOfFile = -1;                 ///< returned by SdifFGetSignature
constexpr std::uint32_t SdifFloat8 = 8;           ///< data type of 8-byte floats
constexpr std::uint32_t SdifText = 0x301;         ///< data type of characters
constexpr std::uint32_t SdifFormatVersion = 3;    ///< the version that is read
constexpr std::size_t SdifFrameHeaderSize = 24;   ///< signature included [bytes]
constexpr std::size_t SdifMatrixHeaderSize = 16;  ///< [bytes]
constexpr std::size_t SdifPaddingMultiple = 8;    ///< matrices are padded to it [bytes]

struct SdifErrorT {
    std::string text;
};

struct SdifNameValueT {
    std::string name;
    std::string value;
};

/// The pairs of a table, in the order of the file.
using SdifHashTableT = std::vector<SdifNameValueT>;

struct SdifHashTableIteratorT {
    SdifHashTableT const* table = nullptr;
    std::size_t next = 0;
};

struct SdifNameValueTableT {
    SdifHashTableT pairs;
    unsigned int number = 0;  // from 1
};

/// Tables, with the position of a walk through them.
struct SdifListT {
    std::vector<SdifNameValueTableT> tables;
    std::size_t next = 0;
};

struct SdifNameValuesLT {
    SdifListT list;
};

struct SdifFileT;

/// Loads the predefined types once per process; later calls do nothing. With an empty name they come from a file
/// SdifTypes.STYP in the working directory if there is one, else from the built-in text.
void SdifGenInitCond(char const* typesFileName);

/// Whether the file begins as an SDIF file, of whatever version.
bool SdifCheckFileFormat(char const* fileName);

/// Opens a file. Null if that fails or the mode isn't SdifReadFile.
SdifFileT* SdifFOpen(char const* fileName, int mode);
/// Closes a file and frees all that belongs to it; null is allowed.
void SdifFClose(SdifFileT* file);

struct SdifFCloser {
    void operator()(SdifFileT* file) const { SdifFClose(file); }
};
/// A handle that closes itself.
using SdifFilePointer = std::unique_ptr<SdifFileT, SdifFCloser>;

/// The last error, null if none.
SdifErrorT const* SdifFLastError(SdifFileT const* file);
/// Length of the file [bytes].
std::size_t SdifFGetSize(SdifFileT const* file);

/// Reads the opening of the file. Another format version than 3 is an error.
/// @return bytes read, as in all operations below that return std::size_t
std::size_t SdifFReadGeneralHeader(SdifFileT* file);
/// Reads tables, type definitions and stream descriptions, up to and with the signature of the first data frame. They
/// may be frames with text matrices or bare chunks of text.
std::size_t SdifFReadAllASCIIChunks(SdifFileT* file);

/// Whether a frame or matrix type is predefined or defined by the file. Types that aren't are read all the same.
bool SdifFIsTypeKnown(SdifFileT const* file, SdifSignature signature);

/// Reads the next signature, which then is that of the current frame.
/// @param numBytes  the bytes read are added to it
/// @return SdifEndOfFile at the end of the file, otherwise 0
int SdifFGetSignature(SdifFileT* file, std::size_t* numBytes);

/// Reads a frame's header behind its signature.
std::size_t SdifFReadFrameHeader(SdifFileT* file);
double SdifFCurrTime(SdifFileT const* file);  ///< [s]
SdifSignature SdifFCurrFrameSignature(SdifFileT const* file);
std::uint32_t SdifFCurrID(SdifFileT const* file);
std::uint32_t SdifFCurrNbMatrix(SdifFileT const* file);
/// Skips the rest of the frame, as far as the file goes.
std::size_t SdifFSkipFrameData(SdifFileT* file);

std::size_t SdifFReadMatrixHeader(SdifFileT* file);
SdifSignature SdifFCurrMatrixSignature(SdifFileT const* file);
std::uint32_t SdifFCurrNbRow(SdifFileT const* file);
std::uint32_t SdifFCurrNbCol(SdifFileT const* file);
std::uint32_t SdifFCurrDataType(SdifFileT const* file);
/// Moves to the next row of the current matrix.
std::size_t SdifFReadOneRow(SdifFileT* file);
/// The value in a column, counted from 1, of the current row; 0 for a column that doesn't exist.
double SdifFCurrOneRowCol(SdifFileT const* file, std::uint32_t column);
std::size_t SdifFSkipMatrixData(SdifFileT* file);

/// Bytes that follow so many bytes of data to complete a multiple of 8.
std::size_t SdifFPaddingCalculate(SdifFileT const* file, std::size_t numBytes);
std::size_t SdifFReadPadding(SdifFileT* file, std::size_t padding);

SdifNameValuesLT* SdifFNameValueList(SdifFileT* file);
SdifListT* SdifNameValueTableList(SdifNameValuesLT* values);
void SdifListInitLoop(SdifListT* list);
bool SdifListIsNext(SdifListT const* list);
SdifNameValueTableT* SdifListGetNext(SdifListT* list);
SdifHashTableT const* SdifNameValueTableGetHashTable(SdifNameValueTableT const* table);
unsigned int SdifNameValueTableGetNumTable(SdifNameValueTableT const* table);
SdifHashTableIteratorT SdifCreateHashTableIterator(SdifHashTableT const* table);
void SdifHashTableIteratorInitLoop(SdifHashTableIteratorT* iterator, SdifHashTableT const* table);
bool SdifHashTableIteratorIsNext(SdifHashTableIteratorT const* iterator);
SdifNameValueT const* SdifHashTableIteratorGetNext(SdifHashTableIteratorT* iterator);
char const* SdifNameValueGetName(SdifNameValueT const* pair);
char const* SdifNameValueGetValue(SdifNameValueT const* pair);

}  // namespace Lume
