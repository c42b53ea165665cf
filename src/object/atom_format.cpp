#include "object/atom_format.h"

#include <cstring>

namespace orvanmax {

bool CheckAtomsFormat(char const* format, t_atom const* atoms, long count) {
    const auto length = static_cast<long>(std::strlen(format));
    if (length > count) return false;
    for (long i = 0; i < length; ++i) {
        const long type = atom_gettype(&atoms[i]);
        bool fits = false;
        switch (format[i]) {
            case 'f':
                fits = type == A_FLOAT;
                break;
            case 'i':
            case 'l':
                fits = type == A_LONG;
                break;
            case 'n':
                fits = type == A_LONG || type == A_FLOAT;
                break;
            case 's':
                fits = type == A_SYM;
                break;
            default:
                break;
        }
        if (!fits) return false;
    }
    return true;
}

float atom_getnumber(t_atom const* atom, float defaultValue) {
    const long type = atom_gettype(atom);
    return type == A_LONG || type == A_FLOAT ? atom_getfloat(atom) : defaultValue;
}

}  // namespace orvanmax
