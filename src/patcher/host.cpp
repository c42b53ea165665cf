#include "patcher/host.h"

#include <algorithm>
#include <cstdio>

#include "patcher/box.h"

namespace max {

Host& Host::Get() {
    static Host* const host = new Host;  // on purpose for good: destructors of statics may still use symbols
    return *host;
}

Host::Host()
    : console([](ConsoleLevel level, std::string const& text) {
          std::fprintf(stderr, "%s: %s\n", ConsoleLevelName(level), text.c_str());
      }) {}

void Host::Console(ConsoleLevel level, std::string const& text, Box* box) {
    if (box == nullptr) box = activeBox;
    if (box != nullptr && box->Console(level, text)) return;
    if (console) console(level, text);
}

t_symbol* Host::Symbol(std::string const& text) {
    auto& [name, symbol] = *symbols.try_emplace(text, t_symbol{nullptr, nullptr}).first;
    symbol.s_name = name.c_str();
    return &symbol;
}

t_max_err Host::Register(t_symbol* nameSpace, t_class* c) {
    if (nameSpace == nullptr || c == nullptr) return MAX_ERR_INVALID_PTR;
    if (FindClass(nameSpace, c->c_sym) != nullptr) return MAX_ERR_DUPLICATE;
    registered.emplace_back(nameSpace, c);
    return MAX_ERR_NONE;
}

t_class* Host::FindClass(t_symbol const* nameSpace, t_symbol const* name) const {
    const auto found = std::find_if(registered.begin(), registered.end(), [&](auto const& entry) {
        return entry.first == nameSpace && entry.second->c_sym == name;
    });
    return found != registered.end() ? found->second : nullptr;
}

}  // namespace max
