#include "orvanverb/measure/figure_columns.h"

namespace program {

namespace {

using orvanmeasure::BandFigures;
using orvanmeasure::Figure;

constexpr FigureColumn columns[] = {
    {"edt", "EDT s", [](BandFigures const& b) { return b.edt.seconds; }, 2, -10.0, 0.05, true, false,
     [](BandFigures const& b) { return WhyInexact(b.edt, b, -10.0); }},
    {"t20", "T20 s", [](BandFigures const& b) { return b.t20.seconds; }, 2, -25.0, 0.05, true, false,
     [](BandFigures const& b) { return WhyInexact(b.t20, b, -25.0); }},
    {"t30", "T30 s", [](BandFigures const& b) { return b.t30.seconds; }, 2, -35.0, 0.05, true, false,
     [](BandFigures const& b) { return WhyInexact(b.t30, b, -35.0); }},
    {"t30_correlation", "r(T30)",
     [](BandFigures const& b) { return b.t30.seconds.IsThere() ? Figure::Of(b.t30.correlation) : b.t30.seconds; }, 4,
     -35.0, 0.0, false, false},
    {"range_db", "to dB",
     [](BandFigures const& b) { return b.floor.decays ? Figure::Of(b.endDb) : Figure::None(b.t30.seconds.missing); }, 0,
     0.0, 0.0, false, false},
    {"c50_db", "C50 dB", [](BandFigures const& b) { return b.c50Db; }, 1, 0.0, 1.0, false, false,
     [](BandFigures const& b) { return b.c50Db.IsThere() ? WhyInexact(0.05, b) : ""; }},
    {"c80_db", "C80 dB", [](BandFigures const& b) { return b.c80Db; }, 1, 0.0, 1.0, false, false,
     [](BandFigures const& b) { return b.c80Db.IsThere() ? WhyInexact(0.08, b) : ""; }},
    {"d50", "D50", [](BandFigures const& b) { return b.d50; }, 2, 0.0, 0.05, false, false,
     [](BandFigures const& b) { return WhyInexact(0.05, b); }},
    {"ts_ms", "Ts ms",
     [](BandFigures const& b) {
         Figure centre = b.centreSeconds;
         centre.value *= 1000.0;
         return centre;
     },
     0, 0.0, 10.0, false, false},
    {"iacc_early", "IACC E", [](BandFigures const& b) { return b.iaccEarly; }, 2, 0.0, 0.075, false, true},
    {"iacc_late", "IACC L", [](BandFigures const& b) { return b.iaccLate; }, 2, 0.0, 0.075, false, true},
    {"iacc_all", "IACC A", [](BandFigures const& b) { return b.iaccAll; }, 2, 0.0, 0.075, false, true},
};

}  // namespace

std::span<FigureColumn const> FigureColumns() {
    return columns;
}

double Steps(FigureColumn const& column, double value, double other) {
    return (value - other) / (column.isShare ? column.justNoticeable * other : column.justNoticeable);
}

}  // namespace program
