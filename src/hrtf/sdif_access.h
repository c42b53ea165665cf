#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "hrtf/hrtf_header_infos.h"
#include "hrtf/sdif_reader.h"

/// What the loaders of filter sets read from SDIF files.
namespace Lume {

bool IsValidSdifFile(std::string const& fileName);

/// The number of the name-value table whose pair TableName has that value; 0 if there is none.
unsigned int GetIndexOfNVTByName(SdifFileT* file, std::string const& tableName);
/// The names of all tables that have one, in the order of the file.
void GetListOfNVTTableNames(SdifFileT* file, std::vector<std::string>& names);
/// Looks up a key in a table.
/// @param text  receives the value if there is one
/// @return whether it was found. Writes a line on standard error if only the key is missing
bool GetValueFromNVT(std::string& text, SdifFileT* file, std::string const& tableName, std::string const& key);

/// Read the current matrix after its header.
/// @return bytes read
/// @throws orvandsp::OrvanDspException if the matrix has another shape or type, or a value that isn't finite. If the
///         file ends early the file's last error is set instead.
std::size_t ReadXPOSMatrix(SdifFileT* file, std::vector<CartesianVector>& positions);
/// Positions of azimuth [degrees], elevation [degrees], distance [m].
/// @param normalise  whether to bring the angles into their ranges first
std::size_t ReadXAEDMatrix(SdifFileT* file, std::vector<CartesianVector>& positions, bool normalise);
std::size_t ReadXITDMatrix(SdifFileT* file, float& itd);
/// @param coefficients  its size is what the matrix must have; filled row by row
std::size_t ReadXIIRMatrix(SdifFileT* file, std::vector<float>& coefficients);
std::size_t ReadXFIRMatrix(SdifFileT* file, std::vector<float>& coefficients);

/// Read one key of the table HrtfInfos.
/// @return whether it was found
bool GetOwner(SdifFileT* file, std::string& text);
bool GetAuthor(SdifFileT* file, std::string& text);
bool GetCopyright(SdifFileT* file, std::string& text);
bool GetSubject(SdifFileT* file, std::string& text);
bool GetDate(SdifFileT* file, std::string& text);
bool GetOriginalMeasurementSet(SdifFileT* file, std::string& text);
bool GetInterpolatedSet(SdifFileT* file, std::string& text);
/// @return whether it was found and isn't negative
bool GetSampleRate(SdifFileT* file, unsigned int& value);
bool GetNumChannels(SdifFileT* file, unsigned int& value);
bool GetNumPoints(SdifFileT* file, unsigned int& value);
bool GetNumCoefficients(SdifFileT* file, unsigned int& value);
/// @throws orvandsp::OrvanDspException for a type that is there but unknown
bool GetHrtfType(SdifFileT* file, HrtfType& type);
bool GetHrtfFilterType(SdifFileT* file, HrtfFilterType& type);
bool GetFlagItdExtracted(SdifFileT* file, FlagItdExtracted& flag);
bool GetFlagDataIterpolated(SdifFileT* file, FlagDataIterpolated& flag);

/// Fills a header from an open file whose tables have been read.
/// @return whether all keys were found; the key Author must be there too
bool GetHrtfHeaderInfos(SdifFileT* file, HrtfHeaderInfos& header);
/// The same for a closed file. One that can't be opened is reported on standard error.
bool GetHrtfHeaderInfos(std::string const& fileName, HrtfHeaderInfos& header);
/// Whether a file has a table HrtfInfos.
bool ContainsHrtfInfosHeader(std::string const& fileName);

}  // namespace Lume
