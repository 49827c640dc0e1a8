// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QVariantMap>

class HistoryStore;

// The History tab's data: the last days as the chart draws them, read from the history file
// when the tab asks, never before.
class HistoryModel : public QObject {
    Q_OBJECT

public:
    explicit HistoryModel(HistoryStore& store, QObject* parent = nullptr);

    // For the last `days` days, oldest first: "labels" (weekday and date), "dates" (written out),
    // "taken", "skipped",
    // "cutShort" (the stacked bars: their height is the day's breaks), "postponed" (apart) (numbers; 0 on an
    // empty day), "empty" (booleans), "screen" and "stretch" (texts, "–" on an empty day), "maximum" (the
    // highest bar), "sentence" (or why nothing could be read) and "path" (where the file is).
    Q_INVOKABLE QVariantMap load(int days) const;

    // Deletes the history file, after the person confirmed it.
    Q_INVOKABLE bool forget() const;

private:
    HistoryStore& m_store;
};
