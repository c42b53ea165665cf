#pragma once

#include <string>

/// Version of the object and date of its build: "4.2.6 (Build Nov 15 2010)".
std::string orvanverb_version();
