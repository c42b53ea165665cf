#pragma once

#include <string>
#include <vector>

#include "object/host_api.h"

/// An object's reference page, made of what its class says about itself: name, version, attributes and messages.
///
/// The file is meant to be read through the style sheet orvan.xsl. Texts go into it as they are: labels and
/// descriptions of attributes must hold neither ampersands nor less-than signs. Control thread only.
namespace orvanmax {

/// Message generatexml.
void generatexml(t_object* x);

/// Writes the class's name and ".ref.xml" into the current directory, over what stood there. Says nothing, also if the
/// file can't be opened.
void GenerateXmlDocumentation(t_object* x);

/// Fills the list with the messages of the object's class that users send, in the order of their registration. Without
/// a class it stays as it is.
void GetListOfMethods(t_object* x, std::vector<std::string>& names);

}  // namespace orvanmax
