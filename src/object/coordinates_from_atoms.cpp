#include "object/coordinates_from_atoms.h"

#include "object/coordinates.h"
#include "object/lume_common_symbols.h"

using Lume::CartesianVector;

namespace {

/// A list of atoms that is read from its front.
struct List {
    long count;
    t_atom const* atoms;

    bool StartsWith(long type) const { return count > 0 && atom_gettype(atoms) == type; }
    void Drop(long number) {
        atoms += number;
        count -= number;
    }
};

/// Takes the keyword off the list. Null if there is one that nobody knows.
CoordinatesKeyword const* TakeKeyword(t_object* x, List& list) {
    if (!list.StartsWith(A_SYM)) {
        // A list that is empty is about to be refused for that: no second line.
        if (list.count > 0) object_warn(x, "using default coordinate type (ade)");
        return FindCoordinatesKeyword(lume_common_symbols.s_ade);
    }
    CoordinatesKeyword const* const keyword = FindCoordinatesKeyword(atom_getsym(list.atoms));
    if (keyword == nullptr) {
        object_error(x, "unknown coordinate type");
        return nullptr;
    }
    list.Drop(1);
    return keyword;
}

}  // namespace

bool get_source_coordinates_from_atoms(t_object* x, unsigned int numSources, long count, t_atom const* atoms,
                                       unsigned int& index, CartesianVector& position) {
    List list{count, atoms};
    long number = 1;
    if (list.StartsWith(A_LONG)) {
        number = atom_getlong(list.atoms);
        list.Drop(1);
    }
    if (number < 1 || number > static_cast<long>(numSources)) {
        object_error(x, "invalid source index %ld", number);
        return false;
    }
    index = static_cast<unsigned int>(number - 1);

    CoordinatesKeyword const* const keyword = TakeKeyword(x, list);
    if (keyword == nullptr) return false;
    const bool lume3 = keyword->format == coordinates_lume3;
    if (!lume3 && list.count < keyword->stride) {
        object_error(x, "not enough source coordinates. expected %d coordinates", static_cast<int>(keyword->stride));
        return false;
    }
    if (!lume3 && list.count > keyword->stride)
        object_warn(x, "too many source coordinates. only %d coordinates will be read",
                    static_cast<int>(keyword->stride));
    if (atoms2coordinates(position, keyword->format, list.count, list.atoms)) return true;
    if (lume3 && ShortLume3ToCoordinates(position, list.count, list.atoms)) return true;
    object_error(x, "error reading source coordinates");
    return false;
}

bool get_speaker_coordinates_from_atoms(t_object* x, unsigned int numSpeakers, long count, t_atom const* atoms,
                                        CartesianVector& position, unsigned int& index) {
    List list{count, atoms};
    if (list.StartsWith(A_LONG)) {
        const long number = atom_getlong(list.atoms);
        if (number < 1 || number > static_cast<long>(numSpeakers)) {
            object_error(x, "invalid speaker index %ld", number);
            return false;
        }
        index = static_cast<unsigned int>(number - 1);
        list.Drop(1);
    }
    CoordinatesKeyword const* const keyword = TakeKeyword(x, list);
    if (keyword == nullptr) return false;
    if (list.count < keyword->stride) {
        object_error(x, "invalid speaker message");
        return false;
    }
    if (list.count > keyword->stride)
        object_warn(x, "too many loudspeakers positions. only %d position will be read", 1);
    if (atoms2coordinates(position, keyword->format, list.count, list.atoms)) return true;
    object_error(x, "error reading speaker position");
    return false;
}

bool get_speakers_coordinates_from_atoms(t_object* x, unsigned int numSpeakers, long count, t_atom const* atoms,
                                         CartesianVector* positions) {
    List list{count, atoms};
    CoordinatesKeyword const* const keyword = TakeKeyword(x, list);
    if (keyword == nullptr) return false;
    const auto number = static_cast<int>(numSpeakers);
    if (list.count < number * keyword->stride) {
        object_error(x, "not enough loudspeakers positions. expected %d loudspeakers positions", number);
        return false;
    }
    if (list.count > number * keyword->stride)
        object_warn(x, "too many loudspeakers positions. only %d positions will be read", number);
    for (int i = 0; i < number; ++i) {
        if (!atoms2coordinates(positions[i], keyword->format, list.count, list.atoms)) {
            object_error(x, "error reading %d th speaker position", i);
            return false;
        }
        list.Drop(keyword->stride);
    }
    return true;
}

bool get_listener_coordinates_from_atoms(t_object* x, long count, t_atom const* atoms, CartesianVector& position) {
    List list{count, atoms};
    CoordinatesKeyword const* const keyword = TakeKeyword(x, list);
    if (keyword == nullptr) return false;
    if (list.count < keyword->stride) {
        object_error(x, "invalid listener message");
        return false;
    }
    if (list.count > keyword->stride) object_warn(x, "too many listener positions. only %d position will be read", 1);
    if (atoms2coordinates(position, keyword->format, list.count, list.atoms)) return true;
    object_error(x, "error reading listener position");
    return false;
}

bool get_points_coordinates_from_atoms(t_object* x, unsigned int capacity, long count, t_atom const* atoms,
                                       CartesianVector* positions, unsigned int& numRead) {
    numRead = 0;
    List list{count, atoms};
    CoordinatesKeyword const* const keyword = TakeKeyword(x, list);
    if (keyword == nullptr) return false;
    if (list.count > static_cast<long>(capacity) * keyword->stride)
        object_warn(x, "too many point positions. only %d positions will be read", static_cast<int>(capacity));
    for (; numRead < capacity && list.count > 0; ++numRead) {
        if (!atoms2coordinates(positions[numRead], keyword->format, list.count, list.atoms)) {
            object_error(x, "error reading %d th point position", static_cast<int>(numRead));
            return false;
        }
        list.Drop(keyword->stride);
    }
    return true;
}
