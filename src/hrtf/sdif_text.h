#pragma once

#include <set>
#include <string_view>
#include <vector>

#include "hrtf/sdif_reader.h"

/// The texts inside an SDIF file.
namespace Lume {

/// Adds the tables of a text of names and values, numbered on from those that the list holds. The text is either lines
/// of name, tab, value, or any number of blocks `{ name value; ... }`; values may hold blanks.
void ParseNameValueText(std::string_view text, SdifListT& list);

/// Adds the matrix types (`1MTD XPOS {...}`) and frame types (`1FTD HRTF {...}`) that a text defines.
void ParseTypeText(std::string_view text, std::set<SdifSignature>& types);

}  // namespace Lume
