// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <memory>

class CycleEvents;
class HistoryRecorder;
class HistoryStore;

// The program's history: its file and the recorder that writes the cycle's events into it.
// Whoever makes it needs to know nothing of how the events become rows.
class History : public QObject {
    Q_OBJECT

public:
    explicit History(CycleEvents& events, QObject* parent = nullptr);
    ~History() override;

    // The file, for the History tab.
    HistoryStore& store() { return *m_store; }

private:
    std::unique_ptr<HistoryStore> m_store;
    HistoryRecorder* m_recorder;
};
