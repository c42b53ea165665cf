#pragma once

#include <string>
#include <vector>

#include "object/host_api.h"

/// Looking at the attributes of any object of the host by their names: which there are, which of them a user sees, what
/// they say about themselves. Failures of the host become console lines, and never more. Control thread only.
namespace orvanmax {

/// Fills the vector with the names of all attributes, in the order of their registration or sorted. Everything that
/// walks attributes asks for the sorted list: its order is that of every dump, post, reset and saved state.
void GetListOfAttributes(t_object* x, std::vector<std::string>& names, bool sorted);

unsigned long GetNumberOfAttributes(t_object* x);
unsigned long GetNumberOfVisibleAttributes(t_object* x);

/// The attribute of that name, or null.
t_attr* GetAttributeByName(t_object* x, std::string const& name);
char const* GetAttributeName(t_attr* attribute);
/// The name of the attribute's type, such as "long" or "float32".
void GetAttributeType(t_attr* attribute, std::string& type);

bool IsAttributeInvisible(t_attr* attribute);
/// False as well if there is no attribute of that name.
bool IsAttributeInvisible(t_object* x, std::string const& name);
/// True for what belongs to the box in its patcher and not to the object.
bool IsAppareanceAttribute(t_attr* attribute);

/// Keeps the names of those attributes that are visible, opaque to nobody, no matter of the box's looks, and have at
/// least one value now.
void RemoveInvisibleAndOpaqueAttributes(t_object* x, std::vector<std::string>& names);

/// The list of attributes that all services walk: sorted, and filtered as above.
std::vector<std::string> GetListOfUserAttributes(t_object* x);

unsigned long GetNumberOfAtomsNeededToStoreAttribute(t_object* x, std::string const& name);
unsigned long GetNumberOfAtomsToStoreTheseAttributes(t_object* x, std::vector<std::string> const& names);

/// One text for each choice of an attribute that has a list of them; otherwise the default text alone.
void GetAttributeEnumChoices(t_attr* attribute, std::vector<std::string>& choices, std::string const& defaultText);

/// What an attribute says about itself, as text: a long as "%ld", a float as "%.2f", a symbol by its name. Of a list
/// only the first atom counts. Where it says nothing, the text is the default text.
void GetAttributeDescription(t_attr* attribute, std::string& text, std::string const& defaultText);
void GetAttributeCategory(t_attr* attribute, std::string& text, std::string const& defaultText);
void GetAttributeUnits(t_attr* attribute, std::string& text, std::string const& defaultText);
void GetAttributeLabel(t_attr* attribute, std::string& text, std::string const& defaultText);
void GetAttributeMinValue(t_attr* attribute, std::string& text, std::string const& defaultText);
void GetAttributeMaxValue(t_attr* attribute, std::string& text, std::string const& defaultText);
void GetAttributeDefaultValue(t_attr* attribute, std::string& text, std::string const& defaultText);
/// The default text as well if there is no attribute of that name.
void GetAttributeDefaultValue(t_object* x, char const* name, std::string& text, std::string const& defaultText);

}  // namespace orvanmax
