#include "orvanverb/scene/plan.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>

#include "geometry/vector_algebra.h"
#include "orvanverb/common/gnuplot.h"
#include "orvanverb/common/text.h"

namespace program {

namespace {

// Colours that stay apart for every kind of colour vision, after Okabe and Ito; more sources begin again.
constexpr char const* colours[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7", "#56b4e9", "#e69f00", "#000000"};
constexpr char const* ink = "#333333";

/// The next of 1, 2, 5, 10, ... times a power of ten.
double RoundStep(double least) {
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least * 0.999) return factor * power;
    return 10.0 * power;
}

char const* Colour(std::size_t source) {
    return colours[source % std::size(colours)];
}

/// A block of data with a path, and one with the moments that bear their times. Where a path comes back to a place,
/// that bears all of them.
/// @param labelSeconds, labelMetres  least way from one label to the next
void WritePath(std::ostream& out, Plan const& plan, std::size_t source, double labelSeconds, double labelMetres) {
    out << "$path" << source << " << EOD\n";
    for (Plan::Moment const& moment : plan.moments) {
        Lume::CartesianVector const& p = moment.positions[source];
        out << p.x << ' ' << p.y << ' ' << moment.seconds << ' ' << Lume::Length(p) << '\n';
    }
    out << "EOD\n$times" << source << " << EOD\n";
    struct Label {
        Lume::CartesianVector place;
        std::string times;
    };
    std::vector<Label> labels;
    Plan::Moment const* labelled = nullptr;
    for (Plan::Moment const& moment : plan.moments) {
        Lume::CartesianVector const& p = moment.positions[source];
        const auto isNear = [&](Lume::CartesianVector const& place) {
            return static_cast<double>(Lume::Length(p - place)) < labelMetres;
        };
        if (labelled != nullptr &&
            (moment.seconds < labelled->seconds + labelSeconds || isNear(labelled->positions[source])))
            continue;
        labelled = &moment;
        const std::string time = NumberText(static_cast<float>(std::round(moment.seconds * 10.0) / 10.0)) + " s";
        const auto known =
            std::find_if(labels.begin(), labels.end(), [&](Label const& label) { return isNear(label.place); });
        if (known == labels.end())
            labels.push_back({p, time});
        else
            known->times.append(", ").append(time);
    }
    for (Label const& label : labels) out << label.place.x << ' ' << label.place.y << " \"" << label.times << "\"\n";
    out << "EOD\n";
}

/// How far from the listener a place is on the drawing.
double Reach(Lume::CartesianVector const& p) {
    return std::hypot(static_cast<double>(p.x), static_cast<double>(p.y));
}

}  // namespace

void DrawPlan(std::string const& path, Plan const& plan) {
    double reach = 1.0, farthest = 0.0;
    for (Lume::CartesianVector const& p : plan.speakers) reach = std::max(reach, Reach(p));
    for (Plan::Moment const& moment : plan.moments)
        for (Lume::CartesianVector const& p : moment.positions) {
            reach = std::max(reach, Reach(p));
            farthest = std::max(farthest, static_cast<double>(Lume::Length(p)));
        }
    reach *= 1.15;
    const double duration = std::max(plan.moments.back().seconds, 1.0), ring = RoundStep(reach / 4.0);
    const std::size_t numSources = plan.moments.front().positions.size();

    std::ostringstream out;
    out.imbue(std::locale::classic());
    for (std::size_t i = 0; i < numSources; ++i)
        WritePath(out, plan, i, RoundStep(duration / 10.0) - 1e-6, 0.08 * reach);
    out << "$speakers << EOD\n";
    for (std::size_t i = 0; i < plan.speakers.size(); ++i)
        out << plan.speakers[i].x << ' ' << plan.speakers[i].y << ' ' << i + 1 << '\n';
    out << "EOD\nset multiplot title \"" << PlotText(plan.title) << "\" font ',14' textcolor rgb '" << ink << "'\n"
        << "set border 3 lc rgb '#666666' lw 0.8\nset tics nomirror out textcolor rgb '#333333'\nset key off\n"
        << "set origin 0,0.27\nset size 1,0.69\nset size ratio -1\nunset border\nunset tics\n"
        << "set xrange [" << -reach << ':' << reach << "]\nset yrange [" << -reach << ':' << reach << "]\n"
        << "set label 1 'ahead' at 0," << reach << " center offset 0,0.5 textcolor rgb '#888888'\n"
        << "set label 2 'left' at " << -reach << ",0 right offset -0.5,0 textcolor rgb '#888888'\n"
        << "set label 3 'right' at " << reach << ",0 left offset 0.5,0 textcolor rgb '#888888'\n";
    // What rings say stands where few loudspeakers do: 157.5 degrees to the right.
    constexpr double besideX = 0.383, besideY = -0.924;
    int tag = 10;
    for (double radius = ring; radius < reach; radius += ring, ++tag)
        out << "set object " << tag << " circle at 0,0 size " << radius << " lw 1 fs empty border lc rgb '#dddddd'\n"
            << "set label " << tag << " '" << NumberText(static_cast<float>(radius)) << " m' at " << radius * besideX
            << ',' << radius * besideY << " left offset 0.2,-0.2 font ',9' textcolor rgb '#888888'\n";
    // The head, which looks ahead.
    const double head = 0.035 * reach;
    out << "set object 1 circle at 0,0 size " << head << " fc rgb '#bbbbbb' fs solid border lc rgb '#666666'\n"
        << "set object 2 polygon from " << -0.4 * head << ',' << 0.95 * head << " to 0," << 1.6 * head << " to "
        << 0.4 * head << ',' << 0.95 * head << " fc rgb '#bbbbbb' fs solid border lc rgb '#666666'\n"
        << "set key outside right top samplen 1.5 textcolor rgb '" << ink << "'\nplot ";
    if (!plan.speakers.empty())
        out << "$speakers using 1:2 with points pt 5 ps 1.1 lc rgb '#888888' title 'loudspeakers', "
            << "$speakers using (0.8*$1):(0.8*$2):3 with labels font ',9' textcolor rgb '#666666' notitle, ";
    for (std::size_t i = 0; i < numSources; ++i)
        out << (i > 0 ? ", " : "") << "$path" << i << " using 1:2 with lines lw 2 lc rgb '" << Colour(i)
            << "' notitle, $times" << i << " using 1:2 with points pt 7 ps 0.7 lc rgb '" << Colour(i)
            << "' title 'source " << i + 1 << "', $times" << i
            << " using 1:2:3 with labels left offset 0.6,0.4 font ',9' textcolor rgb '" << Colour(i) << "' notitle";
    out << "\nunset object\nunset label\nset key off\nset origin 0,0\nset size 1,0.26\nset size noratio\nset border 3\n"
        << "set xtics\nset ytics\nset lmargin 9\nset rmargin 5\nset grid back lt 1 lc rgb '#e4e4e4' lw 1\n"
        << "set xlabel 's'\nset ylabel 'distance, m'\nset xrange [0:" << duration
        << "]\nset yrange [0:" << 1.1 * farthest << "]\nplot ";
    for (std::size_t i = 0; i < numSources; ++i)
        out << (i > 0 ? ", " : "") << "$path" << i << " using 3:4 with lines lw 2 lc rgb '" << Colour(i) << "'";
    out << "\nunset multiplot\n";
    DrawPicture(path, 900, 1000, out.str());
}

}  // namespace program
