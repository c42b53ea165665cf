#include "patcher/symbol.h"

#include <algorithm>
#include <cstring>

#include "patcher/host.h"

namespace max {

t_symbol* gensym(char const* text) {
    return Host::Get().Symbol(text);
}

t_max_err symbolarray_sort(long count, t_symbol** symbols) {
    if (symbols == nullptr || count < 0) return MAX_ERR_INVALID_PTR;
    std::sort(symbols, symbols + count,
              [](t_symbol const* a, t_symbol const* b) { return std::strcmp(a->s_name, b->s_name) < 0; });
    return MAX_ERR_NONE;
}

t_common_symbols_table* common_symbols_init() {
    static t_common_symbols_table table = {gensym("long"), gensym("float32"), gensym("symbol"),  gensym("atom"),
                                           gensym("box"),  gensym("dumpout"), gensym("modified")};
    return &table;
}

}  // namespace max
