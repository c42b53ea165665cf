#include "orvanverb/measure/measure_command.h"

#include <cstdio>
#include <optional>

#include "orvanverb/measure/figure_json.h"
#include "orvanverb/measure/figure_table.h"
#include "orvanverb/measure/plot.h"
#include "orvanverb/measure/response_file.h"

namespace program {

void RunMeasure(MeasureOptions const& options) {
    using orvanmeasure::BandWidth;
    const BandWidth width = options.thirds ? BandWidth::third : BandWidth::octave;
    const auto measure = [&](ResponseFile const& response) {
        return orvanmeasure::Measure(response.Spans(), response.samplerate, width);
    };
    std::optional<orvanmeasure::RoomMeasurement> other;
    if (options.against) other = measure(ReadResponse(*options.against, options.channel));

    std::string json;
    for (std::string const& path : options.inputs) {
        const ResponseFile response = ReadResponse(path, options.channel);
        const orvanmeasure::RoomMeasurement measured = measure(response);
        if (options.plot) DrawResponse(*options.plot, response, measured);
        if (options.json) {
            json.append(json.empty() ? "[" : ",\n").append(FigureJson(path, measured));
            continue;
        }
        if (&path != &options.inputs.front()) std::fputs("\n", stdout);
        std::fputs(FigureTable(path, measured).c_str(), stdout);
        if (other && measured.direct && other->direct)
            std::fputs(DifferenceTable(path, measured, *options.against, *other).c_str(), stdout);
    }
    if (!options.json) return;
    if (other) json += ",\n" + FigureJson(*options.against, *other);
    std::fputs((json + "]\n").c_str(), stdout);
}

}  // namespace program
