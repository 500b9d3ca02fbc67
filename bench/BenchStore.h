// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "BenchFigures.h"

#include "state/AppState.h"

// One store over the 100k-font library, shared by the benchmarks that need it: its
// source is selected and it is filled by the store's own refresh.
class BenchStore
{
public:
    static BenchStore &instance();
    AppState &store() { return m_store; }
    // Requests a refresh and returns once it is installed.
    void refresh();

private:
    BenchStore();
    BenchFigures::NoActivation m_activation;
    PersistenceService m_persistence;
    AppState m_store;
};
