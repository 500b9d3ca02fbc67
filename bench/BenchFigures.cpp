// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchFigures.h"

#include <algorithm>
#include <cstdio>
#include <malloc.h>
#include <vector>

namespace BenchFigures {

namespace {

std::map<std::string, double> &times()
{
    static std::map<std::string, double> map;
    return map;
}

struct Figure
{
    std::string name;
    double value;
    std::string unit;
};

std::vector<Figure> &figures()
{
    static std::vector<Figure> list;
    return list;
}

std::vector<void (*)()> &finishers()
{
    static std::vector<void (*)()> list;
    return list;
}

} // namespace

bool onFinish(void (*addFigures)())
{
    finishers().push_back(addFigures);
    return true;
}

void finish()
{
    for (auto addFigures : finishers())
        addFigures();
}

double milliseconds(const std::string &benchmarkName)
{
    const auto found = times().find(benchmarkName);
    return found == times().end() ? 0.0 : found->second;
}

void recordMilliseconds(const std::string &benchmarkName, double value)
{
    times()[benchmarkName] = value;
}

void set(const std::string &figure, double value, const std::string &unit)
{
    if (!(value > 0))
        return; // its benchmark did not run (filtered out, or failed)
    for (Figure &existing : figures()) {
        if (existing.name == figure) {
            existing.value = value;
            existing.unit = unit;
            return;
        }
    }
    figures().push_back({figure, value, unit});
}

void setCount(const std::string &figure, int value)
{
    figures().push_back({figure, static_cast<double>(value), {}});
}

void print()
{
    for (const Figure &figure : figures()) {
        if (figure.unit.empty())
            std::printf("%s: %.2f\n", figure.name.c_str(), figure.value);
        else
            std::printf("%s: %.2f %s\n", figure.name.c_str(), figure.value, figure.unit.c_str());
    }
    std::fflush(stdout);
}

double fastest(const std::vector<double> &values)
{
    return values.empty() ? 0.0 : *std::min_element(values.begin(), values.end());
}

QString dataDirectory()
{
    return QStringLiteral(MORVANE_BENCH_DATA_DIR);
}

size_t allocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace BenchFigures
