// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "logging/SaidOnce.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>

// The history of the cycle in a SQLite file of the user's own, one row per event. Nothing is
// opened before the first event; the connection is kept after it. A file that cannot be used
// (corrupt, locked by another program, read-only, on a full disk) is said once in the log and,
// where that helps, moved aside for a fresh one: recording never stops the cycle.
class HistoryStore {
public:
    struct Event {
        QDateTime utc;
        // The day in local time when it happened, as the person lived it: "2026-11-24".
        QString localDate;
        QString kind;
        // short, long or new_day for the events of a break.
        QString breakKind;
        // A length in seconds: of the work period, the planned break, the time a break ran or
        // waited, the postponement.
        double seconds = 0;
        // How a break ended, or where a pause came from.
        QString detail;
    };

    // The newest schema; a file of version 1 is brought up to it when opened.
    static constexpr int schemaVersion = 2;

    // $XDG_DATA_HOME/lulltide/history.sqlite
    static QString defaultPath();

    explicit HistoryStore(QString path = defaultPath());
    ~HistoryStore();
    HistoryStore(const HistoryStore&) = delete;
    HistoryStore& operator=(const HistoryStore&) = delete;

    QString path() const { return m_path; }

    // Writes one event in a transaction of its own; false (said once) when it could not.
    bool record(const Event& event);

    // The events whose local date lies in [from, to], oldest first. Only reads: creates, changes
    // and logs nothing; `error` says why nothing could be read (empty when all went well).
    QList<Event> read(const QDate& from, const QDate& to, QString* error = nullptr) const;

    // Closes the file and deletes it with its journal and the copies moved aside.
    bool forget();

private:
    enum class Schema { Ready, Unreadable, Failed };

    // Makes the folder and the file, readable by their owner only.
    void makePrivate() const;
    bool open();
    Schema createOrMigrate();
    void close();
    // Moves an unusable file aside as history.sqlite.broken-<date> (with its journal) so a fresh
    // one can start.
    bool moveAside();
    void tellOnce(const QString& what);

    // The device and inode of a file, to tell it from another under the same path; zero when
    // nothing is there.
    struct FileId {
        quint64 device = 0;
        quint64 inode = 0;
        bool operator==(const FileId&) const = default;
    };
    static FileId fileIdOf(const QString& path);

    QString m_path;
    FileId m_openFile;
    QString m_connection;
    bool m_open = false;
    SaidOnce m_fault;
};
