// SPDX-License-Identifier: GPL-3.0-or-later
#include "History.h"

#include "HistoryRecorder.h"
#include "HistoryStore.h"

History::History(CycleEvents& events, QObject* parent)
    : QObject(parent), m_store(std::make_unique<HistoryStore>()),
      m_recorder(new HistoryRecorder(*m_store, events, this))
{
}

History::~History()
{
    // The recorder goes first: it writes to the file.
    delete m_recorder;
}
