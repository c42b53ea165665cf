#pragma once

#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Whether a file name contains an extension, anywhere: of several in one name, whoever asks first counts.
bool CheckFileExtension(std::string const& fileName, std::string const& extension);

/// The subject in a name of the form name-subject-rate.coll: as many characters behind the first "-" as stand before
/// it, or what is left of them: abc-KEM-44100.coll has the subject KEM (kept: quirks.md 15).
std::string GetSubjectFromCollFilename(std::string const& fileName, std::string const& defaultSubject);

/// The rate [Hz] behind the last "-" of such a name; the default if there is none.
unsigned int GetSamplingRateFromCollFileName(std::string const& fileName, unsigned int defaultRate);

/// Reads a list of positions: a line that contains "xyz", then one line of three numbers per position.
/// @return false if the file isn't of this form; the positions then are those read before
bool ReadPositionsFromTextFile(std::string const& fileName, std::vector<CartesianVector>& positions);

}  // namespace Lume
