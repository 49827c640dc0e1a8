// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <functional>
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

    explicit BreakGate(QObject* parent = nullptr);
    ~BreakGate() override;

    // The work countdown stands at zero; delivered again on every update while it does.
    void workPeriodEnded();

    bool held() const { return m_held; }
    // Seconds the due break has waited, and as the panel shows it: "+03:12".
    double heldSeconds() const { return m_heldSeconds; }
    QString heldTimeString() const;
    // Why the break waits, in words for the tooltip; empty while not held.
    QString holdReason() const;

    // Whether postponing is on and the postpones in a row have not reached the limit.
    bool postponeAllowed() const;
    int postponesInARow() const { return m_postpones; }
    // Moves the coming or shown break `seconds` from now (the setting when 0). Empty on success,
    // else why not, in words for the person who asked.
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
    // The coming break is `secondsLeft` away: time for the heads-up.
    void headsUpDue(double secondsLeft, bool longBreak);
    // The heads-up no longer stands: the break started, was postponed or the cycle stopped.
    void headsUpWithdrawn();

private:
    void workTicked();
    void cycleChanged();
    void holdChanged();
    void holdOptionChanged();
    void showBreakNow();
    void enterHold();
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
};
