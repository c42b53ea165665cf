#pragma once

#include <string>

/// The version, which is that of the whole product, and the date of its sources: "4.2.6 (Build Nov 15 2010)".
std::string orvanverb_version();
