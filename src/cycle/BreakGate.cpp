// SPDX-License-Identifier: GPL-3.0-or-later
#include "BreakGate.h"

#include "AppState.h"
#include "BreakScreen.h"
#include "CycleEvents.h"
#include "PromptState.h"
#include "TicktackController.h"
#include "TicktackState.h"
#include "hold/HoldConditions.h"
#include "logging/Logger.h"
#include "logging/NumberText.h"
#include "preferences/PrefState.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

BreakGate::HoldSourceFactory& holdSourceFactory()
{
    static BreakGate::HoldSourceFactory factory;
    return factory;
}

// "5 minutes", "1 minute", "90 seconds": the way the refusal names the postpone's length.
QString minutesText(double seconds)
{
    const double minutes = seconds / 60.0;
    if (minutes == std::floor(minutes) && minutes >= 1)
        return minutes == 1 ? BreakGate::tr("1 minute") : BreakGate::tr("%1 minutes").arg(minutes);
    return BreakGate::tr("%1 seconds").arg(std::round(seconds));
}

} // namespace

BreakGate::BreakGate(QObject* parent) : QObject(parent)
{
    PrefState& prefs = AppState::prefState();
    connect(&prefs, &PrefState::holdBreaksChanged, this, &BreakGate::holdOptionChanged);
    const auto postponeRulesChanged = [this] {
        AppState::promptState().updatePostponeButton();
        emit changed();
    };
    connect(&prefs, &PrefState::allowPostponeChanged, this, postponeRulesChanged);
    connect(&prefs, &PrefState::postponeLimitStringChanged, this, postponeRulesChanged);
    TicktackState& work = AppState::workState();
    connect(&work, &TicktackState::timeStringChanged, this, &BreakGate::workTicked);
    // The break is due for as long as the countdown stands at zero.
    const auto whenDue = [this] {
        if (AppState::workState().timesUp())
            workPeriodEnded();
    };
    connect(&work, &TicktackState::timesUpChanged, this, whenDue);
    connect(&work, &TicktackState::timeStringChanged, this, whenDue);
    connect(&AppState::events(), &CycleEvents::changed, this, &BreakGate::cycleChanged);
    holdOptionChanged();
}

BreakGate::~BreakGate() = default;

void BreakGate::setHoldSourceFactory(HoldSourceFactory factory)
{
    holdSourceFactory() = std::move(factory);
}

void BreakGate::workPeriodEnded()
{
    if (m_held)
        return;
    if (m_holdSource && m_holdSource->holding()) {
        enterHold();
        return;
    }
    showBreakNow();
}

QString BreakGate::heldTimeString() const
{
    return u'+' + TicktackController::format(m_heldSeconds);
}

QString BreakGate::holdReason() const
{
    return m_held && m_holdSource ? m_holdSource->reason() : QString();
}

bool BreakGate::postponeAllowed() const
{
    const PrefState& prefs = AppState::prefState();
    return prefs.allowPostpone() && m_postpones < prefs.postponeLimit();
}

bool BreakGate::postponeWouldMove() const
{
    return postponeAllowed() && postponeRefusal(AppState::prefState().postponeTime()).isEmpty();
}

QString BreakGate::postponeRefusal(double seconds) const
{
    PrefState& prefs = AppState::prefState();
    if (!prefs.allowPostpone())
        return tr("Postponing breaks is off: turn it on in the settings, under Timing.");
    const qint64 limit = prefs.postponeLimit();
    if (m_postpones >= limit)
        return limit == 1
                   ? tr("This break was postponed once already: take it or skip it.")
                   : tr("This break was postponed %1 times in a row already: take it or skip it.").arg(limit);
    const PromptState& prompt = AppState::promptState();
    if (AppState::breakScreen().isShown()) {
        if (prompt.kind() == PromptState::Kind::NewDay)
            return tr("The greeting of a new day cannot be postponed.");
        if (!prompt.showSkipButton())
            return tr("This long break is forced: it cannot be postponed.");
        return {};
    }
    if (!AppState::working())
        return tr("No break is coming: the countdown is paused or stopped.");
    // A postpone only ever moves the break later: one already further away stays where it is.
    const TicktackState& work = AppState::workState();
    if (!m_held && !work.timesUp() && work.secondsLeft() >= seconds)
        return tr("The break is already more than %1 away.").arg(minutesText(seconds));
    return {};
}

QString BreakGate::postpone(double seconds)
{
    PrefState& prefs = AppState::prefState();
    if (!(seconds > 0))
        seconds = prefs.postponeTime();
    QString refusal = postponeRefusal(seconds);
    if (!refusal.isEmpty())
        return refusal;

    PromptState& prompt = AppState::promptState();
    if (AppState::breakScreen().isShown()) {
        prompt.repeatBreak();
        AppState::breakScreen().close();
    }

    ++m_postpones;
    logger().info(QStringLiteral("break postponed by ") + numberText(seconds) + QStringLiteral(" seconds, ") +
                  numberText(m_postpones) + QStringLiteral(" in a row"));
    emit AppState::events().postponed(seconds);
    leaveHold();
    m_releasing = false;
    withdrawHeadsUp();
    startWaitingPeriod(seconds);
    prompt.updatePostponeButton();
    emit changed();
    return {};
}

void BreakGate::breakFinished()
{
    if (m_postpones == 0)
        return;
    m_postpones = 0;
    AppState::promptState().updatePostponeButton();
    emit changed();
}

void BreakGate::startNow()
{
    if (AppState::breakScreen().isShown() || !AppState::working())
        return;
    logger().info(QStringLiteral("break started early from its heads-up"));
    if (m_held)
        tellReleased(QStringLiteral("start_now"));
    leaveHold();
    showBreakNow();
}

void BreakGate::workTicked()
{
    const TicktackState& work = AppState::workState();
    if (work.secondsLeft() == work.length()) {
        // A fresh work period: whatever stood for the last one is over.
        leaveHold();
        m_releasing = std::exchange(m_releaseStarting, false);
        withdrawHeadsUp();
        m_headsUpSent = false;
        if (!m_keepPostpones) {
            // A new break: its hold, if any, is told afresh.
            m_secondsSinceTold = std::numeric_limits<double>::infinity();
            m_heldBefore = 0;
        }
        // A fresh period after lunch, a lock or a pause brings a break that may be postponed
        // again; only the gate's own waits (a postpone, a hold's release) keep the count.
        if (!std::exchange(m_keepPostpones, false) && m_postpones != 0) {
            m_postpones = 0;
            AppState::promptState().updatePostponeButton();
            emit changed();
        }
    } else {
        m_secondsSinceTold += 1;
    }

    const PrefState& prefs = AppState::prefState();
    if (m_headsUpSent || work.timesUp() || !(work.secondsLeft() > 0) || !prefs.headsUp())
        return;
    // Over someone's presentation or film the heads-up would be the very disturbance the hold
    // keeps away.
    if (!m_releasing && m_holdSource && m_holdSource->holding())
        return;
    const double lead = m_releasing ? releaseDelay : prefs.headsUpSeconds();
    if (work.secondsLeft() > lead || (!m_releasing && work.length() < lead))
        return;
    m_headsUpSent = true;
    m_headsUpShown = true;
    emit AppState::events().headsUpDue(work.secondsLeft(),
                                       AppState::promptState().nextKind() == PromptState::Kind::Long);
}

void BreakGate::cycleChanged()
{
    if (AppState::working())
        return;
    // Pause, lock and idleness end a hold as they end a work period.
    leaveHold();
    m_releasing = false;
    withdrawHeadsUp();
}

void BreakGate::holdChanged()
{
    if (!m_held || m_holdSource->holding()) {
        emit changed();
        return;
    }
    logger().info(QStringLiteral("nothing holds the break any more: it comes in ") +
                  numberText(releaseDelay) + QStringLiteral(" seconds"));
    tellReleased(QStringLiteral("cleared"));
    leaveHold();
    m_releaseStarting = true;
    startWaitingPeriod(releaseDelay);
}

void BreakGate::holdOptionChanged()
{
    const bool on = AppState::prefState().holdBreaks();
    if (on && !m_holdSource) {
        const auto& factory = holdSourceFactory();
        m_holdSource = factory ? factory() : HoldConditions::make();
        if (m_holdSource)
            connect(m_holdSource.get(), &HoldSource::holdingChanged, this, &BreakGate::holdChanged);
    } else if (!on && m_holdSource) {
        m_holdSource.reset();
        if (m_held) {
            tellReleased(QStringLiteral("option_off"));
            leaveHold();
            m_releaseStarting = true;
            startWaitingPeriod(releaseDelay);
        }
    }
}

void BreakGate::showBreakNow()
{
    m_releasing = false;
    withdrawHeadsUp();
    AppState::promptState().showBreak();
}

void BreakGate::enterHold()
{
    // A holder that comes and goes (full screen on and off every few seconds) makes one hold of
    // it: told once a minute at most, its wait counted on from where it stopped.
    m_told = !(m_secondsSinceTold < flapSeconds);
    if (m_told) {
        logger().info(QStringLiteral("break held: ") + m_holdSource->reason());
        m_secondsSinceTold = 0;
        m_heldBefore = 0;
    }
    m_held = true;
    m_heldSeconds = m_heldBefore;
    m_releasing = false;
    withdrawHeadsUp();
    if (m_told)
        emit AppState::events().held(m_holdSource->reason());
    TicktackController::countUp([this, before = m_heldBefore](double elapsed) {
        m_heldSeconds = before + elapsed;
        m_secondsSinceTold += 1;
        const double limit = AppState::prefState().holdLimit();
        if (limit > 0 && m_heldSeconds >= limit) {
            holdLimitReached();
            return;
        }
        emit changed();
    });
    emit changed();
}

void BreakGate::holdLimitReached()
{
    logger().info(QStringLiteral("the break waited ") + numberText(m_heldSeconds) +
                  QStringLiteral(" seconds, its limit: it comes now"));
    tellReleased(QStringLiteral("limit"));
    leaveHold();
    m_heldBefore = 0;
    showBreakNow();
}

void BreakGate::tellReleased(const QString& how)
{
    if (m_told)
        emit AppState::events().holdReleased(how, m_heldSeconds);
}

double BreakGate::holdSecondsLeft() const
{
    const double limit = AppState::prefState().holdLimit();
    if (!m_held || !(limit > 0))
        return -1;
    return std::max(0.0, limit - m_heldSeconds);
}

void BreakGate::leaveHold()
{
    if (!m_held)
        return;
    m_held = false;
    m_heldBefore = m_heldSeconds;
    m_heldSeconds = 0;
    emit changed();
}

void BreakGate::withdrawHeadsUp()
{
    if (!std::exchange(m_headsUpShown, false))
        return;
    emit AppState::events().headsUpWithdrawn();
}

void BreakGate::startWaitingPeriod(double seconds)
{
    m_keepPostpones = true;
    TicktackController::work(seconds);
    m_keepPostpones = false;
}
