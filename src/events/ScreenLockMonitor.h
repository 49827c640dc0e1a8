// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVariantMap>

class QDBusMessage;

// Tells when the screen locks and unlocks, from every source the desktop may use: the
// screensavers' ActiveChanged on the session bus (freedesktop, GNOME, Cinnamon, MATE), and
// login1 on the system bus (the session's Lock/Unlock and LockedHint, and the manager's
// PrepareForSleep). Each source keeps its own word: the screen counts as locked while any of
// them says locked or the machine sleeps, so a resume with the lock screen still up is no unlock.
// The combined state is unknown at start, and only a change of it is reported, so two sources
// telling of the same lock report it once.
class ScreenLockMonitor : public QObject {
    Q_OBJECT

public:
    enum class State { Unknown, Locked, Unlocked };

    explicit ScreenLockMonitor(QObject* parent = nullptr);

    // Listens on the buses there are; says once in the log when there is none.
    void start();

    State state() const { return m_state; }
    bool isLocked() const { return m_state == State::Locked; }
    // A source's report: the screen is locked (true) or not, as far as `source` knows.
    void report(const QString& source, bool locked);

signals:
    void locked();
    void unlocked();

private slots:
    void screenSaverActiveChanged(bool active, const QDBusMessage& message);
    void sessionLocked();
    void sessionUnlocked();
    void sessionPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                  const QStringList& invalidated);
    void prepareForSleep(bool sleeping);

private:
    bool listenOnSessionBus();
    bool listenOnSystemBus();
    void listenToSession(const QString& sessionPath);

    QSet<QString> m_lockedSources;
    State m_state = State::Unknown;
};
