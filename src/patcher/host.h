#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "patcher/class.h"
#include "patcher/console.h"
#include "patcher/types.h"

namespace max {

/// What all objects of a process share: symbols, classes and the console. Control thread only.
class Host {
public:
    using ConsoleFunction = std::function<void(ConsoleLevel, std::string const&)>;

    /// The process's host. It is never destroyed: symbols and classes live as long as the process.
    static Host& Get();

    Host(Host const&) = delete;
    Host& operator=(Host const&) = delete;

    /// Where lines go that no box takes; at first to standard error, as "level: text".
    void SetConsole(ConsoleFunction function) { console = std::move(function); }

    /// Writes a line to the console of the box, or of the box at work if null, or to the host's own.
    void Console(ConsoleLevel level, std::string const& text, Box* box);

    t_symbol* Symbol(std::string const& text);

    t_class* NewClass() { return classes.emplace_back(std::make_unique<t_class>()).get(); }
    t_max_err Register(t_symbol* nameSpace, t_class* c);
    t_class* FindClass(t_symbol const* nameSpace, t_symbol const* name) const;

    /// The box at work: the one that is being made, or that handles a message. Null between messages.
    Box* ActiveBox() const noexcept { return activeBox; }
    /// Changes the box at work and returns the one before.
    Box* SetActiveBox(Box* box) noexcept { return std::exchange(activeBox, box); }

private:
    Host();

    ConsoleFunction console;
    Box* activeBox = nullptr;
    std::unordered_map<std::string, t_symbol> symbols;  // a node container: texts and symbols stay where they are
    std::vector<std::unique_ptr<t_class>> classes;
    std::vector<std::pair<t_symbol*, t_class*>> registered;
};

}  // namespace max
