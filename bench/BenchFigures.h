// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/FontActivating.h"

#include <QString>

#include <functional>
#include <map>
#include <string>

// Figures collected while the benchmarks run and printed at the end, one
// `name: value unit` line each.
namespace BenchFigures {

// Mean real time of a finished benchmark, in milliseconds (empty when it did not run).
double milliseconds(const std::string &benchmarkName);
void recordMilliseconds(const std::string &benchmarkName, double value);

void set(const std::string &figure, double value, const std::string &unit = {});
// A count, printed even when it is zero.
void setCount(const std::string &figure, int value);
// Each benchmark file registers how it turns recorded times into figures; they run
// after all benchmarks, in registration order.
bool onFinish(void (*addFigures)());
void finish();
void print();

// Statistic for repeated benchmarks: the fastest repetition.
double fastest(const std::vector<double> &values);

// Where benchmarks keep their generated data, inside the build tree.
QString dataDirectory();

// The generated 100k-font library (made on first use).
const QString &libraryRootPath();

// Bytes the allocator currently hands out (all arenas, mmapped blocks included).
size_t allocatedBytes();

// Activation that succeeds at once: what remains is the store's own cost.
class NoActivation : public FontActivating
{
public:
    bool activateFont(const QString &) override { return true; }
    bool deactivateFont(const QString &) override { return true; }
};

} // namespace BenchFigures
