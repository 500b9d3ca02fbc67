// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "BenchFigures.h"

#include "state/AppState.h"

// A store of its own over one corpus folder, with its own catalogue file. The second's
// pause a refresh gets before indexing is waiting, not work: none here.
class CatalogStore
{
public:
    CatalogStore(const QString &name, const QString &folder);
    static QString catalogueFile(const QString &name);
    // The activation benchmarks' 100,000 links to real fonts, indexed once and kept.
    static CatalogStore &library100k();
    // 100,000 real faces in 50,000 families of their own (tools/fonts/make_family_corpus.py),
    // made and indexed once: what a designer's library looks like to the font list.
    static CatalogStore &families100k();

    AppState &store() { return m_store; }
    // A refresh, until the catalogue has read what it found.
    void refreshAndIndex();

private:
    BenchFigures::NoActivation m_activation;
    PersistenceService m_persistence;
    AppState m_store;
};
