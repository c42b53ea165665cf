#pragma once

namespace program {

/// The text of orvan.xsl, which stands beside this file; the build makes a source of it.
extern char const* const styleSheet;

}  // namespace program
