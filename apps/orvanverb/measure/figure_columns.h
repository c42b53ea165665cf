#pragma once

#include <span>
#include <string>

#include "measure/room_measurement.h"

namespace program {

/// One figure of a band: how it is called, printed and compared.
struct FigureColumn {
    char const* key;                                                     // in JSON
    char const* heading;                                                 // with the unit
    orvanmeasure::Figure (*get)(orvanmeasure::BandFigures const& band);  // in the unit of the heading
    int decimals;
    double lowerDb;         // end of the part that it is read from; 0 for what is no decay time
    double justNoticeable;  // difference, after ISO 3382-1, annex A; 0 if it tells none
    bool isShare;           // that difference is a share of the figure
    bool needsEars;         // two channels
    // A sentence that says why it may be off by more than its limit; empty if it isn't.
    std::string (*whyInexact)(orvanmeasure::BandFigures const& band) = [](orvanmeasure::BandFigures const&) {
        return std::string();
    };
};

std::span<FigureColumn const> FigureColumns();

/// A difference of two figures in steps that one just hears.
double Steps(FigureColumn const& column, double value, double other);

}  // namespace program
