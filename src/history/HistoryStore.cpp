// SPDX-License-Identifier: GPL-3.0-or-later
#include "HistoryStore.h"

#include "logging/Logger.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QUuid>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// SQLite's result codes, as Qt hands them on in QSqlError::nativeErrorCode().
const QString sqliteBusy = QStringLiteral("5");
const QString sqliteIoError = QStringLiteral("10");
const QString sqliteLocked = QStringLiteral("6");
const QString sqliteReadOnly = QStringLiteral("8");
const QString sqliteCorrupt = QStringLiteral("11");
const QString sqliteFull = QStringLiteral("13");
const QString sqliteCannotOpen = QStringLiteral("14");
const QString sqliteNotADatabase = QStringLiteral("26");

// A write waits this long for another program's lock, never longer than a frame of the screen.
constexpr int busyTimeoutMs = 10;

// The primary result code: Qt hands on SQLite's extended codes, whose low byte it is.
QString primaryCode(const QSqlError& error)
{
    bool ok = false;
    const int code = error.nativeErrorCode().toInt(&ok);
    return ok ? QString::number(code & 0xff) : error.nativeErrorCode();
}

bool isBroken(const QSqlError& error)
{
    const QString code = primaryCode(error);
    return code == sqliteCorrupt || code == sqliteNotADatabase;
}

QString describe(const QSqlError& error)
{
    const QString code = primaryCode(error);
    if (code == sqliteBusy || code == sqliteLocked)
        return QStringLiteral("it is locked by another program");
    if (code == sqliteReadOnly)
        return QStringLiteral("it is read-only");
    if (code == sqliteFull || code == sqliteIoError)
        return QStringLiteral("the disk is full or failing");
    if (code == sqliteCannotOpen)
        return QStringLiteral("it cannot be opened");
    if (isBroken(error))
        return QStringLiteral("it is not a readable database");
    return error.text();
}

const char* const createStatements[] = {
    "CREATE TABLE IF NOT EXISTS schema_version (version INTEGER NOT NULL)",
    "CREATE TABLE IF NOT EXISTS events ("
    " id INTEGER PRIMARY KEY,"
    " utc TEXT NOT NULL,"
    " local_date TEXT NOT NULL,"
    " kind TEXT NOT NULL,"
    " break_kind TEXT,"
    " seconds REAL,"
    " detail TEXT)",
};

// A view or trigger is nothing we write: it could make a plain read or insert run forever.
bool holdsOnlyTables(QSqlQuery& query)
{
    return query.exec(
               QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type IN ('view', 'trigger')")) &&
           query.next() && query.value(0).toInt() == 0;
}

} // namespace

QString HistoryStore::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/lulltide/history.sqlite");
}

HistoryStore::HistoryStore(QString path)
    : m_path(std::move(path)), m_connection(QStringLiteral("history-") + QUuid::createUuid().toString())
{
}

HistoryStore::~HistoryStore()
{
    close();
}

void HistoryStore::makePrivate() const
{
    // When you were at your desk is yours alone: group and others lose every right on the folder,
    // the file and its journal (0700 and 0600 as made here; SQLite gives the journal the file's
    // mode). The owner's own rights are left as they are.
    const auto keepOwnersOnly = [](const QString& path) {
        struct stat status {};
        if (::stat(QFile::encodeName(path).constData(), &status) == 0 && (status.st_mode & 077) != 0)
            ::chmod(QFile::encodeName(path).constData(), status.st_mode & 07700);
    };
    const QString folder = QFileInfo(m_path).absolutePath();
    QDir().mkpath(folder);
    keepOwnersOnly(folder);
    if (!QFileInfo::exists(m_path)) {
        const int made =
            ::open(QFile::encodeName(m_path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (made >= 0)
            ::close(made);
    }
    for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
        keepOwnersOnly(m_path + suffix);
}

bool HistoryStore::open()
{
    if (m_open)
        return true;
    for (int attempt = 0; attempt < 2; ++attempt) {
        makePrivate();
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
            db.setDatabaseName(m_path);
            db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(busyTimeoutMs));
            m_open = db.open();
            if (!m_open)
                tellOnce(describe(db.lastError()));
        }
        if (!m_open) {
            QSqlDatabase::removeDatabase(m_connection);
            return false;
        }
        const Schema schema = createOrMigrate();
        if (schema == Schema::Ready) {
            m_openFile = fileIdOf(m_path);
            return true;
        }
        close();
        if (schema != Schema::Unreadable || attempt > 0 || !moveAside())
            return false;
    }
    return false;
}

HistoryStore::Schema HistoryStore::createOrMigrate()
{
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery query(db);
    const auto failed = [this](const QSqlError& error) {
        if (isBroken(error))
            return Schema::Unreadable;
        tellOnce(describe(error));
        return Schema::Failed;
    };
    // The journal beside the file lets a reader (--history) read while a write goes on; NORMAL
    // synchronisation is safe with it and keeps a write short.
    // A write touches a few pages at the end of the file, and the system caches the file anyway:
    // SQLite's own page cache (2 MB by default) would only grow in our memory all day as the
    // file does.
    if (!query.exec(QStringLiteral("PRAGMA journal_mode=WAL")) ||
        !query.exec(QStringLiteral("PRAGMA synchronous=NORMAL")) ||
        !query.exec(QStringLiteral("PRAGMA cache_size=-128")))
        return failed(query.lastError());
    if (!holdsOnlyTables(query)) {
        // Someone else's view or trigger makes the file unusable, as corruption does.
        const QSqlError error = query.lastError();
        return error.isValid() ? failed(error) : Schema::Unreadable;
    }
    int version = 0;
    if (query.exec(QStringLiteral("SELECT version FROM schema_version")) && query.next())
        version = query.value(0).toInt();
    else if (isBroken(query.lastError()))
        return Schema::Unreadable;
    if (version == schemaVersion)
        return Schema::Ready;
    if (version > schemaVersion) {
        // A newer Lulltide's file: its rows are left as they are.
        tellOnce(QStringLiteral("it was written by a newer version of Lulltide"));
        return Schema::Failed;
    }

    if (!db.transaction())
        return failed(db.lastError());
    bool ok = true;
    if (version == 0) {
        for (const char* statement : createStatements)
            ok = ok && query.exec(QString::fromLatin1(statement));
        ok = ok && query.exec(QStringLiteral("INSERT INTO schema_version (version) VALUES (1)"));
        version = 1;
    }
    if (ok && version == 1) {
        // Version 2: the days are read by range, for the chart and --history.
        ok = query.exec(
                 QStringLiteral("CREATE INDEX IF NOT EXISTS events_by_local_date ON events (local_date)")) &&
             query.exec(QStringLiteral("UPDATE schema_version SET version = 2"));
    }
    if (ok && db.commit())
        return Schema::Ready;
    const QSqlError error = query.lastError().isValid() ? query.lastError() : db.lastError();
    db.rollback();
    return failed(error);
}

void HistoryStore::close()
{
    if (!m_open)
        return;
    m_open = false;
    QSqlDatabase::database(m_connection, false).close();
    QSqlDatabase::removeDatabase(m_connection);
}

HistoryStore::FileId HistoryStore::fileIdOf(const QString& path)
{
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {quint64(status.st_dev), quint64(status.st_ino)};
}

bool HistoryStore::record(const Event& event)
{
    // A file deleted (or replaced) under us would swallow every later event into handles that
    // name nothing: the path must still name the file that is open.
    if (m_open && fileIdOf(m_path) != m_openFile) {
        logger().warning(QStringLiteral("the history file ") + m_path +
                         QStringLiteral(" was deleted or replaced while Lulltide ran: a new one begins"));
        close();
    }
    if (!open())
        return false;
    for (int attempt = 0; attempt < 2; ++attempt) {
        QSqlError error;
        {
            QSqlQuery query(QSqlDatabase::database(m_connection, false));
            query.prepare(
                QStringLiteral("INSERT INTO events (utc, local_date, kind, break_kind, seconds, detail) "
                               "VALUES (?, ?, ?, ?, ?, ?)"));
            query.addBindValue(event.utc.toUTC().toString(Qt::ISODateWithMs));
            query.addBindValue(event.localDate);
            query.addBindValue(event.kind);
            query.addBindValue(event.breakKind.isEmpty() ? QVariant() : QVariant(event.breakKind));
            query.addBindValue(event.seconds);
            query.addBindValue(event.detail.isEmpty() ? QVariant() : QVariant(event.detail));
            // One statement is one transaction of its own.
            if (query.exec()) {
                // A fault that comes back later is worth a line again.
                m_fault.forget();
                return true;
            }
            error = query.lastError();
        }
        if (attempt == 0 && isBroken(error)) {
            close();
            if (moveAside() && open())
                continue;
            return false;
        }
        tellOnce(describe(error));
        return false;
    }
    return false;
}

QList<HistoryStore::Event> HistoryStore::read(const QDate& from, const QDate& to, QString* error) const
{
    QList<Event> events;
    if (!QFileInfo::exists(m_path))
        return events;
    // A connection of its own that only reads: no journal switch, no migration, nothing moved
    // aside, nothing logged. The command line reads while Lulltide writes.
    const QString connection = m_connection + QStringLiteral("-read");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(m_path);
        // Truly read-only: nothing is checkpointed or deleted, also when Lulltide is not running.
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1000;QSQLITE_OPEN_READONLY"));
        QString why;
        if (db.open()) {
            QSqlQuery query(db);
            if (!holdsOnlyTables(query)) {
                why = query.lastError().isValid() ? describe(query.lastError())
                                                  : QStringLiteral("it holds more than a history");
            } else {
                query.prepare(
                    QStringLiteral("SELECT utc, local_date, kind, break_kind, seconds, detail FROM events "
                                   "WHERE local_date BETWEEN ? AND ? ORDER BY utc, id"));
                query.addBindValue(from.toString(Qt::ISODate));
                query.addBindValue(to.toString(Qt::ISODate));
                if (!query.exec())
                    why = describe(query.lastError());
                while (query.next()) {
                    Event event;
                    event.utc = QDateTime::fromString(query.value(0).toString(), Qt::ISODateWithMs);
                    event.localDate = query.value(1).toString();
                    event.kind = query.value(2).toString();
                    event.breakKind = query.value(3).toString();
                    event.seconds = query.value(4).toDouble();
                    event.detail = query.value(5).toString();
                    events << event;
                }
            }
            db.close();
        } else {
            why = describe(db.lastError());
        }
        if (error)
            *error = why;
    }
    QSqlDatabase::removeDatabase(connection);
    return events;
}

bool HistoryStore::forget()
{
    close();
    bool removed = true;
    const QFileInfo file(m_path);
    // The file, its journal, and the copies of it that were moved aside.
    QDirIterator entries(file.absolutePath(),
                         {file.fileName(), file.fileName() + QStringLiteral("-*"),
                          file.fileName() + QStringLiteral(".broken-*")},
                         QDir::Files | QDir::Hidden | QDir::System);
    while (entries.hasNext()) {
        if (!QFile::remove(entries.next()))
            removed = false;
    }
    m_fault.forget();
    return removed;
}

bool HistoryStore::moveAside()
{
    close();
    // history.sqlite.broken-2026-11-24, then -2, -3 on the same day: an earlier copy is kept.
    const QString stem = m_path + QStringLiteral(".broken-") + QDate::currentDate().toString(Qt::ISODate);
    QString aside = stem;
    for (int n = 2; QFileInfo::exists(aside) && n < 1000; ++n)
        aside = stem + u'-' + QString::number(n);
    const bool moved = !QFileInfo::exists(aside) && QFile::rename(m_path, aside);
    if (moved) {
        // The journal may hold rows of its own: it goes with the file, under the name SQLite
        // looks for beside the copy.
        for (const QString& suffix : {QStringLiteral("-wal"), QStringLiteral("-shm")}) {
            if (QFileInfo::exists(m_path + suffix) && !QFile::rename(m_path + suffix, aside + suffix))
                QFile::remove(m_path + suffix);
        }
    }
    logger().warning(QStringLiteral("the history file ") + m_path +
                     (moved ? QStringLiteral(" could not be read: moved aside as ") + aside +
                                  QStringLiteral(", a new one starts")
                            : QStringLiteral(" could not be read, nor moved aside")));
    return moved;
}

void HistoryStore::tellOnce(const QString& what)
{
    m_fault.warning(QStringLiteral("the history of breaks cannot be written to ") + m_path +
                    QStringLiteral(": ") + what + QStringLiteral("; Lulltide goes on without it"));
}
