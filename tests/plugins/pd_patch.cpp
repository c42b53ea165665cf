#include "plugins/pd_patch.h"

int PdPatch::Add(std::string const& line) {
    objects.append(line).append(";\n");
    return number++;
}

int PdPatch::Object(std::string const& text) {
    return Add("#X obj 10 10 " + text);
}

int PdPatch::Message(std::string const& text) {
    return Add("#X msg 10 10 " + text);
}

int PdPatch::Subpatch(PdPatch const& patch, std::string const& name) {
    objects.append("#N canvas 0 0 400 400 ").append(name).append(" 0;\n");
    objects.append(patch.objects).append(patch.connections);
    return Add("#X restore 10 10 pd " + name);
}

void PdPatch::Connect(int from, int outlet, int to, int inlet) {
    connections.append("#X connect");
    for (const int word : {from, outlet, to, inlet}) connections.append(" ").append(std::to_string(word));
    connections.append(";\n");
}

void PdPatch::At(double milliseconds, std::string const& message) {
    const int bang = Object("loadbang");
    const int box = Message(message);
    if (milliseconds <= 0.0) return Connect(bang, 0, box, 0);
    const int delay = Object("delay " + std::to_string(milliseconds));
    Connect(bang, 0, delay, 0);
    Connect(delay, 0, box, 0);
}

std::string PdPatch::Text() const {
    return "#N canvas 0 0 400 400 12;\n" + objects + connections;
}

RunResult RunPd(std::string const& path, std::vector<std::string> const& options, std::string const& before) {
    // -batch: no sound card, no clock on the wall. -nrt: no watchdog, which complains of a busy machine. The external's
    // folder comes first, whatever is installed.
    std::vector<std::string> words{"pd",      "-batch",   "-nrt",  "-nogui",   "-noaudio",
                                   "-stderr", "-noprefs", "-path", PD_EXTERNAL};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"-open", path});
    return RunCommand(words, "timeout 300 env " PD_ENVIRONMENT " " + before);
}
