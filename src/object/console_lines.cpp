#include "object/console_lines.h"

#include <cstdio>
#include <vector>

namespace orvanmax {

namespace {

std::string Text(long count, t_atom const* atoms) {
    std::string text;
    atomarray2string(count, atoms, text);
    return text;
}

template <class Value>
void PostArray(t_object* x, Value const* values, long count, char const* prefix) {
    std::vector<t_atom> atoms(static_cast<std::size_t>(count < 0 ? 0 : count));
    for (std::size_t i = 0; i < atoms.size(); ++i) atom_setfloat(&atoms[i], static_cast<double>(values[i]));
    post_message(x, static_cast<long>(atoms.size()), atoms.data(), prefix);
}

}  // namespace

void atomarray2string(long count, t_atom const* atoms, std::string& text) {
    text.clear();
    if (atoms == nullptr) return;
    for (long i = 0; i < count; ++i) {
        char number[64];  // the longest float takes 39 digits, a point and six more
        if (atom_gettype(&atoms[i]) == A_LONG) {
            std::snprintf(number, sizeof number, "%ld ", atom_getlong(&atoms[i]));
            text += number;
        } else if (atom_gettype(&atoms[i]) == A_FLOAT) {
            std::snprintf(number, sizeof number, "%f ", static_cast<double>(atom_getfloat(&atoms[i])));
            text += number;
        } else if (atom_gettype(&atoms[i]) == A_SYM) {
            text.append(atom_getsym(&atoms[i])->s_name).append(" ");
        }
    }
}

void post_message(t_object* x, long count, t_atom const* atoms, char const* prefix) {
    object_post(x, "%s : %s", prefix, Text(count, atoms).c_str());
}

void post_warning_message(t_object* x, long count, t_atom const* atoms, char const* prefix) {
    object_warn(x, "%s : %s", prefix, Text(count, atoms).c_str());
}

void post_error_message(t_object* x, long count, t_atom const* atoms, char const* prefix) {
    object_error(x, "%s : %s", prefix, Text(count, atoms).c_str());
}

void post_float_array(t_object* x, float const* values, long count, char const* prefix) {
    PostArray(x, values, count, prefix);
}

void post_double_array(t_object* x, double const* values, long count, char const* prefix) {
    PostArray(x, values, count, prefix);
}

char const* HostErrorName(t_max_err error) {
    switch (error) {
        case MAX_ERR_GENERIC:
            return "MAX_ERR_GENERIC";
        case MAX_ERR_INVALID_PTR:
            return "MAX_ERR_INVALID_PTR";
        case MAX_ERR_DUPLICATE:
            return "MAX_ERR_DUPLICATE";
        case MAX_ERR_OUT_OF_MEM:
            return "MAX_ERR_OUT_OF_MEM";
        default:
            return "unknown MAX_ERR";
    }
}

}  // namespace orvanmax
