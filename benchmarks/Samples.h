// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdio>
#include <vector>

#include <QString>

namespace tovi::bench {

/// The figures of one measured thing.
struct Samples
{
    std::vector<double> values;

    void add(double value) { values.push_back(value); }
    double median() const { return quantile(0.5); }
    double worst() const { return values.empty() ? 0 : *std::max_element(values.begin(), values.end()); }
    double quantile(double q) const
    {
        if (values.empty())
            return 0;
        std::vector<double> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        return sorted[std::min(sorted.size() - 1, size_t(q * double(sorted.size())))];
    }
};

inline void printHeading(const char *text)
{
    std::printf("\n%s\n", text);
}

inline void printRow(const QString &what, const Samples &samples, const char *unit)
{
    std::printf("  %-58s median %9.3f %-3s worst %9.3f %-3s (%zu)\n", qPrintable(what), samples.median(),
                unit, samples.worst(), unit, samples.values.size());
}

inline void printRatio(const QString &what, double value, double against, double aim)
{
    std::printf("  %-58s %9.2f  (aim: at most %.2f)%s\n", qPrintable(what), against > 0 ? value / against : 0,
                aim, against > 0 && value / against <= aim ? "" : "  MISSED");
}

} // namespace tovi::bench
