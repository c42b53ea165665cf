#include "patcher/binbuf.h"

#include "patcher/atom.h"

namespace max {

namespace {

void Continue(std::vector<t_atom>& record, t_symbol* selector, short count, t_atom const* atoms) {
    if (selector != nullptr) {
        record.emplace_back();
        atom_setsym(&record.back(), selector);
    }
    record.insert(record.end(), atoms, atoms + count);
}

}  // namespace

void binbuf_insert(void* binbuf, t_symbol* selector, short count, t_atom* atoms) {
    auto& records = static_cast<t_binbuf*>(binbuf)->records;
    Continue(records.emplace_back(), selector, count, atoms);
}

void binbuf_append(void* binbuf, t_symbol* selector, short count, t_atom* atoms) {
    auto& records = static_cast<t_binbuf*>(binbuf)->records;
    if (records.empty()) records.emplace_back();
    Continue(records.back(), selector, count, atoms);
}

}  // namespace max
