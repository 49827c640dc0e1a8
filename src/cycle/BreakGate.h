// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <limits>
#include <memory>

class HoldSource;

// The one place that lets a due break start. When the work countdown ends the break starts at
// once, or, with holding on and something holding, waits until the last hold clears and then
// comes ten seconds later. It also keeps what belongs to the moment before a break: the
// heads-up and the postpones in a row. With every option off it only starts the break.
class BreakGate : public QObject {
    Q_OBJECT

public:
    // The lead of the heads-up that follows a hold, and the wait after the hold clears.
    static constexpr double releaseDelay = 10.0;
    // A hold that comes back sooner than this after it was told is the same hold.
    static constexpr double flapSeconds = 60.0;

    explicit BreakGate(QObject* parent = nullptr);
    ~BreakGate() override;

    bool held() const { return m_held; }
    // Seconds the due break has waited, and as the panel shows it: "+03:12".
    double heldSeconds() const { return m_heldSeconds; }
    QString heldTimeString() const;
    // Why the break waits, in words for the tooltip; empty while not held.
    QString holdReason() const;
    // Seconds until the held break comes whatever holds it (hold_limit_minutes); -1 without a
    // limit or while not held.
    double holdSecondsLeft() const;

    // Whether postponing is on and the postpones in a row have not reached the limit.
    bool postponeAllowed() const;
    // Whether postpone(0) would move the break now: allowed, and the break is on the screen,
    // held, or nearer than the postpone's length.
    bool postponeWouldMove() const;
    int postponesInARow() const { return m_postpones; }
    // Moves the coming or shown break `seconds` from now (the setting when 0), when that is later
    // than it comes anyway. Empty on success, else why not, in words for the person who asked;
    // a refused postpone changes nothing and uses none of the postpones in a row.
    QString postpone(double seconds);
    // The break was taken in full or skipped: postponing starts afresh.
    void breakFinished();

    // The heads-up's "Start now": the coming break starts at once.
    void startNow();

    // Makes what can hold a break; called whenever holding is switched on. Tests put their own.
    using HoldSourceFactory = std::function<std::unique_ptr<HoldSource>()>;
    static void setHoldSourceFactory(HoldSourceFactory factory);
    HoldSource* holdSource() const { return m_holdSource.get(); }

signals:
    // Held, the held time, the reason or the postpones changed.
    void changed();

private:
    // The work countdown stands at zero; delivered again on every update while it does.
    void workPeriodEnded();
    QString postponeRefusal(double seconds) const;
    // A work period of the gate's own (a postpone's wait, a hold's release): the postpones in a
    // row go on counting through it.
    void startWaitingPeriod(double seconds);
    void workTicked();
    void cycleChanged();
    void holdChanged();
    void holdOptionChanged();
    void showBreakNow();
    void enterHold();
    void holdLimitReached();
    // The hold ends `how`; said only of a hold that was told.
    void tellReleased(const QString& how);
    void leaveHold();
    void withdrawHeadsUp();

    std::unique_ptr<HoldSource> m_holdSource;
    bool m_held = false;
    // Set when a hold cleared: the short period before the break.
    bool m_releasing = false;
    bool m_releaseStarting = false;
    double m_heldSeconds = 0;
    int m_postpones = 0;
    bool m_headsUpSent = false;
    bool m_headsUpShown = false;
    bool m_keepPostpones = false;
    // Whether the present hold was told, the seconds since a hold last was, and how long the
    // break had waited when a flapping hold last let go.
    bool m_told = false;
    double m_secondsSinceTold = std::numeric_limits<double>::infinity();
    double m_heldBefore = 0;
};
