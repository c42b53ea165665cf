#pragma once

namespace program {

/// Writes the reference page of the object into the current directory: orvanverb~.ref.xml and, beside it, the style
/// sheet orvan.xsl through which browsers and XSLT processors show it. Tells so on standard error.
/// @param force  replace what is there
/// @throws WorkError if one of them can't be written
void WriteReference(bool force);

}  // namespace program
