#pragma once

#include <cmath>

namespace orvanmeasure {

/// A straight line by least squares, point by point.
class LineFit {
public:
    void Add(double x, double y) {
        if (count == 0.0) originX = x, originY = y;  // sums near 0 keep their digits
        x -= originX;
        y -= originY;
        count += 1.0;
        sumX += x;
        sumY += y;
        sumXX += x * x;
        sumXY += x * y;
        sumYY += y * y;
    }
    double Count() const { return count; }
    double Slope() const { return (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX); }
    double At(double x) const { return originY + (sumY + Slope() * (count * (x - originX) - sumX)) / count; }
    double Correlation() const {
        return (count * sumXY - sumX * sumY) / std::sqrt((count * sumXX - sumX * sumX) * (count * sumYY - sumY * sumY));
    }

private:
    double originX = 0.0, originY = 0.0;
    double count = 0.0, sumX = 0.0, sumY = 0.0, sumXX = 0.0, sumXY = 0.0, sumYY = 0.0;
};

}  // namespace orvanmeasure
