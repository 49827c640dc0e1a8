#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

// Tells when the screen locks and unlocks, from every source the desktop may use: the
// screensavers' ActiveChanged on the session bus (freedesktop, GNOME, Cinnamon, MATE), and
// login1 on the system bus (the session's Lock/Unlock and LockedHint, and the manager's
// PrepareForSleep: a suspend counts as a lock, the resume as an unlock). All of them feed one
// state, unknown at start, and only a change of it is reported, so two sources telling of the
// same lock report it once.
class ScreenLockMonitor : public QObject {
    Q_OBJECT

public:
    enum class State { Unknown, Locked, Unlocked };

    explicit ScreenLockMonitor(QObject* parent = nullptr);

    // Listens on the buses there are; says once in the log when there is none.
    void start();

    State state() const { return m_state; }
    // A source's report: the screen is locked (true) or not.
    void report(bool locked);

signals:
    void locked();
    void unlocked();

private slots:
    void screenSaverActiveChanged(bool active);
    void sessionLocked();
    void sessionUnlocked();
    void sessionPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                  const QStringList& invalidated);
    void prepareForSleep(bool sleeping);

private:
    bool listenOnSessionBus();
    bool listenOnSystemBus();
    void listenToSession(const QString& sessionPath);

    State m_state = State::Unknown;
};
