#include "pd/pd_words.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>
#include <string_view>

#include "engine/room_controls.h"
#include "pd/pd_atoms.h"
#include "room/control_range.h"

namespace pd {

namespace {

constexpr std::string_view usage = "[orvanverb~ SOURCES LOUDSPEAKERS @NAME VALUE...]";

/// A number that is fixed when the object is made.
struct Size {
    std::string_view name;
    float least, greatest;
};
constexpr std::array sizes{Size{"numsources", 1, 64}, Size{"numspeakers", 2, 64}, Size{"numinternals", 2, 16}};

bool IsAttributeWord(t_atom const& atom) {
    return atom.a_type == A_SYMBOL && atom.a_w.w_symbol->s_name[0] == '@';
}

t_atom SymbolAtom(char const* text) {
    t_atom atom{};
    SETSYMBOL(&atom, gensym(text));
    return atom;
}

/// The object brings a size into its range without a word.
void RemarkOnSize(BoxWords& box, t_atom const& name, std::span<t_atom const> values) {
    const std::string_view word = name.a_w.w_symbol->s_name + 1;
    const auto size = std::find_if(sizes.begin(), sizes.end(), [&](Size const& each) { return each.name == word; });
    if (values.empty()) {
        box.remarks.push_back(std::string("@").append(word).append(" has no value"));
    } else if (size != sizes.end() && values[0].a_type == A_FLOAT) {
        const float value = values[0].a_w.w_float;
        if (!(value >= size->least && value <= size->greatest))
            box.remarks.push_back(std::string(word) + ": " + Lume::NumberText(value) + " is not from " +
                                  Lume::NumberText(size->least) + " to " + Lume::NumberText(size->greatest) +
                                  (word == "numspeakers" && value < size->least ? "" : ", the nearest is taken"));
    }
}

/// What is in front of the first attribute: sizes by their place.
void ReadPlaces(BoxWords& box, std::span<t_atom const> words) {
    constexpr std::array placed{"@numsources", "@numspeakers"};
    std::size_t number = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i].a_type == A_FLOAT && number < placed.size()) {
            const t_atom name = SymbolAtom(placed[number++]);
            RemarkOnSize(box, name, words.subspan(i, 1));
            box.words.insert(box.words.end(), {name, words[i]});
            continue;
        }
        const std::string word = WordsText(words.subspan(i, 1));
        std::string remark = word + " means nothing here";
        if (words[i].a_type == A_SYMBOL && word.size() > 1 && word[0] == '-') {
            remark += ", did you mean @" + word.substr(1);
            // Its value would otherwise count as a size.
            if (i + 1 < words.size() && words[i + 1].a_type == A_FLOAT)
                remark.append(" ").append(WordsText(words.subspan(++i, 1)));
            remark += "?";
        }
        box.remarks.push_back(remark.append(" ").append(usage));
    }
}

}  // namespace

BoxWords ReadBoxWords(std::span<t_atom const> words) {
    BoxWords box;
    auto next = std::find_if(words.begin(), words.end(), IsAttributeWord);
    ReadPlaces(box, {words.begin(), next});
    while (next != words.end()) {
        const auto name = next;
        next = std::find_if(name + 1, words.end(), IsAttributeWord);
        const std::span<t_atom const> values(name + 1, next);
        const std::string_view word = name->a_w.w_symbol->s_name;
        if (word == "@autosave" || word == "@multichannel") {
            (word == "@autosave" ? box.autosave : box.multichannel) =
                !values.empty() && atom_getfloat(&values[0]) != 0.0f;
            continue;
        }
        RemarkOnSize(box, *name, values);
        box.words.insert(box.words.end(), name, next);
    }
    if (box.multichannel && FindSetChannels() == nullptr) {
        box.multichannel = false;
        box.remarks.emplace_back(
            "@multichannel needs Pd 0.54 or newer: here each source and loudspeaker has its own cord");
    }
    return box;
}

std::vector<std::string> HelpLines() {
    return {
        "messages of orvanverb~, at its left inlet:",
        "  source 1 ade -45 2 0     places source 1: azimuth, distance, elevation; also xyz, azim, dist, ...",
        "  speakers az -45 45 135   places all loudspeakers; speaker 1 ade ... moves one",
        "  tr0 2.5                  sets a control; print shows all of them, help NAME explains one",
        "  get tr0                  sends a value out of the right outlet",
        "  reset, reset tr0         puts all controls back, or one",
        "  preset hall              takes a room by its name; preset alone lists them",
        "  hrtf mine.sofa           other ears for headphones; also .hrtf and .coll",
        "  mute 1, bypass 1, clear  silence; the inputs as they are; empties the room",
        "  getstate, setstate ...   the whole state, out of the right outlet and back",
    };
}

}  // namespace pd
