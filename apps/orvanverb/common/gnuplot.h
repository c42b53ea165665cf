#pragma once

#include <string>

/// Pictures, drawn by the program gnuplot.
namespace program {

/// @throws UsageError for a name that ends neither in .svg nor in .png
void RequirePictureName(std::string const& path);

/// Draws a picture and writes it whole, or not at all.
/// @param path           its end, .svg or .png, chooses the kind
/// @param width, height  [pixels]
/// @param script         what gnuplot shall do; terminal, font and output are set before it
/// @throws WorkError that names the file, also when gnuplot isn't there
void DrawPicture(std::string const& path, int width, int height, std::string const& script);

/// Text for a label: what gnuplot would take for markup is taken out of its force.
std::string PlotText(std::string const& text);

}  // namespace program
