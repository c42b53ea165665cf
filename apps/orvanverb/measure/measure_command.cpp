#include "orvanverb/measure/measure_command.h"

#include <cstdio>
#include <optional>

#include "orvanverb/measure/figure_json.h"
#include "orvanverb/measure/figure_table.h"
#include "orvanverb/measure/plot.h"
#include "orvanverb/measure/response_file.h"

namespace program {

void RunMeasure(Options const& options) {
    using orvanmeasure::BandWidth;
    MeasureOptions const& wanted = options.measure;
    const BandWidth width = wanted.thirds ? BandWidth::third : BandWidth::octave;
    const auto measure = [&](ResponseFile const& response) {
        return orvanmeasure::Measure(response.Spans(), response.samplerate, width);
    };
    std::optional<orvanmeasure::RoomMeasurement> other;
    if (wanted.against) other = measure(ReadResponse(*wanted.against, wanted.channel));

    std::string json;
    for (std::string const& path : options.inputs) {
        const ResponseFile response = ReadResponse(path, wanted.channel);
        const orvanmeasure::RoomMeasurement measured = measure(response);
        if (wanted.plot) DrawResponse(*wanted.plot, response, measured);
        if (options.json) {
            json.append(json.empty() ? "[" : ",\n").append(FigureJson(path, measured));
            continue;
        }
        if (&path != &options.inputs.front()) std::fputs("\n", stdout);
        std::fputs(FigureTable(path, measured).c_str(), stdout);
        if (other && measured.direct && other->direct)
            std::fputs(DifferenceTable(path, measured, *wanted.against, *other).c_str(), stdout);
    }
    if (!options.json) return;
    if (other) json += ",\n" + FigureJson(*wanted.against, *other);
    std::fputs((json + "]\n").c_str(), stdout);
}

}  // namespace program
